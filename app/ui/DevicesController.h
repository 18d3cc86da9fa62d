#pragma once

#include "app/ui/DeviceListModel.h"

#include <QObject>

class CombinedDeviceDiscovery;
class CortexCore;
class OrvexSettings;
class VirtualDevicesSettings;

// The devices screen: the search, the devices it found, starting and stopping one, the
// favourite that starts by itself when the search finds it.
class DevicesController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(DeviceListModel* devices READ devices CONSTANT)
    Q_PROPERTY(bool searching READ isSearching NOTIFY searchingChanged)
    Q_PROPERTY(bool bluetoothAvailable READ isBluetoothAvailable NOTIFY bluetoothAvailableChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(bool deviceStarted READ isDeviceStarted NOTIFY deviceChanged)
    Q_PROPERTY(QString currentDeviceName READ currentDeviceName NOTIFY deviceChanged)
    Q_PROPERTY(QString favouriteDevice READ favouriteDevice NOTIFY favouriteChanged)
    Q_PROPERTY(bool startFavourite READ startFavourite WRITE setStartFavourite NOTIFY favouriteChanged)
    Q_PROPERTY(QString filePlayerPath READ filePlayerPath WRITE setFilePlayerPath NOTIFY filePlayerPathChanged)
public:
    DevicesController(CortexCore* engine, OrvexSettings* settings, VirtualDevicesSettings* virtualDevices,
                      QObject* parent = nullptr);

    DeviceListModel* devices() { return &m_devices; }
    bool isSearching() const;
    bool isBluetoothAvailable() const { return m_bluetoothAvailable; }
    QString message() const { return m_message; }
    bool isDeviceStarted() const;
    QString currentDeviceName() const;
    QString favouriteDevice() const;
    bool startFavourite() const;
    void setStartFavourite(bool start);
    QString filePlayerPath() const;
    // Accepts a path or a file:// URL; a new file is offered by the next search.
    void setFilePlayerPath(const QString& path);

    Q_INVOKABLE void startSearch();
    Q_INVOKABLE void stopSearch();
    // Starts the device of that row with the given channel count (-1: its preferred one).
    Q_INVOKABLE bool startDevice(int row, int channelCount = -1);
    // Starts the first found device of that name; what --device and the favourite use.
    Q_INVOKABLE bool startDeviceNamed(const QString& name, int channelCount = -1);
    // Starts that device now when the last search found it, otherwise when a search finds it.
    Q_INVOKABLE void startWhenFound(const QString& name);
    Q_INVOKABLE void stopDevice();
    Q_INVOKABLE void setFavourite(int row, bool favourite);

Q_SIGNALS:
    void searchingChanged();
    void bluetoothAvailableChanged();
    void messageChanged();
    void deviceChanged();
    void favouriteChanged();
    void filePlayerPathChanged();

private:
    void onDeviceFound(const DeviceInfo& info);
    void onSearchFinished();
    void setMessage(const QString& message);
    void updateBluetoothAvailability();

    CortexCore* m_engine;
    OrvexSettings* m_settings;
    VirtualDevicesSettings* m_virtualDevices;
    CombinedDeviceDiscovery* m_search = nullptr;
    DeviceListModel m_devices;
    bool m_bluetoothAvailable = false;
    QString m_message;
    QString m_pendingStart;
};
