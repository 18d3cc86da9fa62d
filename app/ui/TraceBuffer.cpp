#include "app/ui/TraceBuffer.h"

#include "services/GlobalConsole.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {
constexpr float Gap = std::numeric_limits<float>::quiet_NaN();
// Beyond this many floats (1 GiB) a request is a mistake, not a screen.
constexpr double MaxFloats = 256.0 * 1024 * 1024;
}

TraceBuffer::TraceBuffer(QObject* parent)
    : QObject(parent)
{
}

void TraceBuffer::reset(const QStringList& names, double sampleRate, double seconds)
{
    const double perChannel = std::ceil(sampleRate * seconds - 1e-9);
    const bool valid = std::isfinite(perChannel) && sampleRate > 0 && seconds > 0
                       && perChannel * std::max<qsizetype>(names.size(), 1) <= MaxFloats;
    if (!valid)
        GlobalConsole::writeLine(QStringLiteral("Trace buffer: cannot keep %1 s at %2 Hz of %3 channels")
                                     .arg(seconds).arg(sampleRate).arg(names.size()));
    m_names = valid ? names : QStringList();
    m_sampleRate = valid ? sampleRate : 0;
    m_seconds = valid ? seconds : 0;
    m_capacity = valid ? std::max(1, int(perChannel)) : 0;
    m_written = 0;
    m_samples.assign(size_t(m_names.size()) * size_t(m_capacity), Gap);
    Q_EMIT layoutChanged();
}

void TraceBuffer::clear()
{
    m_written = 0;
    Q_EMIT layoutChanged();
}

void TraceBuffer::append(const QList<QList<float>>& channelWise)
{
    const int total = channelWise.isEmpty() ? 0 : int(channelWise.first().size());
    if (total == 0 || m_capacity == 0)
        return;
    for (int c = 0; c < channelCount(); ++c) {
        const bool present = c < channelWise.size();
        writeRow(c, present ? channelWise[c].constData() : nullptr,
                 present ? int(std::min<qsizetype>(channelWise[c].size(), total)) : 0, total);
    }
    m_written += total;
    Q_EMIT appended();
}

void TraceBuffer::appendFrame(const float* values, int count)
{
    if (m_capacity == 0)
        return;
    const int position = int(m_written % m_capacity);
    for (int c = 0; c < channelCount(); ++c)
        ring(c)[position] = values && c < count ? values[c] : Gap;
    ++m_written;
    Q_EMIT appended();
}

// Writes `total` samples of one channel at the write position: the first `count` from values,
// the rest as gaps. Only the last capacity samples can survive, so only those are written.
void TraceBuffer::writeRow(int channel, const float* values, int count, int total)
{
    const int skip = std::max(0, total - m_capacity);
    float* dst = ring(channel);
    int position = int((m_written + skip) % m_capacity);
    for (int i = skip; i < total;) {
        const int run = std::min(total - i, m_capacity - position);
        const int real = std::clamp(count - i, 0, run);
        if (real > 0)
            std::memcpy(dst + position, values + i, size_t(real) * sizeof(float));
        std::fill(dst + position + real, dst + position + run, Gap);
        i += run;
        position = 0;
    }
}

int TraceBuffer::copy(int channel, qint64 first, int count, float* dst) const
{
    if (count <= 0 || !dst)
        return 0;
    const qint64 end = first + count;
    const qint64 from = std::clamp(std::max({ first, m_written - m_capacity, qint64(0) }), first, end);
    const qint64 to = std::clamp(m_written, from, end);
    const bool valid = channel >= 0 && channel < channelCount();
    if (!valid) {
        GlobalConsole::writeLine(QStringLiteral("Trace buffer: no channel %1").arg(channel));
        std::fill(dst, dst + count, Gap);
        return 0;
    }
    std::fill(dst, dst + (from - first), Gap);
    std::fill(dst + (to - first), dst + count, Gap);
    const float* src = ring(channel);
    for (qint64 i = from; i < to;) {
        const int position = int(i % m_capacity);
        const int run = int(std::min<qint64>(to - i, m_capacity - position));
        std::memcpy(dst + (i - first), src + position, size_t(run) * sizeof(float));
        i += run;
    }
    return int(to - from);
}
