#pragma once

#include <QObject>

class CortexCore;
class OrvexModel;

// What the status bar shows besides the channels' quality and the recording: the device, its
// battery and rate, the command interface's address and the latest console warning.
class StatusController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString deviceName READ deviceName NOTIFY deviceChanged)
    Q_PROPERTY(int battery READ battery NOTIFY deviceChanged)
    Q_PROPERTY(double samplingRate READ samplingRate NOTIFY deviceChanged)
    Q_PROPERTY(QString apiAddress READ apiAddress CONSTANT)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    explicit StatusController(OrvexModel* model, QObject* parent = nullptr);

    QString deviceName() const { return m_deviceName; }
    int battery() const { return m_battery; }
    double samplingRate() const { return m_samplingRate; }
    // "API http://127.0.0.1:2336 · ws :1336", or "API off".
    QString apiAddress() const;
    QString message() const { return m_message; }
    void setMessage(const QString& message);

Q_SIGNALS:
    void deviceChanged();
    void messageChanged();

private:
    void refreshDevice();

    OrvexModel* m_model;
    CortexCore* m_engine;
    QString m_deviceName;
    int m_battery = -1;
    double m_samplingRate = 0;
    QString m_message;
};
