#include "devices/AbstractBleDevice.h"

#include "devices/BleTransport.h"
#include "services/GlobalConsoleWriter.h"
#include "services/KxTimer.h"

const QBluetoothUuid AbstractBleDevice::BatteryServiceUuid(QStringLiteral("0000180f-0000-1000-8000-00805f9b34fb"));
const QBluetoothUuid AbstractBleDevice::BatteryLevelUuid(QStringLiteral("00002a19-0000-1000-8000-00805f9b34fb"));

AbstractBleDevice::AbstractBleDevice(const QBluetoothDeviceInfo& info, BleTransport* transport, QObject* parent)
    : AbstractDevice(parent)
    , m_info(info)
    , m_transport(transport)
{
    m_name = info.name();
    if (!m_transport)
        return;
    m_transport->setParent(this);
    m_connections << connect(m_transport, &BleTransport::servicesDiscovered, this,
                             &AbstractBleDevice::onServicesDiscovered)
                  << connect(m_transport, &BleTransport::errorOccurred, this, &AbstractBleDevice::onError)
                  << connect(m_transport, &BleTransport::connected, m_transport, &BleTransport::discoverServices)
                  << connect(m_transport, &BleTransport::disconnected, this, &AbstractBleDevice::onDisconnected)
                  << connect(m_transport, &BleTransport::serviceDetailsDiscovered, this,
                             &AbstractBleDevice::onServiceDetails)
                  << connect(m_transport, &BleTransport::characteristicRead, this,
                             &AbstractBleDevice::onCharacteristicRead);
}

AbstractBleDevice::~AbstractBleDevice()
{
    for (const auto& connection : std::as_const(m_connections))
        disconnect(connection);
}

void AbstractBleDevice::setTimeSource(TimeSource source)
{
    m_now = source;
    m_counter->setTimeSource(std::move(source));
}

bool AbstractBleDevice::open()
{
    if (!m_transport)
        return false;
    setConnectedState(AWAITING_CONNECTION);
    m_transport->connectToDevice();
    return true;
}

void AbstractBleDevice::close()
{
    if (!m_transport)
        return;
    m_transport->disconnectFromDevice();
    // Signals of a transport being torn down no longer concern this device.
    m_transport->disconnect(this);
    m_transport->deleteLater();
    m_transport = nullptr;
    m_batteryReady = false;
}

void AbstractBleDevice::stop()
{
    innerStop();
    stopTimer();
    setConnected(false);
}

void AbstractBleDevice::stopTimer()
{
    if (m_watchTimer)
        QMetaObject::invokeMethod(m_watchTimer, &QTimer::stop, Qt::QueuedConnection);
}

bool AbstractBleDevice::isWatching() const
{
    return m_watchTimer && m_watchTimer->isActive();
}

bool AbstractBleDevice::startReadBattery()
{
    if (!m_transport || !m_batteryReady)
        return false;
    m_transport->readCharacteristic(BatteryServiceUuid, BatteryLevelUuid);
    return true;
}

void AbstractBleDevice::onServicesDiscovered()
{
    if (!m_transport)
        return;
    for (const QBluetoothUuid& service : m_transport->services()) {
        if (service == BatteryServiceUuid)
            m_transport->discoverServiceDetails(service);
        else
            parseDiscoveredService(service);
    }
}

void AbstractBleDevice::onServiceDetails(const QBluetoothUuid& service)
{
    if (service != BatteryServiceUuid || !m_transport)
        return;
    m_batteryReady = m_transport->hasCharacteristic(BatteryServiceUuid, BatteryLevelUuid);
    startReadBattery();
}

void AbstractBleDevice::onCharacteristicRead(const QBluetoothUuid& characteristic, const QByteArray& value)
{
    if (characteristic != BatteryLevelUuid)
        return;
    if (value.isEmpty()) {
        kxDebug() << QStringLiteral("BAD BATTERY SERVICE VALUES!");
        return;
    }
    setBatteryLevel(quint8(value.at(0)));
}

void AbstractBleDevice::onError(int error)
{
    kxDebug() << m_name << QStringLiteral("Cannot connect to remote device.") << error;
    setConnected(false);
}

void AbstractBleDevice::onDisconnected()
{
    kxDebug() << m_name << QStringLiteral("Error") << QStringLiteral("LowEnergy controller disconnected");
    setConnected(false);
}

void AbstractBleDevice::watchConnection()
{
    m_counter->reset(0);
    if (!m_watchTimer) {
        m_watchTimer = new KxTimer(WatchIntervalMs, this);
        m_watchTicks = 0;
        m_batteryReadPeriod = BatteryReadPeriodTicks;
        connect(m_watchTimer, &QTimer::timeout, this, &AbstractBleDevice::watchTick);
    }
    m_counter->updateTime();
    m_watchTimer->start();
}

void AbstractBleDevice::watchTick()
{
    if (now() - m_counter->lastDataTimestamp() > SilenceLimitMs) {
        kxDebug() << QStringLiteral("BLE DEVICE DISCONNECTED");
        QMetaObject::invokeMethod(this, &AbstractBleDevice::stop, Qt::QueuedConnection);
        return;
    }
    innerWatchConnection();
    if (++m_watchTicks >= m_batteryReadPeriod) {
        m_watchTicks = 0;
        startReadBattery();
    }
}
