#include "dsp/CustomSpecialRhythmAlgorithm.h"

#include "dsp/BandBins.h"

CustomSpecialRhythmAlgorithm::CustomSpecialRhythmAlgorithm(QString name, double numeratorFrom, double numeratorTo,
                                                           double denominatorFrom, double denominatorTo,
                                                           QString channels, QObject* parent)
    : CustomBCIAlgorithm(std::move(name), parent)
    , m_numeratorFrom(numeratorFrom)
    , m_numeratorTo(numeratorTo)
    , m_denominatorFrom(denominatorFrom)
    , m_denominatorTo(denominatorTo)
    , m_channels(std::move(channels))
{
    updateChannelInfo(QList<QString>());
}

void CustomSpecialRhythmAlgorithm::updateChannelInfo(QList<QString> names)
{
    CustomBCIAlgorithm::updateChannelInfo(names);
    m_channels.update(names, getName());
}

void CustomSpecialRhythmAlgorithm::setChannelSpecification(const QString& channels)
{
    m_channels.setText(channels, getName());
}

double CustomSpecialRhythmAlgorithm::internalProcessSpectrum(QList<QList<float>>& spectra, float frequencyStep)
{
    const BandBins numeratorBand(m_numeratorFrom, m_numeratorTo, frequencyStep);
    const BandBins denominatorBand(m_denominatorFrom, m_denominatorTo, frequencyStep);
    const QList<int>& selected = m_channels.getIndexes();
    const int count = selected.isEmpty() ? int(spectra.size()) : int(selected.size());
    double numerator = 0.0;
    double denominator = 0.0;
    for (int k = 0; k < count; ++k) {
        const int channel = selected.isEmpty() ? k : selected.at(k);
        if (channel < 0 || channel >= spectra.size())
            continue;
        const QList<float>& spectrum = spectra.at(channel);
        for (int i = 0; i < spectrum.size(); ++i) {
            const double power = double(spectrum.at(i)) * spectrum.at(i);
            if (numeratorBand.contains(i))
                numerator += power;
            if (denominatorBand.contains(i))
                denominator += power;
        }
    }
    return denominator > 0.0 ? numerator / denominator : 0.0;
}
