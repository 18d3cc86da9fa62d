#pragma once

#include "core/RhythmNormSample.h"

#include <QList>
#include <QtGlobal>

// Turns a stream of raw rhythm values (percent of spectral amplitude, one per spectrum step)
// into a 0-100 level that adapts to the user. The newest values give an adaptive "low" (mean
// of the values below the mean of the newest low-history-size values) and "top" (mean of the
// values at or above the mean of the newest top-history-size values); the current value is
// mapped linearly between them and the result is smoothed as an integer mean over the last
// `smoothing` levels. See docs/rhythm-normalizer.md.
//
// Memory stays bounded however long metering runs: the value history keeps historySize
// values, the smoothing buffer at most 255 levels, and the histories of low, top and raw
// level keep the newest max(historySize, MinKeptEstimates) entries. Once a history is full,
// adding a value allocates nothing.
//
// A plain value type; not thread-safe (the engine calls it under its data mutex).
class RhythmNormalizer
{
public:
    // The low, top and raw-level histories keep at least this many entries.
    static constexpr int MinKeptEstimates = 1000;
    // Larger history sizes are clamped to this (about a day at ten spectra a second).
    static constexpr int MaxHistorySize = 1000000;

    RhythmNormalizer(float initialLow = 0, float initialTop = 100, float lowMinimum = 0,
                     float lowMaximum = 100, int lowHistorySize = 1000, float topMinimum = 0,
                     float topMaximum = 100, int topHistorySize = 10, int historySize = 1000,
                     int smoothing = 16, bool limitTo100 = true);

    // Stores the parameters and restarts: clears every history, the smoothing buffer and the
    // partial values, then pre-fills the value history with ceil(historySize / 2) pairs
    // (initialLow, initialTop) so the first estimates start from the configured thresholds.
    // Only the minimums clamp the initial low and top. The smoothing length is the low byte
    // of `smoothing` (256 gives 0, used as 1). The last sample is kept.
    void init(float initialLow, float initialTop, float lowMinimum, float lowMaximum,
              int lowHistorySize, float topMinimum, float topMaximum, int topHistorySize,
              int historySize, int smoothing, bool limitTo100);

    // Adds one raw value (negative and NaN count as 0; above 100 counts as 100 when limited)
    // and returns the smoothed level; 0 without touching the last sample when the history
    // size is 0 or negative.
    float addValue(float value, qint64 timestamp);

    // Collects several raw values (per channel or per spectrum) to be added as their mean.
    void addPartialValue(float value);
    int partialValuesCount() const { return m_partialValuesCount; }
    void clearPartialValues();
    // Adds the mean of the partial values and clears them; false when there are none.
    bool addValueFromPartial(qint64 timestamp);

    float getLow() const { return m_low; }
    float getTop() const { return m_top; }
    // The latest reading: clamped input, low, top, smoothed level and time stamp (-1 before
    // the first value).
    const RhythmNormSample& getLastValue() const { return m_lastSample; }
    float getLastRawLevel() const { return m_lastRawLevel; }
    const QList<float>& getHistoryOfValues() const { return m_historyOfValues; }
    const QList<float>& getHistoryOfLow() const { return m_historyOfLow; }
    const QList<float>& getHistoryOfTop() const { return m_historyOfTop; }
    const QList<float>& getHistoryOfRawLevel() const { return m_historyOfRawLevel; }
    quint8 getSmoothing() const { return m_smoothing; }

    // Sizes take effect from the next value. The history size is clamped to at most
    // MaxHistorySize (with a console line); 0 or less makes addValue return 0.
    int getHistorySize() const { return m_historySize; }
    void setHistorySize(int size);
    int getHistorySizeLow() const { return m_historySizeLow; }
    void setHistorySizeLow(int size) { m_historySizeLow = size; }
    int getHistorySizeTop() const { return m_historySizeTop; }
    void setHistorySizeTop(int size) { m_historySizeTop = size; }
    bool isLimitedTo100() const { return m_limitTo100; }
    void setLimitTo100(bool limit) { m_limitTo100 = limit; }

private:
    // Mean of the newest `count` values that lie below (or, with `upper`, at or above) the
    // mean of those values; false when there is no such value or count is not positive.
    bool splitMean(int count, bool upper, float& result) const;
    float rawLevel(float value) const;
    float smooth(float rawLevel);
    void appendEstimates(float rawLevel);
    static void appendBounded(QList<float>& list, float value, int bound);

    RhythmNormSample m_lastSample;
    QList<float> m_historyOfValues;
    QList<float> m_historyOfLow;
    QList<float> m_historyOfTop;
    QList<float> m_historyOfRawLevel;
    int m_historySize = 0;
    int m_historySizeLow = 0;
    int m_historySizeTop = 0;
    bool m_limitTo100 = true;
    float m_lastRawLevel = 0;
    quint8 m_smoothing = 1;
    QList<qint32> m_smoothingBuffer;
    float m_low = 0;
    float m_top = 0;
    float m_lowMinimum = 0;
    float m_lowMaximum = 0;
    float m_topMinimum = 0;
    float m_topMaximum = 0;
    QList<float> m_partialValues;
    int m_partialValuesCount = 0;
};
