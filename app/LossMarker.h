#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class CortexCore;
class OrvexDevice;

// Samples a headset's decoder stood in for lost packets are held values, not signal: while a
// recording runs, each second with losses gets the annotation "Lost N packets" so a reader can
// leave those samples out. The side file keeps the same notes, so the counts stay exact.
class LossMarker : public QObject
{
    Q_OBJECT
public:
    explicit LossMarker(CortexCore* engine, QObject* parent = nullptr);

    // Annotates the losses counted since the last mark; what the timer does every second.
    void mark();

private:
    void onDeviceStarted();

    static constexpr int IntervalMs = 1000;

    CortexCore* m_engine;
    QPointer<OrvexDevice> m_headset;
    int m_marked = 0;  // losses already annotated (or seen before the recording)
    int m_atStart = 0; // the device's count when the recording started
    QTimer m_timer;
};
