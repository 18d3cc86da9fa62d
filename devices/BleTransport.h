#pragma once

#include <QBluetoothUuid>
#include <QByteArray>
#include <QList>
#include <QObject>

// The GATT operations a headset needs from a Bluetooth LE central, addressed by UUIDs. The
// headset classes talk only to this interface, so they run unchanged against the platform's
// Bluetooth stack or against a simulated peer. Every request answers later through a signal.
class BleTransport : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void connectToDevice() = 0;
    virtual void disconnectFromDevice() = 0;
    // Answered by servicesDiscovered(); services() then lists what the peer offers.
    virtual void discoverServices() = 0;
    virtual QList<QBluetoothUuid> services() const = 0;
    // Answered by serviceDetailsDiscovered(service) once its characteristics are known.
    virtual void discoverServiceDetails(const QBluetoothUuid& service) = 0;
    virtual bool hasCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic) const = 0;
    virtual bool hasDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                               const QBluetoothUuid& descriptor) const = 0;
    virtual void readCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic) = 0;
    // Write with response: characteristicWritten() is the acknowledgement.
    virtual void writeCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                                     const QByteArray& value) = 0;
    virtual void writeDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                                 const QBluetoothUuid& descriptor, const QByteArray& value) = 0;

Q_SIGNALS:
    void connected();
    void disconnected();
    void errorOccurred(int error);
    void servicesDiscovered();
    void serviceDetailsDiscovered(const QBluetoothUuid& service);
    void characteristicRead(const QBluetoothUuid& characteristic, const QByteArray& value);
    void characteristicWritten(const QBluetoothUuid& characteristic, const QByteArray& value);
    void characteristicChanged(const QBluetoothUuid& characteristic, const QByteArray& value);
};
