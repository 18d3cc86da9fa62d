#include "dsp/CustomRhythmAlgorithm.h"

#include <algorithm>
#include <cmath>

CustomRhythmAlgorithm::CustomRhythmAlgorithm(QString name, QString color, double lowerFrequency,
                                             double upperFrequency, QString channels, CalculationMode mode,
                                             QObject* parent)
    : CustomBCIAlgorithm(std::move(name), parent)
    , m_lowerFrequency(lowerFrequency)
    , m_upperFrequency(upperFrequency)
    , m_color(std::move(color))
    , m_channels(std::move(channels))
    , m_mode(mode)
{
    updateChannelInfo(QList<QString>());
}

void CustomRhythmAlgorithm::updateChannelInfo(QList<QString> names)
{
    CustomBCIAlgorithm::updateChannelInfo(names);
    m_channels.update(names, getName());
}

void CustomRhythmAlgorithm::setChannelSpecification(const QString& channels)
{
    m_channels.setText(channels, getName());
}

bool CustomRhythmAlgorithm::channelShare(const QList<float>& spectrum, double frequencyStep, double& share) const
{
    // The bin frequency grows by the step, as clients computing the same share do; a band
    // end counts exactly, so with an inexact step (0.1 Hz) an end may fall just outside.
    double total = 0.0;
    double inBand = 0.0;
    double frequency = 0.0;
    for (int i = 0; i < spectrum.size(); ++i, frequency += frequencyStep) {
        const double amplitude = spectrum.at(i);
        total += amplitude;
        if (m_lowerFrequency <= frequency && frequency <= m_upperFrequency)
            inBand += amplitude;
    }
    if (!(total > 0.0))
        return false;
    share = inBand * 100.0 / total;
    return std::isfinite(share);
}

double CustomRhythmAlgorithm::internalProcessSpectrum(QList<QList<float>>& spectra, float frequencyStep)
{
    const QList<int>& selected = m_channels.getIndexes();
    const int count = selected.isEmpty() ? int(spectra.size()) : int(selected.size());
    int used = 0;
    double result = 0.0;
    for (int k = 0; k < count; ++k) {
        const int channel = selected.isEmpty() ? k : selected.at(k);
        double share = 0.0;
        if (channel < 0 || channel >= spectra.size() || !channelShare(spectra.at(channel), frequencyStep, share))
            continue;
        if (used == 0)
            result = share;
        else if (m_mode == Calculate_Max)
            result = std::max(result, share);
        else if (m_mode == Calculate_Min)
            result = std::min(result, share);
        else
            result += share;
        ++used;
    }
    if (m_mode == Calculate_Average && used > 0)
        result /= used;
    return result;
}
