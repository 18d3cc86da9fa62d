#pragma once

#include "devices/BleTransport.h"

#include <QList>

#include <functional>

// A headset on the far side of a simulated Bluetooth link: it offers the Battery Service and
// the headset's data service, answers every request a moment later (like a real stack),
// records the writes it receives, and sends whatever notifications its owner gives it.
class SimulatedHeadsetPeer : public BleTransport
{
    Q_OBJECT
public:
    // What the peer offers and how it behaves; change before the device connects.
    struct Profile
    {
        bool batteryService = true;
        QByteArray batteryValue = QByteArray(1, char(87));
        bool dataService = true;
        bool controlCharacteristic = true;
        bool notificationDescriptor = true;
        bool acknowledgeStop = true;
        int connectError = -1; // >= 0: connecting fails with this error value
    };

    explicit SimulatedHeadsetPeer(QObject* parent = nullptr);

    Profile& profile() { return m_profile; }

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

    // The headset side: a data notification, and the link dropping.
    void notify(const QByteArray& packet);
    void dropLink();

    bool isLinked() const { return m_linked; }
    bool notificationsOn() const { return m_notificationsOn; }
    QList<QByteArray> controlWrites() const { return m_controlWrites; }
    QList<QByteArray> descriptorWrites() const { return m_descriptorWrites; }
    int batteryReads() const { return m_batteryReads; }

Q_SIGNALS:
    // A command to stream: mode 1 (default frame) or 2 ("6x3"), rate in Hz.
    void streamRequested(int mode, int rate);
    void stopRequested();

private:
    void later(std::function<void()> action);

    Profile m_profile;
    bool m_linked = false;
    bool m_notificationsOn = false;
    QList<QByteArray> m_controlWrites;
    QList<QByteArray> m_descriptorWrites;
    int m_batteryReads = 0;
};
