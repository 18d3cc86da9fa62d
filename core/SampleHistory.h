#pragma once

#include <QList>

#include <vector>

// One channel's bounded history: keeps the newest `maxSamples` values. The storage grows
// geometrically up to maxSamples values and is then used as a ring, so a full history costs
// its payload and appending never moves what is kept.
class SampleHistory
{
public:
    void setMaxSamples(int maxSamples);
    int maxSamples() const { return m_max; }

    void append(const float* values, int count);
    void clear();

    int size() const { return m_count; }
    QList<float> toList() const;
    // Hands out the content and empties the history.
    QList<float> take();

private:
    void reallocate(size_t capacity);
    void copyOut(float* out) const;

    std::vector<float> m_buffer;
    int m_begin = 0; // oldest value's slot
    int m_count = 0;
    int m_max = 0;
};
