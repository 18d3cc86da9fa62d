#include "core/DataCounter.h"

DataCounter::DataCounter(QObject* parent)
    : QObject(parent)
{
}

void DataCounter::addFrame(int count)
{
    if (count < 1)
        return;
    const qint64 now = m_now();
    m_lastDataTimestamp = now;
    m_packets += count;
    const qint64 cutoff = now - m_intervalMs;
    while (!m_frames.isEmpty() && m_frames.first().first < cutoff)
        m_frames.removeFirst();
    m_frames.append({ now, count });
}

double DataCounter::dataRate() const
{
    const qint64 now = m_now();
    const qint64 cutoff = now - m_intervalMs;
    qint64 sum = 0;
    qint64 first = 0;
    bool found = false;
    for (const auto& frame : m_frames) {
        if (frame.first < cutoff)
            continue;
        if (!found) {
            first = frame.first;
            found = true;
        }
        sum += frame.second;
    }
    // A single frame at the current millisecond divides by zero: the result is infinite
    // and callers tolerate it.
    return double(sum) * 1000.0 / double(now - first);
}

void DataCounter::reset(int intervalMs)
{
    m_packets = 0;
    m_frames.clear();
    m_lastDataTimestamp = m_now();
    if (intervalMs > 0)
        m_intervalMs = intervalMs;
}

void DataCounter::start(int intervalMs)
{
    reset(intervalMs);
}

void DataCounter::updateTime()
{
    m_lastDataTimestamp = m_now();
}

void DataCounter::setIntervalMs(int intervalMs)
{
    m_intervalMs = intervalMs;
}

int DataCounter::intervalMS() const
{
    return m_intervalMs;
}

int DataCounter::packets() const
{
    return m_packets;
}

qint64 DataCounter::lastDataTimestamp() const
{
    return m_lastDataTimestamp;
}
