#include "core/SampleHistory.h"

#include <algorithm>
#include <cstring>

void SampleHistory::setMaxSamples(int maxSamples)
{
    m_max = std::max(0, maxSamples);
    if (m_count > m_max) {
        m_begin = int((size_t(m_begin) + size_t(m_count - m_max)) % m_buffer.size());
        m_count = m_max;
    }
    if (m_buffer.size() > size_t(m_max))
        reallocate(size_t(m_max));
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
    }
    const size_t needed = std::min(size_t(m_max), size_t(m_count) + size_t(count));
    if (needed > m_buffer.size())
        reallocate(std::min(size_t(m_max), std::max(needed, 2 * m_buffer.size())));

    // Write after the newest value, wrapping round; once full this overwrites the oldest.
    const size_t capacity = m_buffer.size();
    const size_t end = (size_t(m_begin) + size_t(m_count)) % capacity;
    const size_t first = std::min(size_t(count), capacity - end);
    std::memcpy(m_buffer.data() + end, values, first * sizeof(float));
    if (first < size_t(count))
        std::memcpy(m_buffer.data(), values + first, (size_t(count) - first) * sizeof(float));
    const size_t total = size_t(m_count) + size_t(count);
    if (total > capacity) {
        m_begin = int((size_t(m_begin) + total - capacity) % capacity);
        m_count = int(capacity);
    } else {
        m_count = int(total);
    }
}

// The kept values in order into storage of `capacity` (at least the count) starting at 0.
void SampleHistory::reallocate(size_t capacity)
{
    std::vector<float> next(capacity);
    copyOut(next.data());
    m_buffer.swap(next);
    m_begin = 0;
}

void SampleHistory::copyOut(float* out) const
{
    if (m_count == 0)
        return;
    const size_t first = std::min(size_t(m_count), m_buffer.size() - size_t(m_begin));
    std::memcpy(out, m_buffer.data() + m_begin, first * sizeof(float));
    std::memcpy(out + first, m_buffer.data(), (size_t(m_count) - first) * sizeof(float));
}

void SampleHistory::clear()
{
    m_begin = 0;
    m_count = 0;
}

QList<float> SampleHistory::toList() const
{
    QList<float> values(m_count);
    copyOut(values.data());
    return values;
}

QList<float> SampleHistory::take()
{
    QList<float> values = toList();
    clear();
    return values;
}
