#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class CortexCore;
class EDFVirtualDevice;
class VirtualDevicesSettings;

// Plays a record through the file player device, as the devices screen would start it, and
// drives the player: position, pause, pace.
class RecordPlayerController : public QObject
{
    Q_OBJECT
    // The player device is the current device and plays the file chosen here.
    Q_PROPERTY(bool active READ isActive NOTIFY stateChanged)
    Q_PROPERTY(QString file READ file NOTIFY stateChanged)
    Q_PROPERTY(bool paused READ isPaused NOTIFY stateChanged)
    Q_PROPERTY(double speed READ speed NOTIFY stateChanged)
    Q_PROPERTY(QList<double> speeds READ speeds CONSTANT)
    Q_PROPERTY(double durationSeconds READ durationSeconds NOTIFY stateChanged)
    Q_PROPERTY(double positionSeconds READ positionSeconds NOTIFY positionChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    RecordPlayerController(CortexCore* engine, VirtualDevicesSettings* virtualDevices, QObject* parent = nullptr);

    bool isActive() const { return player() != nullptr; }
    QString file() const { return m_path; }
    bool isPaused() const;
    double speed() const { return m_speed; }
    static QList<double> speeds();
    double durationSeconds() const;
    double positionSeconds() const;
    QString message() const { return m_message; }

    // Starts the file player on `path` from its beginning; refused while recording.
    Q_INVOKABLE bool play(const QString& path);
    Q_INVOKABLE void stop();
    Q_INVOKABLE void seek(double seconds);
    Q_INVOKABLE void setPaused(bool paused);
    // One of speeds(); others are refused.
    Q_INVOKABLE bool setSpeed(double speed);

Q_SIGNALS:
    void stateChanged();
    void positionChanged();
    void messageChanged();

private:
    EDFVirtualDevice* player() const;
    void setMessage(const QString& message);
    void poll();

    CortexCore* m_engine;
    VirtualDevicesSettings* m_virtualDevices;
    QString m_path;
    double m_speed = 1.0;
    qint64 m_lastPosition = -1;
    QString m_message;
    QTimer m_poll;
};
