#include "app/ui/ScrollClock.h"

#include <algorithm>
#include <cmath>

void ScrollClock::arrived(qint64 written, double nowMs)
{
    const double block = double(written - m_lastWritten);
    if (block > 0)
        m_blockSamples = m_blockSamples > 0 ? 0.8 * m_blockSamples + 0.2 * block : block;
    m_lastWritten = written;
    m_lastMs = nowMs;
}

void ScrollClock::reset()
{
    *this = ScrollClock();
}

qint64 ScrollClock::endAt(double nowMs, double rate, qint64 written)
{
    if (!isLive(nowMs) || rate <= 0) {
        m_shown = written;
        return written;
    }
    const double glided = double(m_lastWritten) - m_blockSamples + (nowMs - m_lastMs) * rate / 1000.0;
    const qint64 lowest = written - qint64(std::ceil(BlocksBehindAtMost * m_blockSamples));
    m_shown = std::clamp(std::max(m_shown, qint64(std::floor(glided))), std::max<qint64>(lowest, 0), written);
    return m_shown;
}

bool ScrollClock::isLive(double nowMs) const
{
    return m_lastMs >= 0 && nowMs - m_lastMs <= LiveWithinMs;
}
