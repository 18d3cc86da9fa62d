#pragma once

#include "dsp/SpectrumRhythm.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>

#include <complex>
#include <vector>

// Sliding amplitude spectrum of one channel and the share of each named rhythm in it.
// Samples accumulate in a buffer; every time it holds a full window, one spectrum is computed
// from the first window and the buffer advances by one step. The window is mean-removed,
// tapered (Tukey window whose flanks together form a Hann window of `percent` × 2 of the block)
// and zero-padded to a power of two; bins are amplitudes 2|X|/n. Rhythm values are percentages
// of the total amplitude. Not thread-safe: one analyzer is used from one thread at a time.
// See docs/spectrum.md.
class SpectrumAnalyzer : public QObject
{
    Q_OBJECT
public:
    using Complex = std::complex<float>;
    using ComplexList = QList<Complex>;

    // Largest window or step in samples; a larger rate × seconds is cut to it (with a console
    // line), so that a nonsense setting cannot exhaust memory.
    static constexpr int MaxWindowSamples = 1 << 22;
    // Largest transform `fft` accepts.
    static constexpr int MaxFftSize = 2 * MaxWindowSamples;

    explicit SpectrumAnalyzer(QObject* parent = nullptr);

    // FFT size for a window of `samples`: the next power of two at or above it (1 for none).
    static int CalcSpectrumNFFT(float sampleRate, int samples);
    static float CalcSpectrumFrequenciesStep(float sampleRate, int samples);
    static float CalcSpectrumFrequenciesStepFromNFFT(float sampleRate, int nfft);
    // The nfft / 2 + 1 bin frequencies k · step.
    static QList<float> CalcSpectrumFrequencies(float sampleRate, int samples);
    // `out` becomes max(nfft, data size) complex points: the data as real parts, then zeros.
    static void ConvertDataForFFt(int nfft, const QList<float>& data, ComplexList& out);
    // Twiddle factor e^(-2πik/n): the angle in double, cos and sin in float; 1 when n divides k.
    static void make_w(int k, int n, Complex& w);
    // Forward DFT of n points (a power of two up to MaxFftSize), radix 2. The factors are
    // make_w's, taken from a table built once per size and thread. A bad size or a short input
    // leaves `out` empty (false from the pointer form) and writes a console line.
    static void fft(int n, const ComplexList& in, ComplexList& out);
    static bool fft(int n, const Complex* in, Complex* out); // in == out is allowed

    // Configuration: each setter clamps, then recomputes the window, the bins and the rhythm
    // indices and empties the last spectrum. The sample buffer is kept.
    void setDataFrequency(float hz);            // at least 0
    void setWindowSize(float seconds);          // at least 0.1
    void setWindowStep(float seconds);          // at least 0.01
    void setSmoothingWindowPercent(float percent); // 0 ... 50
    void setChannelName(const QString& name);
    // When on, calculateRhythms also keeps the bins of each rhythm (and all bins as "sum").
    void setOutputRhythmsValues(bool on);

    float getDataFrequency() const { return m_sampleRate; }
    float getWindowSize() const { return m_windowSize; }
    float getWindowStep() const { return m_windowStep; }
    float getSmoothingWindowPercent() const { return m_percent; }
    QString getChannelName() const { return m_channelName; }
    bool getOutputRhythmsValues() const { return m_outputRhythmsValues; }
    int getWindowSamples() const { return m_windowSamples; }
    int getStepSamples() const { return m_stepSamples; }
    int getSmoothingLength() const { return m_smoothingLength; }
    int getNFFT() const { return m_nfft; }
    int getBufferedSampleCount() const { return int(m_buffer.size() - m_bufferStart); }
    QList<float> getFrequencies() const { return m_frequencies; }
    float getFrequencyStep() const;
    QList<float> getLastSpectrum() const { return m_lastSpectrum; }
    float getLastTotal() const { return m_lastTotal; }
    QMap<QString, float> getLastRhythms() const;
    // The last rhythm value of the rhythm at `index` (insertion order) without building the
    // map: -1 where getLastRhythms() has no entry for it.
    float getLastRhythmShare(int index) const;
    QMap<QString, QList<float>> getLastRhythmsValues() const { return m_lastRhythmsValues; }

    // Rhythms, in insertion order, and their (first, end) bin indexes; the end bin is excluded.
    void addRhythm(const SpectrumRhythm& rhythm);
    void addRhythm(const QString& name, float from, float to);
    QList<SpectrumRhythm> getRhythms() const { return m_rhythms; }
    QList<QPair<int, int>> getRhythmIndexes() const { return m_rhythmIndexes; }
    int getGlobalStart() const { return m_globalStart; }
    int getGlobalEnd() const { return m_globalEnd; }
    // First bin at or above `from` and first bin at or above `to`; 0 where no bin reaches.
    QPair<int, int> rhythmArrayIndexes(float from, float to) const;

    // Appends samples; when a full window is buffered computes at most one spectrum (emitting
    // spectrumRhythmsCalculated, then spectrumCalculated) and returns it, else an empty list.
    QList<float> addDataSample(const QList<float>& samples);
    QList<float> addDataSample(const float* samples, int count);
    // Spectrum of one block of exactly getWindowSamples() samples (else empty, nothing emitted).
    QList<float> calculateSpectrum(const QList<float>& block);
    // Percent of the total amplitude per rhythm, plus "sum" → total; empty when the rhythms'
    // bins lie outside the spectrum or the total is not positive.
    QMap<QString, float> calculateRhythms(const QList<float>& spectrum);
    // Sum of the last spectrum's bins from `from` to `to` as a fraction of the last total.
    float calculateCustomRhythm(float from, float to);
    // The same for bins already looked up with rhythmArrayIndexes (first, end excluded).
    float calculateCustomRhythm(const QPair<int, int>& bins);
    // Amplitude-weighted mean frequency of the rhythm's bins in the last spectrum; 0 when the
    // rhythm is unknown or its bins sum to 0.
    float calcWeightedAverageFrequency(const QString& rhythm) const;
    // Frequency of the rhythm's largest bin in the last spectrum; 0 when that bin holds less
    // than minShare (0 ... 1) of the band's sum, or the rhythm is unknown or empty.
    float calcMaximumDominantFrequency(const QString& rhythm, double minShare) const;

Q_SIGNALS:
    void spectrumCalculated(QList<float> spectrum);
    void spectrumRhythmsCalculated(QMap<QString, float> rhythms);

private:
    void refresh();
    void rebuildRhythmIndexes();
    void indexRhythm(int index);
    int rhythmIndex(const QString& name) const;
    QList<float> computeSpectrum(const float* block, int n);
    void prepareBlock(const float* block, int n, int size);
    void buildTaper(int length, int n);
    void buildGains(int n);
    void transformReal(int size, int bins);
    void transformComplex(int size, int bins);
    bool measureRhythms(const QList<float>& spectrum);

    QString m_channelName;
    QList<SpectrumRhythm> m_rhythms;
    QList<QPair<int, int>> m_rhythmIndexes;
    int m_globalStart = 0;
    int m_globalEnd = 0;
    QList<float> m_frequencies;
    std::vector<float> m_buffer; // samples from m_bufferStart on are pending
    size_t m_bufferStart = 0;
    QList<float> m_lastSpectrum;
    float m_lastTotal = 0;
    float m_sampleRate = 0;
    float m_windowSize = 0.1f;
    int m_windowSamples = 0;
    float m_windowStep = 0.01f;
    float m_percent = 0;
    int m_stepSamples = 0;
    int m_smoothingLength = 0;
    // The last rhythm values as numbers per rhythm (-1: none); the map form is built from
    // them only when asked for, as few callers need it.
    std::vector<float> m_lastShares;
    std::vector<bool> m_lastSharePresent;
    float m_lastSharesTotal = 0;
    bool m_lastSharesValid = false;
    mutable QMap<QString, float> m_lastRhythms;
    mutable bool m_lastRhythmsStale = false;
    QMap<QString, QList<float>> m_lastRhythmsValues;
    int m_nfft = 256;
    bool m_outputRhythmsValues = false;
    bool m_windowChanged = true;
    QList<double> m_taper;
    double m_taperCorrection = 1;

    // Work buffers reused from spectrum to spectrum: the tapered block zero-padded to the FFT
    // size, and per sample the taper times its amplitude correction.
    std::vector<float> m_work;
    std::vector<float> m_gains;
};
