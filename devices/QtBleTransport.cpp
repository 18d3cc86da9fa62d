#include "devices/QtBleTransport.h"

#include "services/GlobalConsoleWriter.h"

#include <QLowEnergyController>
#include <QLowEnergyDescriptor>
#include <QLowEnergyService>

QtBleTransport::QtBleTransport(const QBluetoothDeviceInfo& info, QObject* parent)
    : BleTransport(parent)
    , m_controller(QLowEnergyController::createCentral(info, this))
{
    connect(m_controller, &QLowEnergyController::connected, this, &BleTransport::connected);
    connect(m_controller, &QLowEnergyController::disconnected, this, &BleTransport::disconnected);
    connect(m_controller, &QLowEnergyController::discoveryFinished, this, &BleTransport::servicesDiscovered);
    connect(m_controller, &QLowEnergyController::errorOccurred, this,
            [this](QLowEnergyController::Error error) { Q_EMIT errorOccurred(int(error)); });
}

void QtBleTransport::connectToDevice()
{
    m_controller->connectToDevice();
}

void QtBleTransport::disconnectFromDevice()
{
    m_controller->disconnectFromDevice();
}

void QtBleTransport::discoverServices()
{
    m_controller->discoverServices();
}

QList<QBluetoothUuid> QtBleTransport::services() const
{
    return m_controller->services();
}

void QtBleTransport::discoverServiceDetails(const QBluetoothUuid& uuid)
{
    if (m_services.contains(uuid))
        return;
    QLowEnergyService* service = m_controller->createServiceObject(uuid, this);
    if (!service) {
        kxDebug() << QStringLiteral("BLE service not offered: ") + uuid.toString();
        return;
    }
    m_services.insert(uuid, service);
    connect(service, &QLowEnergyService::stateChanged, this, [this, uuid](QLowEnergyService::ServiceState state) {
        if (state == QLowEnergyService::RemoteServiceDiscovered)
            Q_EMIT serviceDetailsDiscovered(uuid);
    });
    connect(service, &QLowEnergyService::characteristicRead, this,
            [this](const QLowEnergyCharacteristic& c, const QByteArray& value) {
                Q_EMIT characteristicRead(c.uuid(), value);
            });
    connect(service, &QLowEnergyService::characteristicWritten, this,
            [this](const QLowEnergyCharacteristic& c, const QByteArray& value) {
                Q_EMIT characteristicWritten(c.uuid(), value);
            });
    connect(service, &QLowEnergyService::characteristicChanged, this,
            [this](const QLowEnergyCharacteristic& c, const QByteArray& value) {
                Q_EMIT characteristicChanged(c.uuid(), value);
            });
    connect(service, &QLowEnergyService::errorOccurred, this, [uuid](QLowEnergyService::ServiceError error) {
        kxDebug() << QStringLiteral("BLE service error %1 on %2").arg(int(error)).arg(uuid.toString());
    });
    service->discoverDetails();
}

QLowEnergyCharacteristic QtBleTransport::characteristic(const QBluetoothUuid& service,
                                                        const QBluetoothUuid& uuid) const
{
    const QLowEnergyService* object = m_services.value(service);
    return object ? object->characteristic(uuid) : QLowEnergyCharacteristic();
}

bool QtBleTransport::hasCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& uuid) const
{
    return characteristic(service, uuid).isValid();
}

bool QtBleTransport::hasDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& uuid,
                                   const QBluetoothUuid& descriptor) const
{
    return characteristic(service, uuid).descriptor(descriptor).isValid();
}

void QtBleTransport::readCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& uuid)
{
    const QLowEnergyCharacteristic c = characteristic(service, uuid);
    if (c.isValid())
        m_services.value(service)->readCharacteristic(c);
}

void QtBleTransport::writeCharacteristic(const QBluetoothUuid& service, const QBluetoothUuid& uuid,
                                         const QByteArray& value)
{
    const QLowEnergyCharacteristic c = characteristic(service, uuid);
    if (c.isValid())
        m_services.value(service)->writeCharacteristic(c, value, QLowEnergyService::WriteWithResponse);
}

void QtBleTransport::writeDescriptor(const QBluetoothUuid& service, const QBluetoothUuid& uuid,
                                     const QBluetoothUuid& descriptor, const QByteArray& value)
{
    const QLowEnergyDescriptor d = characteristic(service, uuid).descriptor(descriptor);
    if (d.isValid())
        m_services.value(service)->writeDescriptor(d, value);
}
