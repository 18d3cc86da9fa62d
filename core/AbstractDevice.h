#pragma once

#include "core/DataCounter.h"

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QString>

// Base of every data source: headsets, the generator and the file player. The engine knows
// devices only through this interface and receives their samples through dataReady().
class AbstractDevice : public QObject
{
    Q_OBJECT
public:
    enum ConnectionState { CONNECTED = 0, NOT_CONNECTED = 1, AWAITING_CONNECTION = 2 };
    Q_ENUM(ConnectionState)

    explicit AbstractDevice(QObject* parent = nullptr);
    ~AbstractDevice() override;

    virtual bool open() = 0;
    virtual void close() = 0;
    virtual bool start(int frequency) = 0;
    virtual void stop() = 0;
    virtual bool hasBattery() = 0;
    virtual bool hasImpedance() = 0;
    virtual bool hasAccelerometer();
    virtual void measureImpedance(bool enable);
    virtual QString deviceType() = 0;
    virtual QString deviceVersion() = 0;
    virtual ConnectionState connectionState();
    virtual QList<QString> channelNames();
    virtual int channelCount();
    virtual float samplingRate();
    virtual QString name();
    virtual QString privateName();
    virtual int batteryLevel();
    virtual void setBatteryLevel(int value);
    virtual QString receiverId();
    virtual void setReceiverId(QString id);
    virtual void customCommand(QString command);

    void emitSample(const QList<QList<float>>& channelWise);
    void emitAccelerometerSample(const QList<QList<float>>& data);
    float dataRate() const;
    DataCounter* counter() const { return m_counter; }

Q_SIGNALS:
    void disconnected();
    void connected();
    void batteryLevelUpdated(int value);
    void dataReady(QList<QList<float>> channelWise);
    void accelerometerDataReady(QList<QList<float>> data);
    void impedanceFetched(QList<double> impedances);
    void connectionStateChanged();
    void wrongDataRate();
    void accelerometerData(float x, float y, float z);

protected:
    void setConnected(bool connected);
    void setConnectedState(ConnectionState state);

    DataCounter* m_counter;
    QString m_name;
    QString m_privateName;
    QList<QString> m_channelNames;
    QString m_receiverId;
    qint32 m_channelCount = 0;
    bool m_flag = false;
    qint32 m_batteryLevel = -1;
    float m_samplingRate = 0;
    ConnectionState m_connectionState = NOT_CONNECTED;
    QList<QMetaObject::Connection> m_connections;
};
