#pragma once

#include <QList>

#include <vector>

// One channel's bounded history: keeps the newest `maxSamples` values. Cropping moves the
// start instead of copying; the storage is compacted only when its slack runs out, so
// appending stays O(1) amortised and memory stays within ~1.25x of the payload.
class SampleHistory
{
public:
    void setMaxSamples(int maxSamples);
    int maxSamples() const { return m_max; }

    void append(const float* values, int count);
    void clear();

    int size() const { return m_count; }
    const float* data() const { return m_buffer.data() + m_begin; }
    QList<float> toList() const;
    // Hands out the content and empties the history.
    QList<float> take();

private:
    void makeRoom(int count);

    std::vector<float> m_buffer;
    int m_begin = 0;
    int m_count = 0;
    int m_max = 0;
};
