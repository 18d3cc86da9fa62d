#include "app/ui/DevicesController.h"

#include "core/CortexCore.h"
#include "devices/BleDeviceDiscovery.h"
#include "devices/CombinedDeviceDiscovery.h"
#include "devices/OrvexDevice.h"
#include "devices/SimulatedHeadset.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QUrl>

namespace {
const QString NoAdapterMessage = QStringLiteral(
    "No Bluetooth adapter found: headsets cannot be searched for. The generator, the file player "
    "and the simulated headset are available.");
}

DevicesController::DevicesController(CortexCore* engine, OrvexSettings* settings,
                                     VirtualDevicesSettings* virtualDevices, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_settings(settings)
    , m_virtualDevices(virtualDevices)
{
    // The window lists the simulated headset beside real ones: one search over both.
    auto* simulated = new SimulatedHeadset(virtualDevices);
    auto* search = new CombinedDeviceDiscovery({ new BleDeviceDiscovery, simulated }, engine);
    engine->setDeviceDiscovery(search);
    engine->setHeadsetFactory([simulated](const QBluetoothDeviceInfo& info, QObject* owner) -> AbstractDevice* {
        if (info.name() == simulated->advertisedName())
            return simulated->createDevice(info, owner);
        return new OrvexDevice(info, owner);
    });
    m_devices.setSimulatedName(simulated->advertisedName());
    m_devices.setFavourite(settings->getFavouriteDevice());

    m_search = search;
    // The engine lists the virtual devices right after this signal, the headsets as they come.
    connect(engine, &CortexCore::deviceSearchStarted, this, [this, simulated] {
        m_devices.setSimulatedName(simulated->advertisedName());
        m_devices.setDevices({});
        Q_EMIT searchingChanged();
    });
    connect(engine, &CortexCore::deviceSearchFinished, this, &DevicesController::onSearchFinished);
    connect(engine, &CortexCore::deviceFound, this, &DevicesController::onDeviceFound);
    // The engine marks itself started only after announcing it: read its state a turn later.
    connect(
        engine, &CortexCore::deviceStarted, this,
        [this] {
            m_devices.setCurrent(currentDeviceName());
            updateBluetoothAvailability();
            Q_EMIT deviceChanged();
        },
        Qt::QueuedConnection);
    connect(engine, &CortexCore::deviceStopped, this, [this] {
        m_devices.setCurrent(QString());
        Q_EMIT deviceChanged();
    });
    connect(engine, &CortexCore::deviceBatteryLevelUpdated, this,
            [this](int level) { m_devices.setBattery(currentDeviceName(), level); });
    connect(settings, &OrvexSettings::FavouriteDeviceChanged, this, [this] {
        m_devices.setFavourite(m_settings->getFavouriteDevice());
        Q_EMIT favouriteChanged();
    });
    connect(settings, &OrvexSettings::StartFavouriteDeviceChanged, this, &DevicesController::favouriteChanged);
    connect(virtualDevices, &VirtualDevicesSettings::EDFPathChanged, this, &DevicesController::filePlayerPathChanged);
}

bool DevicesController::isSearching() const
{
    return m_engine->isSearchingDevices();
}

bool DevicesController::isDeviceStarted() const
{
    return m_engine->isDeviceStarted();
}

QString DevicesController::currentDeviceName() const
{
    return m_engine->isDeviceStarted() ? m_engine->currentDeviceInfo().name : QString();
}

QString DevicesController::favouriteDevice() const
{
    return m_settings->getFavouriteDevice();
}

bool DevicesController::startFavourite() const
{
    return m_settings->getStartFavouriteDevice();
}

void DevicesController::setStartFavourite(bool start)
{
    m_settings->setStartFavouriteDevice(start);
}

QString DevicesController::filePlayerPath() const
{
    return m_virtualDevices->getEDFPath();
}

void DevicesController::setFilePlayerPath(const QString& path)
{
    const QUrl url(path);
    const QString file = url.isLocalFile() ? url.toLocalFile() : path;
    if (!m_virtualDevices->setTextValue(QStringLiteral("EDFPath"), file))
        setMessage(QStringLiteral("Cannot play %1: choose an EDF or BDF file").arg(file));
}

void DevicesController::startSearch()
{
    m_engine->startDeviceSearch();
    updateBluetoothAvailability();
}

void DevicesController::stopSearch()
{
    m_engine->stopDeviceSearch();
}

bool DevicesController::startDevice(int row, int channelCount)
{
    const DeviceInfo device = m_devices.deviceAt(row);
    if (device.name.isEmpty())
        return false;
    if (m_engine->isSearchingDevices())
        m_engine->stopDeviceSearch();
    if (m_engine->startDevice(device, {}, channelCount))
        return true;
    setMessage(QStringLiteral("%1 could not start (see the console)").arg(device.name));
    return false;
}

bool DevicesController::startDeviceNamed(const QString& name, int channelCount)
{
    return startDevice(m_devices.rowOf(name), channelCount);
}

void DevicesController::startWhenFound(const QString& name)
{
    m_pendingStart.clear();
    if (m_devices.rowOf(name) >= 0 && startDeviceNamed(name))
        return;
    m_pendingStart = name;
}

void DevicesController::stopDevice()
{
    m_engine->stopDevice();
}

void DevicesController::setFavourite(int row, bool favourite)
{
    const QString name = m_devices.deviceAt(row).name;
    if (name.isEmpty())
        return;
    if (favourite)
        m_settings->setFavouriteDevice(name);
    else if (m_settings->getFavouriteDevice() == name)
        m_settings->setFavouriteDevice(QString());
}

void DevicesController::onDeviceFound(const DeviceInfo& info)
{
    m_devices.addOrUpdate(info);
    updateBluetoothAvailability();
    if (!m_pendingStart.isEmpty() && info.name == m_pendingStart) {
        m_pendingStart.clear();
        startDevice(m_devices.rowOf(info.name));
        return;
    }
    if (startFavourite() && !m_engine->isDeviceStarted() && !favouriteDevice().isEmpty()
        && info.name == favouriteDevice()) {
        GlobalConsole::writeLine(QStringLiteral("Starting the favourite device ") + info.name);
        startDevice(m_devices.rowOf(info.name));
    }
}

void DevicesController::onSearchFinished()
{
    m_devices.setDevices(m_engine->getFoundDevices());
    updateBluetoothAvailability();
    Q_EMIT searchingChanged();
}

// Known once a search has prepared the adapters; the first part is the Bluetooth search.
void DevicesController::updateBluetoothAvailability()
{
    const bool available = m_search->isPartReady(0);
    if (available != m_bluetoothAvailable) {
        m_bluetoothAvailable = available;
        Q_EMIT bluetoothAvailableChanged();
    }
    setMessage(available ? QString() : NoAdapterMessage);
}

void DevicesController::setMessage(const QString& message)
{
    if (m_message == message)
        return;
    m_message = message;
    Q_EMIT messageChanged();
}
