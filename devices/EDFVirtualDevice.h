#pragma once

#include "core/AbstractDevice.h"
#include "services/TimeSource.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class EDFReader;
class KxTimer;

// Replays a recorded EDF/BDF file as if it were a live headset: the whole file is held in
// memory and handed out in blocks paced by the wall clock, looping at the end.
//
// The playback position is process-wide and shared by every instance, so all instances must
// live on one thread.
class EDFVirtualDevice : public AbstractDevice
{
    Q_OBJECT
public:
    explicit EDFVirtualDevice(QObject* parent = nullptr);
    ~EDFVirtualDevice() override;

    // Loads every channel of the file; on failure the device is left without data.
    void setPath(QString path);
    QString path() const { return m_path; }

    // Pacing reads the wall clock through this; tests drive it by hand.
    void setTimeSource(TimeSource source);

    // Playback without a clock: emits up to `blocks` blocks of `blockSamples` samples starting
    // at sample `first` of the file, and returns the sample after the last one emitted (the
    // length at the end). The paced position is left alone.
    qint64 emitRange(qint64 first, int blockSamples, int blocks);
    int lengthSamples() const { return m_length; }

    // The window's player controls. The position is the next sample handed out (shared by
    // every player); seeking clamps to the file.
    qint64 position() const;
    void seek(qint64 sample);
    // Paused, the timer keeps running but hands out nothing; continuing does not catch up.
    void setPaused(bool paused);
    bool isPaused() const { return m_paused; }
    // Pace relative to the wall clock, MinSpeed..MaxSpeed; false (and unchanged) outside.
    bool setSpeed(double speed);
    double speed() const { return m_speed; }
    static constexpr double MinSpeed = 0.5;
    static constexpr double MaxSpeed = 8.0;

    QString deviceType() override;
    QString deviceVersion() override;
    bool open() override;
    void close() override;
    bool start(int frequency) override;
    void stop() override;
    bool hasBattery() override;
    bool hasImpedance() override;

private Q_SLOTS:
    void onDataTimer();

private:
    void calcSampleOnPack();
    void releaseReader();

    qint64 m_lastTickTime = 0;
    float m_sampleCarry = 0;
    float m_samplesPerMs = 1.0f;
    KxTimer* m_dataTimer = nullptr;
    QString m_path;
    QPointer<EDFReader> m_reader;
    QList<QList<float>> m_channelData;
    int m_length = 0;
    qint32 m_samplesThisTick = 0;

    TimeSource m_timeSource;
    bool m_paused = false;
    double m_speed = 1.0;
};
