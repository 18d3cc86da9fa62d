#include "core/EngineHistories.h"

#include <algorithm>

void EngineHistories::reset(int deviceChannels, int montageChannels, int maxSamples)
{
    m_device.reset(deviceChannels, maxSamples);
    m_montage.reset(montageChannels, maxSamples);
    m_filtered.reset(montageChannels, maxSamples);
}

void EngineHistories::setMaxSamples(int maxSamples)
{
    m_device.setMaxSamples(maxSamples);
    m_montage.setMaxSamples(maxSamples);
    m_filtered.setMaxSamples(maxSamples);
}

void EngineHistories::setGrabEnabled(bool enabled)
{
    m_grabEnabled = enabled;
    if (!enabled) {
        m_device.takeGrabbed();
        m_montage.takeGrabbed();
        m_filtered.takeGrabbed();
    }
}

void EngineHistories::appendDevice(const QList<QList<float>>& block) { m_device.append(block, m_grabEnabled); }
void EngineHistories::appendMontage(const QList<QList<float>>& block) { m_montage.append(block, m_grabEnabled); }
void EngineHistories::appendFiltered(const QList<QList<float>>& block) { m_filtered.append(block, m_grabEnabled); }

void EngineHistories::Shape::reset(int channels, int maxSamples)
{
    history.assign(size_t(std::max(0, channels)), SampleHistory());
    grab.assign(size_t(std::max(0, channels)), SampleHistory());
    setMaxSamples(maxSamples);
}

void EngineHistories::Shape::setMaxSamples(int maxSamples)
{
    for (auto& channel : history)
        channel.setMaxSamples(maxSamples);
    for (auto& channel : grab)
        channel.setMaxSamples(maxSamples);
}

void EngineHistories::Shape::append(const QList<QList<float>>& block, bool toGrab)
{
    const size_t channels = std::min(history.size(), size_t(block.size()));
    for (size_t i = 0; i < channels; ++i) {
        const QList<float>& samples = block[qsizetype(i)];
        history[i].append(samples.constData(), int(samples.size()));
        if (toGrab)
            grab[i].append(samples.constData(), int(samples.size()));
    }
}

QList<QList<float>> EngineHistories::Shape::contents() const
{
    QList<QList<float>> lists;
    lists.reserve(qsizetype(history.size()));
    for (const auto& channel : history)
        lists.append(channel.toList());
    return lists;
}

QList<QList<float>> EngineHistories::Shape::takeGrabbed()
{
    QList<QList<float>> lists;
    lists.reserve(qsizetype(grab.size()));
    for (auto& channel : grab)
        lists.append(channel.take());
    return lists;
}
