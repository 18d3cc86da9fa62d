#include "core/SampleHistory.h"

#include <algorithm>
#include <cstring>

void SampleHistory::setMaxSamples(int maxSamples)
{
    m_max = std::max(0, maxSamples);
    if (m_count > m_max) {
        m_begin += m_count - m_max;
        m_count = m_max;
    }
    const size_t capacity = size_t(m_max) + size_t(m_max / 4) + 64;
    if (m_buffer.size() > capacity) {
        if (m_count > 0)
            std::memmove(m_buffer.data(), data(), size_t(m_count) * sizeof(float));
        m_begin = 0;
        m_buffer.resize(capacity);
        m_buffer.shrink_to_fit();
    }
}

void SampleHistory::append(const float* values, int count)
{
    if (count <= 0 || m_max == 0)
        return;
    if (count >= m_max) {
        values += count - m_max;
        count = m_max;
        m_begin = 0;
        m_count = 0;
    } else if (m_count + count > m_max) {
        const int drop = m_count + count - m_max;
        m_begin += drop;
        m_count -= drop;
    }
    makeRoom(count);
    std::memcpy(m_buffer.data() + m_begin + m_count, values, size_t(count) * sizeof(float));
    m_count += count;
}

void SampleHistory::makeRoom(int count)
{
    const size_t needed = size_t(m_begin) + size_t(m_count) + size_t(count);
    if (needed <= m_buffer.size())
        return;
    const size_t capacity = size_t(m_max) + size_t(m_max / 4) + 64;
    if (m_begin > 0 && size_t(m_count + count) <= m_buffer.size() && m_buffer.size() >= capacity) {
        if (m_count > 0)
            std::memmove(m_buffer.data(), data(), size_t(m_count) * sizeof(float));
        m_begin = 0;
        return;
    }
    // Still growing towards the full history: grow geometrically, compacting on the way.
    const size_t grown = std::min(capacity, std::max(size_t(m_count + count), m_buffer.size() * 2));
    std::vector<float> next(std::max(grown, size_t(m_count + count)));
    if (m_count > 0)
        std::memcpy(next.data(), data(), size_t(m_count) * sizeof(float));
    m_buffer.swap(next);
    m_begin = 0;
}

void SampleHistory::clear()
{
    m_begin = 0;
    m_count = 0;
}

QList<float> SampleHistory::toList() const
{
    return QList<float>(data(), data() + m_count);
}

QList<float> SampleHistory::take()
{
    QList<float> values = toList();
    clear();
    return values;
}
