#pragma once

#include "dsp/ChannelSpecification.h"
#include "dsp/CustomBCIAlgorithm.h"

// The share of a frequency band in the amplitude spectrum, in percent, over a set of channels:
// per channel 100 × (sum of the bins in [lower, upper], both ends included) / (sum of all
// bins), then the maximum, minimum or mean of the channels. Channels whose spectrum sums to 0
// are left out; with no channel left the result is 0.
class CustomRhythmAlgorithm : public CustomBCIAlgorithm
{
    Q_OBJECT
public:
    // The numeric values are part of the interface.
    enum CalculationMode { Calculate_Max = 0, Calculate_Min = 1, Calculate_Average = 2 };
    Q_ENUM(CalculationMode)

    // channels: see ChannelSpecification (empty = every channel).
    CustomRhythmAlgorithm(QString name, QString color = QStringLiteral("#F00"), double lowerFrequency = 8.0,
                          double upperFrequency = 14.0, QString channels = QString(),
                          CalculationMode mode = Calculate_Average, QObject* parent = nullptr);

    DataType getDataType() const override { return DataType_Spectrum; }
    void updateChannelInfo(QList<QString> names) override;

    double getLowerFrequency() const { return m_lowerFrequency; }
    double getUpperFrequency() const { return m_upperFrequency; }
    QString getColor() const { return m_color; }
    QString getChannelSpecification() const { return m_channels.getText(); }
    void setChannelSpecification(const QString& channels);
    // Resolved channel indexes; empty means every channel.
    QList<int> getSelectedChannels() const { return m_channels.getIndexes(); }
    CalculationMode getCalculationMode() const { return m_mode; }

protected:
    double internalProcessSpectrum(QList<QList<float>>& spectra, float frequencyStep) override;

private:
    // The band share of one spectrum in percent; false when the spectrum sums to 0.
    bool channelShare(const QList<float>& spectrum, double frequencyStep, double& share) const;

    double m_lowerFrequency;
    double m_upperFrequency;
    QString m_color;
    ChannelSpecification m_channels;
    CalculationMode m_mode;
};
