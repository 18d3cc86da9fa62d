#pragma once

#include "devices/BleTransport.h"

#include <QBluetoothDeviceInfo>
#include <QHash>
#include <QLowEnergyCharacteristic>

class QLowEnergyController;
class QLowEnergyService;

// BleTransport over the platform's Bluetooth stack: one central controller for the remote
// device and one service object per service whose details were asked for.
class QtBleTransport : public BleTransport
{
    Q_OBJECT
public:
    QtBleTransport(const QBluetoothDeviceInfo& info, QObject* parent = nullptr);

    void connectToDevice() override;
    void disconnectFromDevice() override;
    void discoverServices() override;
    QList<QBluetoothUuid> services() const override;
    void discoverServiceDetails(const QBluetoothUuid& service) override;
    bool hasCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic) const override;
    bool hasDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                       const QBluetoothUuid& descriptor) const override;
    void readCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic) override;
    void writeCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                             const QByteArray& value) override;
    void writeDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                         const QBluetoothUuid& descriptor, const QByteArray& value) override;

private:
    QLowEnergyCharacteristic characteristic(const QBluetoothUuid& service, const QBluetoothUuid& uuid) const;

    QLowEnergyController* m_controller;
    QHash<QBluetoothUuid, QLowEnergyService*> m_services;
};
