#pragma once

#include <QObject>

class CortexCore;
class OrvexSettings;

// A lost device pauses the recording until it is back; this continues the recording when the
// engine has reconnected it, so nothing after the reconnection is lost unless someone notices.
// The gap is marked with "Device disconnected" and "Device reconnected" (besides the engine's
// own pause annotation). A recording the user paused stays paused.
class RecordingResumer : public QObject
{
    Q_OBJECT
public:
    RecordingResumer(CortexCore* engine, OrvexSettings* settings, QObject* parent = nullptr);

private:
    void watchDevice();
    void onDisconnected();
    void onDeviceStarted();

    CortexCore* m_engine;
    OrvexSettings* m_settings;
    QString m_lostDevice; // the device whose loss paused the recording
};
