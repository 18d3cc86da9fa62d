#include "dsp/CustomBCIAlgorithm.h"

#include <cmath>

CustomBCIAlgorithm::CustomBCIAlgorithm(QString name, QObject* parent)
    : QObject(parent)
    , m_name(std::move(name))
{
}

double CustomBCIAlgorithm::processData(QList<QList<float>>& blocks)
{
    return getDataType() == DataType_Data ? keep(internalProcessData(blocks)) : 0.0;
}

double CustomBCIAlgorithm::processSpectrumData(QList<QList<float>>& spectra, float frequencyStep)
{
    return getDataType() == DataType_Spectrum ? keep(internalProcessSpectrum(spectra, frequencyStep)) : 0.0;
}

double CustomBCIAlgorithm::processRhythms(QList<StandartRhythmSample>& samples)
{
    return getDataType() == DataType_Rhythms ? keep(internalProcessRhythms(samples)) : 0.0;
}

double CustomBCIAlgorithm::processResults(const QMap<QString, double>& results)
{
    return getDataType() == DataType_Results ? keep(internalProcessResults(results)) : 0.0;
}

// JSON cannot carry NaN or infinity, and the engine publishes every result as JSON.
double CustomBCIAlgorithm::keep(double result)
{
    m_lastResult = std::isfinite(result) ? result : 0.0;
    return m_lastResult;
}

QJsonObject CustomBCIAlgorithm::toJson() const
{
    QJsonObject json;
    json.insert(QStringLiteral("name"), m_name);
    json.insert(QStringLiteral("value"), m_lastResult);
    return json;
}

void CustomBCIAlgorithm::setMinMax(double min, double max)
{
    m_min = min;
    m_max = max;
}

void CustomBCIAlgorithm::updateChannelInfo(QList<QString> names)
{
    m_channelNames = std::move(names);
}

double CustomBCIAlgorithm::internalProcessData(QList<QList<float>>&) { return 0.0; }
double CustomBCIAlgorithm::internalProcessSpectrum(QList<QList<float>>&, float) { return 0.0; }
double CustomBCIAlgorithm::internalProcessRhythms(QList<StandartRhythmSample>&) { return 0.0; }
double CustomBCIAlgorithm::internalProcessResults(const QMap<QString, double>&) { return 0.0; }
