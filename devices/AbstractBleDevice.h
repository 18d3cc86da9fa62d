#pragma once

#include "core/AbstractDevice.h"
#include "services/TimeSource.h"

#include <QBluetoothDeviceInfo>
#include <QBluetoothUuid>

class BleTransport;
class KxTimer;

// Base of the Bluetooth LE headsets: connects through its transport, discovers the services,
// reads the standard Battery Service itself, hands every other service to the subclass and
// stops a device whose stream falls silent.
class AbstractBleDevice : public AbstractDevice
{
    Q_OBJECT
public:
    static const QBluetoothUuid BatteryServiceUuid;
    static const QBluetoothUuid BatteryLevelUuid;
    static constexpr int WatchIntervalMs = 1000;
    static constexpr int SilenceLimitMs = 3000;
    static constexpr int BatteryReadPeriodTicks = 600;

    // Takes ownership of `transport`.
    AbstractBleDevice(const QBluetoothDeviceInfo& info, BleTransport* transport, QObject* parent = nullptr);
    ~AbstractBleDevice() override;

    QBluetoothDeviceInfo bluetoothDeviceInfo() const { return m_info; }
    BleTransport* transport() const { return m_transport; }

    bool open() override;
    void close() override;
    void stop() override;
    bool hasBattery() override { return true; }

    // The clock of the silence and rate watches (and of the data counter).
    void setTimeSource(TimeSource source);
    bool isWatching() const;

public Q_SLOTS:
    // One tick of the connection watch; the watch timer calls it every second.
    void watchTick();

protected:
    virtual void parseDiscoveredService(const QBluetoothUuid& service) = 0;
    virtual void innerWatchConnection() {}
    virtual void watchConnection();
    virtual void innerStop() {}

    void stopTimer();
    bool startReadBattery();
    qint64 now() const { return m_now(); }

private:
    void onServicesDiscovered();
    void onServiceDetails(const QBluetoothUuid& service);
    void onCharacteristicRead(const QBluetoothUuid& characteristic, const QByteArray& value);
    void onError(int error);
    void onDisconnected();

    QBluetoothDeviceInfo m_info;
    BleTransport* m_transport;
    bool m_batteryReady = false;
    KxTimer* m_watchTimer = nullptr;
    int m_watchTicks = 0;
    int m_batteryReadPeriod = 60;
    TimeSource m_now = systemTimeMs;
};
