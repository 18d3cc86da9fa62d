#pragma once

#include "core/AbstractDevice.h"
#include "core/AbstractDeviceDiscovery.h"
#include "core/CortexCore.h"

#include <QBluetoothAddress>
#include <QBluetoothDeviceInfo>
#include <QSignalSpy>
#include <QStringList>

// A headset stand-in: records what the engine asks of it and loses its connection on demand.
class TestHeadset : public AbstractDevice
{
    Q_OBJECT
public:
    TestHeadset(const QString& name, int channels, QObject* parent)
        : AbstractDevice(parent)
    {
        m_name = name;
        m_channelCount = channels;
        for (int i = 0; i < channels; ++i)
            m_channelNames.append(QStringLiteral("E%1").arg(i + 1));
    }

    bool open() override
    {
        ++opens;
        setConnectedState(AWAITING_CONNECTION);
        return true;
    }
    void close() override { ++closes; }
    bool start(int frequency) override
    {
        startedRate = frequency;
        m_samplingRate = float(frequency);
        return true;
    }
    void stop() override { ++stops; }
    bool hasBattery() override { return true; }
    bool hasImpedance() override { return false; }
    QString deviceType() override { return QStringLiteral("TestHeadset"); }
    QString deviceVersion() override { return QStringLiteral("1"); }

    void loseConnection() { setConnectedState(NOT_CONNECTED); }

    int opens = 0;
    int closes = 0;
    int stops = 0;
    int startedRate = 0;
};

// A Bluetooth search that finds whatever the test puts in `visible` and ends at once.
class FakeDiscovery : public AbstractDeviceDiscovery
{
    Q_OBJECT
public:
    using AbstractDeviceDiscovery::AbstractDeviceDiscovery;

    bool prepareAdapter() override { return adapterPresent; }
    void start() override
    {
        ++starts;
        for (const QString& name : std::as_const(visible))
            Q_EMIT deviceDiscovered(bluetoothInfo(name));
        if (finishAtOnce)
            Q_EMIT finished();
    }
    void stop() override { ++stops; }

    static QBluetoothDeviceInfo bluetoothInfo(const QString& name)
    {
        QBluetoothDeviceInfo info(QBluetoothAddress(QStringLiteral("00:11:22:33:44:55")), name, 0);
        info.setCoreConfigurations(QBluetoothDeviceInfo::LowEnergyCoreConfiguration);
        return info;
    }

    bool adapterPresent = true;
    bool finishAtOnce = true;
    QStringList visible;
    int starts = 0;
    int stops = 0;
};

// An engine whose Bluetooth search has found one 8-channel test headset, "OX8G (0031)".
inline CortexCore* engineFindingHeadset(QObject* parent)
{
    auto* engine = new CortexCore(parent);
    auto* discovery = new FakeDiscovery(engine);
    discovery->visible = { QStringLiteral("OX8G (0031)") };
    engine->setDeviceDiscovery(discovery);
    engine->setHeadsetFactory([](const QBluetoothDeviceInfo& info, QObject* owner) {
        return new TestHeadset(info.name(), 8, owner);
    });
    QSignalSpy found(engine, &CortexCore::deviceFound);
    engine->startDeviceSearch();
    if (found.isEmpty())
        found.wait(5000);
    return engine;
}
