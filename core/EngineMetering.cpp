#include "core/EngineMetering.h"

#include "dsp/CustomBCIAlgorithm.h"
#include "dsp/SpectrumAnalyzer.h"

#include <QJsonObject>

namespace {
struct StandardRhythm
{
    const char* name;
    float from;
    float to;
};
// Order matters: it is the order of the rhythm values everywhere they are listed, and each
// analyzer holds the rhythms at these positions.
enum RhythmPosition { Alpha, Beta, Theta, Delta, Gamma };
constexpr StandardRhythm StandardRhythms[] = {
    { "alpha", 8, 14 }, { "beta", 14, 35 }, { "theta", 4, 8 }, { "delta", 0.5f, 4 }, { "gamma", 35, 50 },
};

// The analyzer's last shares of the standard rhythms, read by position: no map per step.
StandartRhythmSample rhythmSample(const SpectrumAnalyzer& analyzer, qint64 now)
{
    StandartRhythmSample sample;
    sample.alpha = analyzer.getLastRhythmShare(Alpha);
    sample.beta = analyzer.getLastRhythmShare(Beta);
    sample.theta = analyzer.getLastRhythmShare(Theta);
    sample.delta = analyzer.getLastRhythmShare(Delta);
    sample.gamma = analyzer.getLastRhythmShare(Gamma);
    sample.timestamp = now;
    return sample;
}

template<typename T>
void dropOlderThan(QList<T>& list, qint64 cutoff, qint64 (*timeOf)(const T&))
{
    qsizetype old = 0;
    while (old < list.size() && timeOf(list[old]) < cutoff)
        ++old;
    if (old > 0)
        list.remove(0, old);
}
}

EngineMetering::EngineMetering()
{
    for (RhythmNormalizer& normalizer : m_normalizers)
        normalizer.init(0, 100, 0, 100, 1000, 0, 100, 10, 1000, 16, true);
}

EngineMetering::~EngineMetering()
{
    clearAlgorithms();
}

void EngineMetering::startSpectrum(const QStringList& channelNames, float samplingRate, float windowSeconds,
                                   float stepSeconds, float hanningPercent)
{
    stopSpectrum();
    m_samplingRate = samplingRate;
    m_windowSeconds = windowSeconds;
    m_stepSeconds = stepSeconds;
    m_hanningPercent = hanningPercent;
    for (const QString& name : channelNames) {
        auto analyzer = std::make_unique<SpectrumAnalyzer>();
        analyzer->setChannelName(name);
        for (const StandardRhythm& rhythm : StandardRhythms)
            analyzer->addRhythm(QString::fromLatin1(rhythm.name), rhythm.from, rhythm.to);
        analyzer->setDataFrequency(samplingRate);
        analyzer->setSmoothingWindowPercent(hanningPercent);
        analyzer->setWindowSize(windowSeconds);
        analyzer->setWindowStep(stepSeconds);
        m_frequencyStep = analyzer->getFrequencyStep();
        m_analyzers.push_back(std::move(analyzer));
    }
    updateIndexBins();
}

// Every analyzer has the same bins, so each index's range maps to the same bin indexes in all.
void EngineMetering::updateIndexBins()
{
    for (int index = 0; index < IndexCount; ++index) {
        const auto [from, to] = m_ranges[index];
        m_indexBins[index] = m_analyzers.empty() ? QPair<int, int>(0, 0)
                                                 : m_analyzers.front()->rhythmArrayIndexes(float(from), float(to));
    }
}

void EngineMetering::stopSpectrum()
{
    m_analyzers.clear();
    m_lastSpectrum.clear();
    m_spectrumHistory.clear();
    m_spectrumGrab.clear();
    m_lastRhythms.clear();
    m_rhythmGrab.clear();
}

void EngineMetering::followChannels(const QStringList& channelNames, float samplingRate)
{
    if (!isSpectrumRunning())
        return;
    if (size_t(channelNames.size()) != m_analyzers.size() || samplingRate != m_samplingRate)
        startSpectrum(channelNames, samplingRate, m_windowSeconds, m_stepSeconds, m_hanningPercent);
}

QList<float> EngineMetering::frequencies() const
{
    return m_analyzers.empty() ? QList<float>() : m_analyzers.front()->getFrequencies();
}

QList<TimestampedData> EngineMetering::grabSpectrumHistory()
{
    return std::exchange(m_spectrumGrab, {});
}

QList<QList<StandartRhythmSample>> EngineMetering::grabRhythms()
{
    QList<QList<StandartRhythmSample>> grabbed = std::exchange(m_rhythmGrab, {});
    grabbed.resize(qsizetype(m_analyzers.size()));
    return grabbed;
}

void EngineMetering::startIndex(int index, const QList<int>& channels, const RhythmNormalizer& normalizer)
{
    if (!hasIndex(index))
        return;
    m_indexChannels[index] = channels;
    m_normalizers[index] = normalizer;
    m_lastIndex[index] = RhythmNormSample();
    m_indexGrab[index].clear();
}

void EngineMetering::setRange(int index, double minimum, double maximum)
{
    if (!hasIndex(index))
        return;
    const double low = std::max(0.5, minimum);
    m_ranges[index] = { low, std::max(low, maximum) };
    updateIndexBins();
}

float EngineMetering::currentLevel(int index) const
{
    return hasIndex(index) ? m_normalizers[index].getLastValue().level : 0.0f;
}

RhythmNormSample EngineMetering::lastIndexResult(int index) const
{
    return hasIndex(index) ? m_lastIndex[index] : RhythmNormSample();
}

QList<RhythmNormSample> EngineMetering::grabIndexData(int index)
{
    return hasIndex(index) ? std::exchange(m_indexGrab[index], {}) : QList<RhythmNormSample>();
}

void EngineMetering::addAlgorithm(CustomBCIAlgorithm* algorithm, const QStringList& channelNames)
{
    if (!algorithm)
        return;
    algorithm->updateChannelInfo(channelNames);
    m_algorithms.append(algorithm);
}

bool EngineMetering::removeAlgorithm(const QString& name)
{
    for (qsizetype i = 0; i < m_algorithms.size(); ++i) {
        if (m_algorithms[i]->getName() == name) {
            delete m_algorithms.takeAt(i);
            m_algorithmResults.remove(name);
            return true;
        }
    }
    return false;
}

void EngineMetering::clearAlgorithms()
{
    qDeleteAll(m_algorithms);
    m_algorithms.clear();
    m_algorithmResults.clear();
}

void EngineMetering::updateChannelNames(const QStringList& channelNames)
{
    for (CustomBCIAlgorithm* algorithm : std::as_const(m_algorithms))
        algorithm->updateChannelInfo(channelNames);
    const size_t named = std::min(m_analyzers.size(), size_t(channelNames.size()));
    for (size_t c = 0; c < named; ++c)
        m_analyzers[c]->setChannelName(channelNames[qsizetype(c)]);
}

void EngineMetering::process(const QList<QList<float>>& filtered, qint64 now, CortexDataResult& result)
{
    // An analyzer yields at most one spectrum per call, so blocks longer than a step are fed
    // step by step: no step is skipped and its buffer never grows.
    const int samples = filtered.isEmpty() ? 0 : int(filtered.first().size());
    const int chunk = m_analyzers.empty() ? samples : std::max(1, m_analyzers.front()->getStepSamples());
    bool newSpectrum = false;
    for (int offset = 0; offset < samples; offset += chunk) {
        if (!feedSpectra(filtered, offset, std::min(chunk, samples - offset), now))
            continue;
        newSpectrum = true;
        meterIndices(now, result);
    }
    if (newSpectrum) {
        result.hasSpectrum = true;
        result.spectrum = m_lastSpectrum;
        cropHistories(now);
    }
    result.meditation = m_lastIndex[Meditation];
    result.concentration = m_lastIndex[Concentration];
    runAlgorithms(newSpectrum, result);
}

void EngineMetering::processBlock(const QList<QList<float>>& filtered)
{
    QList<QList<float>> block;
    for (CustomBCIAlgorithm* algorithm : std::as_const(m_algorithms)) {
        if (algorithm->getDataType() != CustomBCIAlgorithm::DataType_Data)
            continue;
        if (block.isEmpty())
            block = filtered; // an algorithm may change what it is handed; the engine's block stays
        m_algorithmResults.insert(algorithm->getName(), algorithm->processData(block));
    }
}

bool EngineMetering::feedSpectra(const QList<QList<float>>& filtered, int offset, int count, qint64 now)
{
    const qsizetype channels = std::min(qsizetype(m_analyzers.size()), filtered.size());
    bool produced = false;
    for (qsizetype c = 0; c < channels; ++c) {
        const QList<float>& samples = filtered[c];
        if (offset + count > samples.size())
            continue;
        const QList<float> spectrum = m_analyzers[size_t(c)]->addDataSample(samples.constData() + offset, count);
        if (spectrum.isEmpty())
            continue;
        if (!produced) {
            produced = true;
            // A new list: the previous one lives on in the histories.
            m_lastSpectrum = QList<QList<float>>(channels);
            m_lastRhythms.resize(channels);
            std::fill(m_lastRhythms.begin(), m_lastRhythms.end(), StandartRhythmSample());
        }
        m_lastSpectrum[c] = spectrum;
        m_lastRhythms[c] = rhythmSample(*m_analyzers[size_t(c)], now);
    }
    if (!produced)
        return false;
    m_spectrumHistory.append(TimestampedData(now, m_lastSpectrum));
    m_spectrumGrab.append(TimestampedData(now, m_lastSpectrum));
    m_rhythmGrab.resize(channels);
    for (qsizetype c = 0; c < channels; ++c)
        m_rhythmGrab[c].append(m_lastRhythms[c]);
    return true;
}

// The raw index value is the share, in percent, of each channel's spectrum inside the index's
// range, averaged over the index's channels. With none of them in the montage there is no
// value: the index keeps its last reading (-1 before the first).
void EngineMetering::meterIndices(qint64 now, CortexDataResult& result)
{
    for (int index = 0; index < IndexCount; ++index) {
        RhythmNormalizer& normalizer = m_normalizers[index];
        const QPair<int, int>& bins = m_indexBins[index];
        for (int channel : std::as_const(m_indexChannels[index])) {
            if (channel >= 0 && size_t(channel) < m_analyzers.size())
                normalizer.addPartialValue(100.0f * m_analyzers[size_t(channel)]->calculateCustomRhythm(bins));
        }
        if (normalizer.addValueFromPartial(now)) {
            m_lastIndex[index] = normalizer.getLastValue();
            m_indexGrab[index].append(m_lastIndex[index]);
            result.hasIndexValues = true;
        }
    }
}

// Block algorithms have had their turn in processBlock; their latest values are listed here.
void EngineMetering::runAlgorithms(bool newSpectrum, CortexDataResult& result)
{
    if (m_algorithms.isEmpty())
        return;
    m_algorithmResults.insert(QStringLiteral("meditation"), m_lastIndex[Meditation].level);
    m_algorithmResults.insert(QStringLiteral("concentration"), m_lastIndex[Concentration].level);
    result.algorithmResults.reserve(m_algorithms.size());
    for (CustomBCIAlgorithm* algorithm : std::as_const(m_algorithms)) {
        const QString name = algorithm->getName();
        double value = m_algorithmResults.value(name, 0.0);
        switch (algorithm->getDataType()) {
        case CustomBCIAlgorithm::DataType_Data:
            break;
        case CustomBCIAlgorithm::DataType_Spectrum:
            if (newSpectrum)
                value = algorithm->processSpectrumData(m_lastSpectrum, m_frequencyStep);
            break;
        case CustomBCIAlgorithm::DataType_Rhythms:
            if (newSpectrum)
                value = algorithm->processRhythms(m_lastRhythms);
            break;
        case CustomBCIAlgorithm::DataType_Results:
            value = algorithm->processResults(m_algorithmResults);
            break;
        }
        m_algorithmResults.insert(name, value);
        result.algorithmResults.append(QJsonObject { { QStringLiteral("name"), name }, { QStringLiteral("value"), value } });
    }
    result.hasAlgorithmResults = true;
}

void EngineMetering::cropHistories(qint64 now)
{
    const qint64 cutoff = now - m_historySpanMs;
    auto spectrumTime = [](const TimestampedData& data) { return data.timestamp; };
    auto indexTime = [](const RhythmNormSample& sample) { return sample.timestamp; };
    auto rhythmTime = [](const StandartRhythmSample& sample) { return sample.timestamp; };
    dropOlderThan<TimestampedData>(m_spectrumHistory, cutoff, spectrumTime);
    dropOlderThan<TimestampedData>(m_spectrumGrab, cutoff, spectrumTime);
    for (QList<StandartRhythmSample>& channel : m_rhythmGrab)
        dropOlderThan<StandartRhythmSample>(channel, cutoff, rhythmTime);
    for (QList<RhythmNormSample>& grab : m_indexGrab)
        dropOlderThan<RhythmNormSample>(grab, cutoff, indexTime);
}
