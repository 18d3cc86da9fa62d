#pragma once

#include "core/AbstractDeviceDiscovery.h"
#include "devices/SimulatedHeadsetStream.h"

class AbstractDevice;
class VirtualDevicesSettings;

// A headset for users without hardware: a Bluetooth search that finds one simulated headset
// and the factory of its device objects, each talking the real protocol to a simulated peer.
// The fault settings (HeadsetSim...) are read whenever a device is made; silence and the
// dropped link happen once per run, loss and a wrong rate every time.
class SimulatedHeadset : public AbstractDeviceDiscovery
{
    Q_OBJECT
public:
    explicit SimulatedHeadset(VirtualDevicesSettings* settings, QObject* parent = nullptr);

    bool prepareAdapter() override { return true; }
    QString advertisedName() const;
    bool isInRange() const;

    // The headset factory for the engine.
    AbstractDevice* createDevice(const QBluetoothDeviceInfo& info, QObject* parent);

public Q_SLOTS:
    void start() override;
    void stop() override {}

private:
    SimulatedHeadsetStream::Faults nextFaults();

    // A search lasts this long, found or not, so a search repeated until the headset is back
    // does not spin.
    static constexpr int SearchMs = 200;

    VirtualDevicesSettings* m_settings;
    bool m_silenceUsed = false;
    bool m_dropUsed = false;
    qint64 m_awayUntilMs = 0;
};
