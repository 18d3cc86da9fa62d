#include "devices/BleDeviceDiscovery.h"

#include "services/GlobalConsoleWriter.h"

#include <QBluetoothDeviceDiscoveryAgent>
#include <QBluetoothLocalDevice>
#include <QTimer>

BleDeviceDiscovery::BleDeviceDiscovery(QObject* parent)
    : AbstractDeviceDiscovery(parent)
    , m_agent(new QBluetoothDeviceDiscoveryAgent(this))
{
    connect(m_agent, &QBluetoothDeviceDiscoveryAgent::finished, this, &AbstractDeviceDiscovery::finished);
    connect(m_agent, &QBluetoothDeviceDiscoveryAgent::canceled, this, &AbstractDeviceDiscovery::canceled);
    connect(m_agent, &QBluetoothDeviceDiscoveryAgent::deviceDiscovered, this,
            &AbstractDeviceDiscovery::deviceDiscovered);
    // A failed search still ends the search for the engine; it is reported a moment later so
    // that a pending reconnection retrying after each search does not spin.
    connect(m_agent, &QBluetoothDeviceDiscoveryAgent::errorOccurred, this,
            [this](QBluetoothDeviceDiscoveryAgent::Error error) {
                kxDebug() << QStringLiteral("BLE search error %1: %2").arg(int(error)).arg(m_agent->errorString());
                QTimer::singleShot(FailedSearchDelayMs, this, &AbstractDeviceDiscovery::finished);
            });
}

bool BleDeviceDiscovery::prepareAdapter()
{
    QBluetoothLocalDevice adapter;
    if (!adapter.isValid()) {
        kxDebug() << QStringLiteral("No local BLE device");
        return false;
    }
    adapter.powerOn();
    return adapter.hostMode() != QBluetoothLocalDevice::HostPoweredOff;
}

void BleDeviceDiscovery::start()
{
    m_agent->start(QBluetoothDeviceDiscoveryAgent::LowEnergyMethod);
}

void BleDeviceDiscovery::stop()
{
    if (m_agent->isActive())
        m_agent->stop();
}
