#pragma once

#include "core/CortexDataResult.h"
#include "core/RhythmNormSample.h"
#include "core/StandartRhythmSample.h"
#include "core/TimestampedData.h"
#include "dsp/RhythmNormalizer.h"

#include <QList>
#include <QMap>
#include <QStringList>

#include <memory>
#include <vector>

class CustomBCIAlgorithm;
class SpectrumAnalyzer;

// What the engine measures on top of the filtered channels: a sliding spectrum per channel
// with the five standard rhythms, the meditation and concentration indices, and the custom
// algorithms. One pass per block; spectra, rhythms and indices advance once per window step.
class EngineMetering
{
public:
    enum Index { Meditation = 0, Concentration = 1 };
    static constexpr int IndexCount = 2;

    EngineMetering();
    ~EngineMetering();

    // Spectra
    void startSpectrum(const QStringList& channelNames, float samplingRate, float windowSeconds,
                       float stepSeconds, float hanningPercent);
    void stopSpectrum();
    bool isSpectrumRunning() const { return !m_analyzers.empty(); }
    // Follows a rebuilt montage: the running analyzers go on (so the last spectrum, rhythms and
    // index inputs stay) unless the channel count or sampling rate changed, which restarts them.
    void followChannels(const QStringList& channelNames, float samplingRate);
    float windowSeconds() const { return m_windowSeconds; }
    float stepSeconds() const { return m_stepSeconds; }
    float hanningPercent() const { return m_hanningPercent; }
    float frequencyStep() const { return m_frequencyStep; }
    QList<float> frequencies() const;
    QList<QList<float>> lastSpectrum() const { return m_lastSpectrum; }
    QList<TimestampedData> spectrumHistory() const { return m_spectrumHistory; }
    QList<TimestampedData> grabSpectrumHistory();
    QList<StandartRhythmSample> lastRhythms() const { return m_lastRhythms; }
    QList<QList<StandartRhythmSample>> grabRhythms();

    // Indices
    void startIndex(int index, const QList<int>& channels, const RhythmNormalizer& normalizer);
    void setRange(int index, double minimum, double maximum);
    double rangeMinimum(int index) const { return m_ranges[index].first; }
    double rangeMaximum(int index) const { return m_ranges[index].second; }
    bool hasIndex(int index) const { return index >= 0 && index < IndexCount; }
    float currentLevel(int index) const;
    RhythmNormSample lastIndexResult(int index) const;
    QList<RhythmNormSample> grabIndexData(int index);

    // Custom algorithms (owned once added)
    void addAlgorithm(CustomBCIAlgorithm* algorithm, const QStringList& channelNames);
    bool removeAlgorithm(const QString& name);
    void clearAlgorithms();
    QList<CustomBCIAlgorithm*> algorithms() const { return m_algorithms; }
    // Renamed montage channels: the algorithms resolve their channels anew.
    void updateChannelNames(const QStringList& channelNames);

    // The custom algorithms that take sample blocks; they see each block before its spectrum.
    void processBlock(const QList<QList<float>>& filtered);
    // Feeds the spectra, indices and the other custom algorithms and fills the metering parts
    // of `result`.
    void process(const QList<QList<float>>& filtered, qint64 now, CortexDataResult& result);
    // Spectrum history and grab buffers keep what is newer than this many milliseconds.
    void setHistorySpanMs(qint64 spanMs) { m_historySpanMs = spanMs; }

private:
    bool feedSpectra(const QList<QList<float>>& filtered, int offset, int count, qint64 now);
    void meterIndices(qint64 now, CortexDataResult& result);
    void runAlgorithms(bool newSpectrum, CortexDataResult& result);
    void cropHistories(qint64 now);
    void updateIndexBins();

    std::vector<std::unique_ptr<SpectrumAnalyzer>> m_analyzers;
    float m_windowSeconds = 0;
    float m_stepSeconds = 0;
    float m_hanningPercent = 0;
    float m_frequencyStep = 0;
    float m_samplingRate = 0;
    QList<QList<float>> m_lastSpectrum;
    QList<TimestampedData> m_spectrumHistory;
    QList<TimestampedData> m_spectrumGrab;
    QList<StandartRhythmSample> m_lastRhythms;
    QList<QList<StandartRhythmSample>> m_rhythmGrab;
    qint64 m_historySpanMs = 10000;

    RhythmNormalizer m_normalizers[IndexCount];
    QList<int> m_indexChannels[IndexCount];
    QPair<double, double> m_ranges[IndexCount] = { { 8.0, 14.0 }, { 14.0, 35.0 } };
    QPair<int, int> m_indexBins[IndexCount]; // each range's bins (first, end excluded)
    RhythmNormSample m_lastIndex[IndexCount];
    QList<RhythmNormSample> m_indexGrab[IndexCount];

    QList<CustomBCIAlgorithm*> m_algorithms;
    QMap<QString, double> m_algorithmResults;
};
