#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <vector>

// The last amplitude spectrum of every channel and a spectrogram ring of one chosen channel.
// Storage is reallocated only when the spectrum shape changes.
class SpectrumBuffer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int channelCount READ channelCount NOTIFY layoutChanged)
    Q_PROPERTY(QStringList channelNames READ channelNames NOTIFY layoutChanged)
    Q_PROPERTY(double frequencyStep READ frequencyStep NOTIFY layoutChanged)
    Q_PROPERTY(int binCount READ binCount NOTIFY layoutChanged)
    Q_PROPERTY(int spectrogramChannel READ spectrogramChannel WRITE setSpectrogramChannel
                   NOTIFY spectrogramChannelChanged)
    Q_PROPERTY(int spectrogramRows READ spectrogramRows WRITE setSpectrogramRows NOTIFY layoutChanged)
public:
    explicit SpectrumBuffer(QObject* parent = nullptr);

    void setChannelNames(const QStringList& names);
    // One spectrum per channel, amplitudes per bin from 0 Hz in steps of frequencyStep.
    void setSpectrum(const QList<QList<float>>& amplitudes, double frequencyStep);
    // Forgets the spectra and the spectrogram.
    void clear();

    // Channels of the spectra held, or the named channels before the first spectrum.
    int channelCount() const;
    QStringList channelNames() const { return m_names; }
    double frequencyStep() const { return m_step; }
    int binCount() const { return m_bins; }
    int spectrogramChannel() const { return m_spectrogramChannel; }
    void setSpectrogramChannel(int channel);
    int spectrogramRows() const { return m_rows; }
    void setSpectrogramRows(int rows);

    const QList<float>& last(int channel) const; // empty for a bad index or before a spectrum
    int spectrogramFilled() const { return m_filled; }
    const float* spectrogramRow(int age) const; // age 0 = newest; nullptr if not held

    // Frequency of the largest bin in [minHz, maxHz]; -1 when there is none.
    Q_INVOKABLE double peakFrequency(int channel, double minHz, double maxHz) const;
    // Amplitude at hz, linear between bins; -1 outside the spectrum or for a bad channel.
    Q_INVOKABLE double amplitudeAt(int channel, double hz) const;

Q_SIGNALS:
    void layoutChanged();
    void updated();
    void spectrogramChannelChanged();

private:
    bool reshape(qsizetype channels, int bins, double step);
    void pushSpectrogramRow();

    QStringList m_names;
    QList<QList<float>> m_spectra;
    double m_step = 0;
    int m_bins = 0;
    bool m_held = false;
    int m_spectrogramChannel = 0;
    int m_rows = 300;
    int m_filled = 0;
    int m_newest = -1;
    std::vector<float> m_ring; // m_rows rows of m_bins floats
};
