#include "dsp/RhythmNormalizer.h"

#include "services/GlobalConsoleWriter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

int clampHistorySize(int size)
{
    if (size > RhythmNormalizer::MaxHistorySize) {
        kxDebug() << QString("RhythmNormalizer: history size %1 clamped to %2")
                         .arg(size)
                         .arg(RhythmNormalizer::MaxHistorySize);
        return RhythmNormalizer::MaxHistorySize;
    }
    return size;
}

// Truncates towards zero; out-of-range levels (possible without the limit to 100) saturate
// instead of overflowing.
qint32 truncateLevel(float level)
{
    constexpr float Largest = 2147483520.0f; // largest float below 2^31
    return qint32(std::min(level, Largest));
}

// `value` where `keep`, else +0, without a branch: which side of the mean a value lies on is
// as good as random, so a branch would be mispredicted half the time.
inline float keptOrZero(bool keep, float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits &= 0u - std::uint32_t(keep);
    float kept;
    std::memcpy(&kept, &bits, sizeof kept);
    return kept;
}

// Left-to-right sum of the values below `mean` (with Upper: at or above it) into `sum`; returns
// their count. Adding +0 for the others changes nothing: the sum starts at +0 and so is never −0.
template<bool Upper>
int sumSide(const float* values, int count, float mean, float& sum)
{
    int selected = 0;
    for (int i = 0; i < count; ++i) {
        const bool taken = Upper ? values[i] >= mean : values[i] < mean;
        sum += keptOrZero(taken, values[i]);
        selected += int(taken);
    }
    return selected;
}

} // namespace

RhythmNormalizer::RhythmNormalizer(float initialLow, float initialTop, float lowMinimum,
                                   float lowMaximum, int lowHistorySize, float topMinimum,
                                   float topMaximum, int topHistorySize, int historySize,
                                   int smoothing, bool limitTo100)
{
    init(initialLow, initialTop, lowMinimum, lowMaximum, lowHistorySize, topMinimum, topMaximum,
         topHistorySize, historySize, smoothing, limitTo100);
}

void RhythmNormalizer::init(float initialLow, float initialTop, float lowMinimum,
                            float lowMaximum, int lowHistorySize, float topMinimum,
                            float topMaximum, int topHistorySize, int historySize, int smoothing,
                            bool limitTo100)
{
    m_lowMinimum = lowMinimum;
    m_lowMaximum = lowMaximum;
    m_topMinimum = topMinimum;
    m_topMaximum = topMaximum;
    m_historySizeLow = lowHistorySize;
    m_historySizeTop = topHistorySize;
    m_historySize = clampHistorySize(historySize);
    m_limitTo100 = limitTo100;
    m_low = std::max(initialLow, lowMinimum);
    m_top = std::max(initialTop, topMinimum);
    m_smoothing = quint8(smoothing & 0xFF);

    m_historyOfValues.clear();
    m_historyOfLow.clear();
    m_historyOfTop.clear();
    m_historyOfRawLevel.clear();
    m_smoothingBuffer.clear();
    clearPartialValues();

    if (m_historySize > 0) {
        const int pairs = (m_historySize + 1) / 2;
        m_historyOfValues.reserve(2 * pairs);
        for (int i = 0; i < pairs; ++i) {
            m_historyOfValues.append(initialLow);
            m_historyOfValues.append(initialTop);
        }
    }
}

float RhythmNormalizer::addValue(float value, qint64 timestamp)
{
    // std::max(0, NaN) is 0: a NaN input counts as 0.
    float v = std::max(0.0f, value);
    if (m_limitTo100)
        v = std::min(100.0f, v);

    m_historyOfValues.append(v);
    while (m_historyOfValues.size() > std::max(m_historySize, 0))
        m_historyOfValues.removeFirst();
    if (m_historyOfValues.isEmpty())
        return 0;

    float estimate = 0;
    const qsizetype count = m_historyOfValues.size();
    if (count >= m_historySizeLow && splitMean(m_historySizeLow, false, estimate))
        m_low = std::min(m_lowMaximum, std::max(m_lowMinimum, estimate));
    if (count >= m_historySizeTop && splitMean(m_historySizeTop, true, estimate))
        m_top = std::min(m_topMaximum, std::max(m_topMinimum, estimate));
    if (m_low >= m_top)
        m_top = m_low + 0.01f;

    const float raw = rawLevel(v);
    appendEstimates(raw);
    m_lastRawLevel = raw;
    const float level = smooth(raw);

    m_lastSample.value = v;
    m_lastSample.low = m_low;
    m_lastSample.top = m_top;
    m_lastSample.level = level;
    m_lastSample.timestamp = timestamp;
    return level;
}

bool RhythmNormalizer::splitMean(int count, bool upper, float& result) const
{
    if (count <= 0)
        return false;
    const float divisor = float(count);
    const qsizetype first = m_historyOfValues.size() - count;
    // Each term is divided before summing: this rounding decides which values fall on either
    // side of the mean, so the order of operations is part of the behaviour.
    const float* history = m_historyOfValues.constData();
    float mean = 0;
    for (qsizetype i = first; i < m_historyOfValues.size(); ++i)
        mean += history[i] / divisor;

    float sum = 0;
    const int selected = upper ? sumSide<true>(history + first, count, mean, sum)
                               : sumSide<false>(history + first, count, mean, sum);
    if (selected == 0)
        return false;
    result = sum / float(selected);
    return true;
}

float RhythmNormalizer::rawLevel(float value) const
{
    const float level = (value - m_low) * 100.0f / (m_top - m_low);
    if (m_limitTo100 && level > 100.0f)
        return 100.0f;
    // Also maps NaN (a range lost to rounding far from zero) to 0.
    return std::max(0.0f, level);
}

float RhythmNormalizer::smooth(float rawLevel)
{
    if (m_smoothing == 0)
        m_smoothing = 1;
    m_smoothingBuffer.append(truncateLevel(rawLevel));
    while (m_smoothingBuffer.size() > m_smoothing)
        m_smoothingBuffer.removeFirst();
    // An integer mean of truncated levels, by design: the level moves in whole percent.
    qint64 sum = 0;
    for (qint32 entry : std::as_const(m_smoothingBuffer))
        sum += entry;
    return float(sum / m_smoothingBuffer.size());
}

void RhythmNormalizer::appendEstimates(float rawLevel)
{
    const int bound = std::max(m_historySize, MinKeptEstimates);
    appendBounded(m_historyOfLow, m_low, bound);
    appendBounded(m_historyOfTop, m_top, bound);
    appendBounded(m_historyOfRawLevel, rawLevel, bound);
}

void RhythmNormalizer::appendBounded(QList<float>& list, float value, int bound)
{
    // removeFirst() only moves the list's begin; the freed room is reused by later appends.
    list.append(value);
    while (list.size() > bound)
        list.removeFirst();
}

void RhythmNormalizer::addPartialValue(float value)
{
    m_partialValues.append(value);
    m_partialValuesCount = int(m_partialValues.size());
}

void RhythmNormalizer::clearPartialValues()
{
    m_partialValues.clear();
    m_partialValuesCount = 0;
}

bool RhythmNormalizer::addValueFromPartial(qint64 timestamp)
{
    if (m_partialValuesCount == 0)
        return false;
    float sum = 0;
    for (float v : std::as_const(m_partialValues))
        sum += v;
    const float mean = sum / float(m_partialValuesCount);
    clearPartialValues();
    addValue(mean, timestamp);
    return true;
}

void RhythmNormalizer::setHistorySize(int size)
{
    m_historySize = clampHistorySize(size);
}
