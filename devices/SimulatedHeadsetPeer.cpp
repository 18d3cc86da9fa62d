#include "devices/SimulatedHeadsetPeer.h"

#include "devices/AbstractBleDevice.h"
#include "devices/OrvexDevice.h"

#include <QTimer>

SimulatedHeadsetPeer::SimulatedHeadsetPeer(QObject* parent)
    : BleTransport(parent)
{
}

void SimulatedHeadsetPeer::later(std::function<void()> action)
{
    QTimer::singleShot(0, this, std::move(action));
}

void SimulatedHeadsetPeer::connectToDevice()
{
    later([this] {
        if (m_profile.connectError >= 0) {
            Q_EMIT errorOccurred(m_profile.connectError);
            return;
        }
        m_linked = true;
        Q_EMIT connected();
    });
}

void SimulatedHeadsetPeer::disconnectFromDevice()
{
    m_notificationsOn = false;
    if (!m_linked)
        return;
    m_linked = false;
    Q_EMIT stopRequested();
    later([this] { Q_EMIT disconnected(); });
}

void SimulatedHeadsetPeer::dropLink()
{
    if (!m_linked)
        return;
    m_linked = false;
    m_notificationsOn = false;
    Q_EMIT stopRequested();
    Q_EMIT disconnected();
}

void SimulatedHeadsetPeer::discoverServices()
{
    later([this] {
        if (m_linked)
            Q_EMIT servicesDiscovered();
    });
}

QList<QBluetoothUuid> SimulatedHeadsetPeer::services() const
{
    QList<QBluetoothUuid> offered;
    if (m_profile.batteryService)
        offered.append(AbstractBleDevice::BatteryServiceUuid);
    if (m_profile.dataService)
        offered.append(OrvexDevice::DataServiceUuid);
    return offered;
}

void SimulatedHeadsetPeer::discoverServiceDetails(const QBluetoothUuid& service)
{
    if (!services().contains(service))
        return;
    later([this, service] {
        if (m_linked)
            Q_EMIT serviceDetailsDiscovered(service);
    });
}

bool SimulatedHeadsetPeer::hasCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic) const
{
    if (service == AbstractBleDevice::BatteryServiceUuid)
        return m_profile.batteryService && characteristic == AbstractBleDevice::BatteryLevelUuid;
    if (service != OrvexDevice::DataServiceUuid || !m_profile.dataService)
        return false;
    return characteristic == OrvexDevice::DataCharacteristicUuid
        || (characteristic == OrvexDevice::ControlCharacteristicUuid && m_profile.controlCharacteristic);
}

bool SimulatedHeadsetPeer::hasDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                                         const QBluetoothUuid& descriptor) const
{
    return m_profile.notificationDescriptor && hasCharacteristic(service, characteristic)
        && characteristic == OrvexDevice::DataCharacteristicUuid
        && descriptor == OrvexDevice::NotificationDescriptorUuid;
}

void SimulatedHeadsetPeer::readCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic)
{
    if (!m_linked || !hasCharacteristic(service, characteristic))
        return;
    if (characteristic == AbstractBleDevice::BatteryLevelUuid)
        ++m_batteryReads;
    const QByteArray value = characteristic == AbstractBleDevice::BatteryLevelUuid ? m_profile.batteryValue
                                                                                   : QByteArray();
    later([this, characteristic, value] { Q_EMIT characteristicRead(characteristic, value); });
}

void SimulatedHeadsetPeer::writeCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                                               const QByteArray& value)
{
    if (!m_linked || !hasCharacteristic(service, characteristic)
        || characteristic != OrvexDevice::ControlCharacteristicUuid)
        return;
    m_controlWrites.append(value);
    const bool stop = value.size() < 2 || value.at(1) == 0;
    if (stop)
        Q_EMIT stopRequested();
    else
        Q_EMIT streamRequested(quint8(value.at(0)), quint8(value.at(1)) * 125);
    if (stop && !m_profile.acknowledgeStop)
        return;
    later([this, characteristic, value] { Q_EMIT characteristicWritten(characteristic, value); });
}

void SimulatedHeadsetPeer::writeDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& characteristic,
                                           const QBluetoothUuid& descriptor, const QByteArray& value)
{
    if (!m_linked || !hasDescriptor(service, characteristic, descriptor))
        return;
    m_descriptorWrites.append(value);
    m_notificationsOn = value == OrvexDevice::NotificationsOn;
}

void SimulatedHeadsetPeer::notify(const QByteArray& packet)
{
    if (m_linked && m_notificationsOn)
        Q_EMIT characteristicChanged(OrvexDevice::DataCharacteristicUuid, packet);
}
