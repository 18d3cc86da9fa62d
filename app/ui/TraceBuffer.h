#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <vector>

// The last few seconds of a few channels, one preallocated ring per channel. Samples are
// addressed by their absolute index since the last reset, so a view can anchor to sample
// positions that stay put while the ring turns.
class TraceBuffer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int channelCount READ channelCount NOTIFY layoutChanged)
    Q_PROPERTY(QStringList channelNames READ channelNames NOTIFY layoutChanged)
    Q_PROPERTY(double sampleRate READ sampleRate NOTIFY layoutChanged)
    Q_PROPERTY(double capacitySeconds READ capacitySeconds NOTIFY layoutChanged)
public:
    explicit TraceBuffer(QObject* parent = nullptr);

    // Allocates the rings; a bad rate or duration is reported and leaves the buffer empty.
    void reset(const QStringList& names, double sampleRate, double seconds);
    // Forgets the samples and restarts the index space at 0; the layout stays, and views hear of
    // the restart through layoutChanged.
    void clear();
    // One list per channel, equal lengths. Extra rows are ignored, missing or short rows become
    // NaN gaps. Allocates nothing.
    void append(const QList<QList<float>>& channelWise);
    // One sample for each channel; channels beyond count get NaN.
    void appendFrame(const float* values, int count);

    int channelCount() const { return m_names.size(); }
    QStringList channelNames() const { return m_names; }
    double sampleRate() const { return m_sampleRate; }
    double capacitySeconds() const { return m_seconds; }
    int capacity() const { return m_capacity; }
    qint64 written() const { return m_written; }

    // Copies samples [first, first + count) of `channel` into dst; samples not held (too old,
    // not yet written, negative) become NaN. Returns the number of held samples copied.
    int copy(int channel, qint64 first, int count, float* dst) const;

Q_SIGNALS:
    void layoutChanged();
    void appended();

private:
    float* ring(int channel) { return m_samples.data() + size_t(channel) * size_t(m_capacity); }
    const float* ring(int channel) const
    {
        return m_samples.data() + size_t(channel) * size_t(m_capacity);
    }
    void writeRow(int channel, const float* values, int count, int total);

    QStringList m_names;
    double m_sampleRate = 0;
    double m_seconds = 0;
    int m_capacity = 0;
    qint64 m_written = 0;
    std::vector<float> m_samples;
};
