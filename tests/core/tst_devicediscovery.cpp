#include "core/CortexCore.h"
#include "core/HeadsetDescriptor.h"
#include "services/GlobalConsole.h"
#include "settings/KxSettings.h"
#include "settings/VirtualDevicesSettings.h"
#include "support/FakeDevices.h"

#include <QTemporaryDir>
#include <QtTest>

class TestDeviceDiscovery : public QObject
{
    Q_OBJECT

    QTemporaryDir m_settingsFolder;
    QList<TestHeadset*> m_created;

    // An engine searching through a fake Bluetooth side, with a headset object per discovery.
    CortexCore* makeEngine(FakeDiscovery*& discovery, VirtualDevicesSettings* settings = nullptr)
    {
        auto* engine = new CortexCore(this);
        discovery = new FakeDiscovery(engine);
        engine->setDeviceDiscovery(discovery);
        engine->setHeadsetFactory([this](const QBluetoothDeviceInfo& info, QObject* parent) {
            auto* device = new TestHeadset(info.name(), 8, parent);
            m_created.append(device);
            return device;
        });
        engine->setVirtualDeviceSettings(settings);
        return engine;
    }

private Q_SLOTS:
    void initTestCase()
    {
        KxSettings::setStorageFolder(m_settingsFolder.path());
    }

    void serialNumbers()
    {
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G (0031)")), QStringLiteral("0031"));
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("(0031) OX8G")), QString());
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G (1)")), QString());
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G ()")), QString());
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G (01)")), QStringLiteral("01"));
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G (a)(b)")), QStringLiteral("a)(b"));
        QCOMPARE(HeadsetDescriptor::serialNumberFromName(QStringLiteral("OX8G 0031")), QString());
    }

    void nameFilter()
    {
        QVERIFY(HeadsetDescriptor::isAllowedName(QStringLiteral("OX8G (0031)")));
        QVERIFY(HeadsetDescriptor::isAllowedName(QStringLiteral("ZEN-TRA 4")));
        QVERIFY(HeadsetDescriptor::isAllowedName(QStringLiteral("corvanta-2 (77)")));
        QVERIFY(!HeadsetDescriptor::isAllowedName(QStringLiteral("Phone")));
        QVERIFY(!HeadsetDescriptor::isAllowedName(QString()));
    }

    void channelModesAndPreferredCounts()
    {
        const QList<QPair<int, float>> modes = { { 1, 1000 }, { 2, 500 }, { 4, 125 }, { 6, 125 },
                                                 { 8, 125 }, { 16, 250 }, { 21, 250 } };
        for (const auto& [channels, rate] : modes) {
            const DeviceInfo info = HeadsetDescriptor::describe(QStringLiteral("OX (1234)"), channels);
            QCOMPARE(info.channelModes.size(), 1);
            QCOMPARE(info.channelModes.value(channels), rate);
            QCOMPARE(info.maxChannels, channels);
            QCOMPARE(info.model, QStringLiteral("Orvex"));
            QCOMPARE(info.battery, -1);
        }
        QVERIFY(HeadsetDescriptor::describe(QStringLiteral("OX3"), 3).channelModes.isEmpty());

        QCOMPARE(HeadsetDescriptor::describe(QStringLiteral("Corvanta-2 (5555)"), 8).preferredChannelCount, 2);
        QCOMPARE(HeadsetDescriptor::describe(QStringLiteral("CoV1"), 8).preferredChannelCount, 1);
        QCOMPARE(HeadsetDescriptor::describe(QStringLiteral("Corvanta (9)"), 8).preferredChannelCount, 1);
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("COV prefer 1 Corvanta (9)")));
        QCOMPARE(HeadsetDescriptor::describe(QStringLiteral("OX8G"), 8).preferredChannelCount, 8);
    }

    void searchWithoutAdapterKeepsGenerator()
    {
        VirtualDevicesSettings settings;
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery, &settings);
        discovery->adapterPresent = false;
        QSignalSpy started(engine, &CortexCore::deviceSearchStarted);
        QSignalSpy finished(engine, &CortexCore::deviceSearchFinished);
        QSignalSpy found(engine, &CortexCore::deviceFound);

        QVERIFY(engine->startDeviceSearch());
        QCOMPARE(started.count(), 1);
        QCOMPARE(finished.count(), 1); // at once, not after a search
        QVERIFY(!engine->isSearchingDevices());
        QCOMPARE(found.count(), 1);
        const DeviceInfo generator = engine->getFoundDevices().first();
        QCOMPARE(generator.name, QStringLiteral("GeneratorDevice"));
        QCOMPARE(generator.serialNumber, QStringLiteral("GeneratorDevice"));
        QCOMPARE(generator.model, QStringLiteral("Virtual"));
        QCOMPARE(generator.maxChannels, 10);
        QCOMPARE(generator.preferredChannelCount, 6);
        QCOMPARE(generator.channelModes.value(6), 125.0f);
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("NO BLE!")));
        QTest::qWait(20);
        QCOMPARE(discovery->starts, 0);

        settings.setGeneratorEnabled(false);
        engine->startDeviceSearch();
        QCOMPARE(engine->getDeviceCount(), 0);
        delete engine;
    }

    void searchesConnectTheAgentOnce()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        discovery->finishAtOnce = false;
        engine->startDeviceSearch();
        engine->startDeviceSearch();
        QTRY_COMPARE(discovery->starts, 2);
        QSignalSpy finished(engine, &CortexCore::deviceSearchFinished);
        Q_EMIT discovery->finished();
        QTRY_COMPARE(finished.count(), 1);
        QTest::qWait(20);
        QCOMPARE(finished.count(), 1);
        delete engine;
    }

    void discoveredHeadsetStartsAtItsModeRate()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        discovery->visible = { QStringLiteral("OX8G (0031)"), QStringLiteral("Phone"), QString() };
        QSignalSpy found(engine, &CortexCore::deviceFound);
        engine->startDeviceSearch();
        QTRY_COMPARE(found.count(), 1);
        const DeviceInfo info = engine->getFoundDevices().first();
        QCOMPARE(info.serialNumber, QStringLiteral("0031"));
        QCOMPARE(info.channelModes.value(8), 125.0f);

        QSignalSpy starting(engine, &CortexCore::deviceStarting);
        QSignalSpy startedInfo(engine, &CortexCore::deviceStartedInfo);
        QVERIFY(engine->startDevice(info, {}, -1));
        TestHeadset* headset = m_created.last();
        QCOMPARE(headset->opens, 1);
        QCOMPARE(headset->startedRate, 125);
        QCOMPARE(starting.count(), 1);
        QCOMPARE(startedInfo.count(), 1);
        QVERIFY(engine->isDeviceStarted());
        QCOMPARE(engine->currentDevice(), headset);
        QCOMPARE(engine->getCurrentDeviceFrequency(), 125.0f);
        QCOMPARE(engine->getCurrentMontageChannelNames().size(), 8);

        // The device already being started is not started twice.
        QVERIFY(!engine->startDevice(info, {}, -1));
        QCOMPARE(headset->opens, 1);
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("ALREADY CONNECTING TO THIS DEVICE OX8G (0031)")));

        QSignalSpy stopped(engine, &CortexCore::deviceStopped);
        engine->stopDevice();
        QCOMPARE(stopped.count(), 1);
        QCOMPARE(headset->stops, 1);
        QCOMPARE(headset->closes, 1);
        QVERIFY(!engine->isDeviceStarted());
        QVERIFY(engine->currentDeviceInfo().name.isEmpty());
        delete engine;
    }

    void refusedStarts()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        DeviceInfo unknown = HeadsetDescriptor::describe(QStringLiteral("OX8G (9999)"), 8);
        QVERIFY(!engine->startDevice(unknown, {}, -1));

        discovery->visible = { QStringLiteral("OX3 (1234)") };
        QSignalSpy found(engine, &CortexCore::deviceFound);
        engine->startDeviceSearch();
        QTRY_COMPARE(found.count(), 1);
        DeviceInfo noModes = engine->getFoundDevices().first();
        noModes.channelModes.clear();
        QVERIFY(!engine->startDevice(noModes, {}, -1));
        QVERIFY(!engine->startDeviceBySerialNumber(QStringLiteral("1234"), {}));
        QVERIFY(!engine->createDevice(0, 250));
        QVERIFY(!engine->createDevice(4, -1));
        delete engine;
    }

    void createDeviceStartsTheGenerator()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        QVERIFY(engine->createDevice(4, 250));
        QVERIFY(engine->isDeviceStarted());
        QCOMPARE(engine->getCurrentDeviceFrequency(), 250.0f);
        QCOMPARE(engine->getCurrentMontageChannelNames(),
                 QList<QString>({ "O1", "T3", "T4", "O2" }));

        QVERIFY(engine->createDevice(QList<QString> { "Fp1", "EMG", "ECG", "Omega" }, 500));
        QCOMPARE(engine->montageChannel(1).highPass, 20.0);
        QCOMPARE(engine->montageChannel(2).lowPass, 40.0);
        QCOMPARE(engine->getFilter(CortexCore::HPF, 0), engine->getHPF());
        QCOMPARE(engine->getFilter(CortexCore::HPF, 2), 0.5f);
        delete engine;
    }

    void lostHeadsetIsSearchedForUntilItReturns()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        discovery->visible = { QStringLiteral("OX8G (0031)") };
        QSignalSpy found(engine, &CortexCore::deviceFound);
        engine->startDeviceSearch();
        QTRY_COMPARE(found.count(), 1);
        QVERIFY(engine->startDevice(engine->getFoundDevices().first(), {}, -1));
        TestHeadset* first = m_created.last();
        const qsizetype createdBefore = m_created.size();

        // Gone: every search ends without it, and the engine keeps searching.
        discovery->visible.clear();
        const int startsBefore = discovery->starts;
        QSignalSpy restarted(engine, &CortexCore::deviceStarted);
        first->loseConnection();
        QTRY_VERIFY(discovery->starts >= startsBefore + 5);
        QVERIFY(!engine->isDeviceStarted());
        QCOMPARE(restarted.count(), 0);

        // Back: found by the next search and started again with its preferred count.
        discovery->visible = { QStringLiteral("OX8G (0031)") };
        QTRY_COMPARE(restarted.count(), 1);
        QVERIFY(engine->isDeviceStarted());
        QVERIFY(m_created.size() > createdBefore); // a new object for the new connection
        TestHeadset* second = m_created.last();
        QCOMPARE(second->startedRate, 125);
        QCOMPARE(engine->currentDeviceInfo().name, QStringLiteral("OX8G (0031)"));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));

        // Reconnected: no more searching.
        const int startsAfter = discovery->starts;
        QTest::qWait(50);
        QCOMPARE(discovery->starts, startsAfter);
        delete engine;
    }

    void wrongDataRateReconnectsToo()
    {
        FakeDiscovery* discovery = nullptr;
        CortexCore* engine = makeEngine(discovery);
        discovery->visible = { QStringLiteral("OX8G (0042)") };
        QSignalSpy found(engine, &CortexCore::deviceFound);
        engine->startDeviceSearch();
        QTRY_COMPARE(found.count(), 1);
        QVERIFY(engine->startDevice(engine->getFoundDevices().first(), {}, -1));
        QSignalSpy restarted(engine, &CortexCore::deviceStarted);
        Q_EMIT m_created.last()->wrongDataRate();
        QTRY_COMPARE(restarted.count(), 1);
        delete engine;
    }
};

QTEST_GUILESS_MAIN(TestDeviceDiscovery)
#include "tst_devicediscovery.moc"
