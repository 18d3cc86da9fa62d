#pragma once

#include "dsp/ChannelSpecification.h"
#include "dsp/CustomBCIAlgorithm.h"

// The ratio of two bands' power over a set of channels, e.g. theta/beta (4-8 Hz over
// 14-35 Hz). A band's power is the sum of the squared amplitudes of its bins (both ends
// included), summed over the selected channels; the result is numerator power / denominator
// power, and 0 when the denominator power is 0. Channels as in ChannelSpecification.
class CustomSpecialRhythmAlgorithm : public CustomBCIAlgorithm
{
    Q_OBJECT
public:
    CustomSpecialRhythmAlgorithm(QString name, double numeratorFrom, double numeratorTo, double denominatorFrom,
                                 double denominatorTo, QString channels = QString(), QObject* parent = nullptr);

    DataType getDataType() const override { return DataType_Spectrum; }
    void updateChannelInfo(QList<QString> names) override;

    double getNumeratorFrom() const { return m_numeratorFrom; }
    double getNumeratorTo() const { return m_numeratorTo; }
    double getDenominatorFrom() const { return m_denominatorFrom; }
    double getDenominatorTo() const { return m_denominatorTo; }
    QString getChannelSpecification() const { return m_channels.getText(); }
    void setChannelSpecification(const QString& channels);
    QList<int> getSelectedChannels() const { return m_channels.getIndexes(); }

protected:
    double internalProcessSpectrum(QList<QList<float>>& spectra, float frequencyStep) override;

private:
    double m_numeratorFrom;
    double m_numeratorTo;
    double m_denominatorFrom;
    double m_denominatorTo;
    ChannelSpecification m_channels;
};
