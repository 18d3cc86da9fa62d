#pragma once

#include "core/SampleHistory.h"

#include <QList>

#include <vector>

// The engine's kept data: device channels as received, unfiltered montage channels and
// filtered montage channels, each with a grab buffer that collects what arrived since the
// previous grab. Everything is bounded by the storage length.
class EngineHistories
{
public:
    void reset(int deviceChannels, int montageChannels, int maxSamples);
    void setMaxSamples(int maxSamples);
    void setGrabEnabled(bool enabled);

    void appendDevice(const QList<QList<float>>& block);
    void appendMontage(const QList<QList<float>>& block);
    void appendFiltered(const QList<QList<float>>& block);

    QList<QList<float>> device() const { return m_device.contents(); }
    QList<QList<float>> montage() const { return m_montage.contents(); }
    QList<QList<float>> filtered() const { return m_filtered.contents(); }
    QList<QList<float>> grabDevice() { return m_device.takeGrabbed(); }
    QList<QList<float>> grabMontage() { return m_montage.takeGrabbed(); }
    QList<QList<float>> grabFiltered() { return m_filtered.takeGrabbed(); }

private:
    struct Shape
    {
        std::vector<SampleHistory> history;
        std::vector<SampleHistory> grab;

        void reset(int channels, int maxSamples);
        void setMaxSamples(int maxSamples);
        void append(const QList<QList<float>>& block, bool toGrab);
        QList<QList<float>> contents() const;
        QList<QList<float>> takeGrabbed();
    };

    Shape m_device;
    Shape m_montage;
    Shape m_filtered;
    bool m_grabEnabled = false;
};
