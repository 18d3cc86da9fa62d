#pragma once

#include "app/ui/RhythmListModel.h"
#include "app/ui/SpectrumBuffer.h"

#include <QObject>

class ChannelListModel;
class CortexCore;
struct CortexDataResult;

// The spectrum screen: amplitude spectra of the chosen channels, the rhythm shares of every
// channel and a spectrogram of one channel.
class SpectrumController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(SpectrumBuffer* spectra READ spectra CONSTANT)
    Q_PROPERTY(RhythmListModel* rhythms READ rhythms CONSTANT)
    Q_PROPERTY(bool logScale READ logScale WRITE setLogScale NOTIFY viewChanged)
    Q_PROPERTY(double maxFrequency READ maxFrequency WRITE setMaxFrequency NOTIFY viewChanged)
    Q_PROPERTY(QList<double> maxFrequencies READ maxFrequencies NOTIFY layoutChanged)
    Q_PROPERTY(int spectrogramChannel READ spectrogramChannel WRITE setSpectrogramChannel NOTIFY viewChanged)
    Q_PROPERTY(double peakFrequency READ peakFrequency NOTIFY spectrumUpdated)
    Q_PROPERTY(QString peakFrequencyText READ peakFrequencyText NOTIFY spectrumUpdated)
    Q_PROPERTY(bool hasSpectrum READ hasSpectrum NOTIFY spectrumUpdated)
public:
    SpectrumController(CortexCore* engine, ChannelListModel* channels, QObject* parent = nullptr);

    SpectrumBuffer* spectra() { return &m_spectra; }
    RhythmListModel* rhythms() { return &m_rhythms; }
    bool logScale() const { return m_logScale; }
    void setLogScale(bool log);
    double maxFrequency() const { return m_maxFrequency; }
    void setMaxFrequency(double hz);
    // The maximum-frequency choices that the sampling rate allows.
    QList<double> maxFrequencies() const;
    int spectrogramChannel() const { return m_spectra.spectrogramChannel(); }
    void setSpectrogramChannel(int channel);
    // Frequency of the largest bin above 0.5 Hz of the first chosen channel; -1 before a spectrum.
    double peakFrequency() const;
    // "9.8 Hz", or "—" before a spectrum.
    QString peakFrequencyText() const;
    bool hasSpectrum() const { return m_hasSpectrum; }

Q_SIGNALS:
    void viewChanged();
    void layoutChanged();
    void spectrumUpdated();

private:
    void resetLayout();
    void onResult(const CortexDataResult& result);

    CortexCore* m_engine;
    ChannelListModel* m_channels;
    SpectrumBuffer m_spectra;
    RhythmListModel m_rhythms;
    bool m_logScale = false;
    double m_maxFrequency = 40;
    bool m_hasSpectrum = false;
};
