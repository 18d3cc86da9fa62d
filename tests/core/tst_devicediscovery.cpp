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
    CortexCore* m_engine = nullptr;
    FakeDiscovery* m_discovery = nullptr;

    // Makes `names` visible, searches, and returns the first device the engine lists.
    DeviceInfo search(const QStringList& names)
    {
        m_discovery->visible = names;
        QSignalSpy found(m_engine, &CortexCore::deviceFound);
        m_engine->startDeviceSearch();
        (void)QTest::qWaitFor([&] { return !found.isEmpty(); }); // an empty result fails the caller
        return m_engine->getFoundDevices().value(0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        KxSettings::setStorageFolder(m_settingsFolder.path());
    }

    // An engine searching through a fake Bluetooth side, with a headset object per discovery.
    void init()
    {
        m_engine = new CortexCore(this);
        m_discovery = new FakeDiscovery(m_engine);
        m_engine->setDeviceDiscovery(m_discovery);
        m_engine->setHeadsetFactory([this](const QBluetoothDeviceInfo& info, QObject* parent) {
            m_created.append(new TestHeadset(info.name(), 8, parent));
            return m_created.last();
        });
    }

    void cleanup()
    {
        delete m_engine;
    }

    void serialNumbersAndNames()
    {
        const QList<QPair<QString, QString>> serials = {
            { "OX8G (0031)", "0031" }, { "(0031) OX8G", "" }, { "OX8G (1)", "" }, { "OX8G ()", "" },
            { "OX8G (01)", "01" }, { "OX8G (a)(b)", "a)(b" }, { "OX8G 0031", "" } };
        for (const auto& [name, serial] : serials)
            QCOMPARE(HeadsetDescriptor::serialNumberFromName(name), serial);
        for (const char* name : { "OX8G (0031)", "ZEN-TRA 4", "corvanta-2 (77)" })
            QVERIFY2(HeadsetDescriptor::isAllowedName(name), name);
        QVERIFY(!HeadsetDescriptor::isAllowedName(QStringLiteral("Phone")));
        QVERIFY(!HeadsetDescriptor::isAllowedName(QString()));
    }

    void channelModesAndPreferredCounts()
    {
        const QList<QPair<int, float>> modes = { { 1, 1000 }, { 2, 500 }, { 4, 125 }, { 6, 125 },
                                                 { 8, 125 }, { 16, 250 }, { 21, 250 } };
        for (const auto& [channels, rate] : modes) {
            const DeviceInfo info = HeadsetDescriptor::describe(QStringLiteral("OX (1234)"), channels);
            QCOMPARE(info.channelModes, (QMap<qint32, float> { { channels, rate } }));
            QCOMPARE(info.maxChannels, channels);
            QCOMPARE(info.model, QStringLiteral("Orvex"));
            QCOMPARE(info.battery, -1);
        }
        QVERIFY(HeadsetDescriptor::describe(QStringLiteral("OX3"), 3).channelModes.isEmpty());

        const QList<QPair<QString, int>> preferred = { { "Corvanta-2 (5555)", 2 }, { "CoV1", 1 },
                                                       { "Corvanta (9)", 1 }, { "OX8G", 8 } };
        for (const auto& [name, count] : preferred)
            QCOMPARE(HeadsetDescriptor::describe(name, 8).preferredChannelCount, count);
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("COV prefer 1 Corvanta (9)")));
    }

    void searchWithoutAdapterKeepsGenerator()
    {
        auto* settings = new VirtualDevicesSettings(m_engine);
        m_engine->setVirtualDeviceSettings(settings);
        m_discovery->adapterPresent = false;
        QSignalSpy started(m_engine, &CortexCore::deviceSearchStarted);
        QSignalSpy finished(m_engine, &CortexCore::deviceSearchFinished);
        QSignalSpy found(m_engine, &CortexCore::deviceFound);

        QVERIFY(m_engine->startDeviceSearch());
        QCOMPARE(started.count(), 1);
        QCOMPARE(finished.count(), 1); // at once, not after a search
        QVERIFY(!m_engine->isSearchingDevices());
        QCOMPARE(found.count(), 1);
        const DeviceInfo generator = m_engine->getFoundDevices().first();
        QCOMPARE(QStringList({ generator.name, generator.serialNumber, generator.model }),
                 QStringList({ "GeneratorDevice", "GeneratorDevice", "Virtual" }));
        QCOMPARE(QList<int>({ generator.maxChannels, generator.preferredChannelCount, generator.battery }),
                 QList<int>({ 10, 6, -1 }));
        QCOMPARE(generator.channelModes, (QMap<qint32, float> { { 6, 125.0f } }));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("NO BLE!")));
        QTest::qWait(20);
        QCOMPARE(m_discovery->starts, 0);

        settings->setGeneratorEnabled(false);
        m_engine->startDeviceSearch();
        QCOMPARE(m_engine->getDeviceCount(), 0);
    }

    void searchesConnectTheAgentOnce()
    {
        m_discovery->finishAtOnce = false;
        m_engine->startDeviceSearch();
        m_engine->startDeviceSearch();
        QTRY_COMPARE(m_discovery->starts, 2);
        QSignalSpy finished(m_engine, &CortexCore::deviceSearchFinished);
        Q_EMIT m_discovery->finished();
        QTRY_COMPARE(finished.count(), 1);
        QTest::qWait(20);
        QCOMPARE(finished.count(), 1);
    }

    void discoveredHeadsetStartsAtItsModeRate()
    {
        const DeviceInfo info = search({ QStringLiteral("OX8G (0031)"), QStringLiteral("Phone"), QString() });
        QCOMPARE(m_engine->getDeviceCount(), 1);
        QCOMPARE(info.serialNumber, QStringLiteral("0031"));

        QSignalSpy starting(m_engine, &CortexCore::deviceStarting);
        QSignalSpy startedInfo(m_engine, &CortexCore::deviceStartedInfo);
        QVERIFY(m_engine->startDevice(info, {}, -1));
        TestHeadset* headset = m_created.last();
        QCOMPARE(headset->startedRate, 125);
        QVERIFY(m_engine->isDeviceStarted());
        QCOMPARE(m_engine->currentDevice(), headset);
        QCOMPARE(m_engine->getCurrentDeviceFrequency(), 125.0f);
        QCOMPARE(m_engine->getCurrentMontageChannelNames().size(), 8);

        // The device already being started is not started twice.
        QVERIFY(!m_engine->startDevice(info, {}, -1));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("ALREADY CONNECTING TO THIS DEVICE OX8G (0031)")));
        QCOMPARE(starting.count(), 1);
        QCOMPARE(startedInfo.count(), 1);

        QSignalSpy stopped(m_engine, &CortexCore::deviceStopped);
        m_engine->stopDevice();
        QCOMPARE(stopped.count(), 1);
        QCOMPARE(QList<int>({ headset->opens, headset->stops, headset->closes }), QList<int>({ 1, 1, 1 }));
        QVERIFY(!m_engine->isDeviceStarted());
        QVERIFY(m_engine->currentDeviceInfo().name.isEmpty());
    }

    void refusedStarts()
    {
        QVERIFY(!m_engine->startDevice(HeadsetDescriptor::describe(QStringLiteral("OX8G (9999)"), 8), {}, -1));
        DeviceInfo noModes = search({ QStringLiteral("OX8G (1234)") });
        QCOMPARE(m_engine->getDeviceCount(), 1);
        noModes.channelModes.clear();
        QVERIFY(!m_engine->startDevice(noModes, {}, -1));
        QVERIFY(!m_engine->startDeviceBySerialNumber(QStringLiteral("1234"), {}));
        QVERIFY(!m_engine->createDevice(0, 250));
        QVERIFY(!m_engine->createDevice(4, -1));
    }

    void createDeviceStartsTheGenerator()
    {
        QVERIFY(m_engine->createDevice(4, 250));
        QVERIFY(m_engine->isDeviceStarted());
        QCOMPARE(m_engine->getCurrentDeviceFrequency(), 250.0f);
        QCOMPARE(m_engine->getCurrentMontageChannelNames(), QList<QString>({ "O1", "T3", "T4", "O2" }));

        QVERIFY(m_engine->createDevice(QList<QString> { "Fp1", "EMG", "ECG", "Omega" }, 500));
        QCOMPARE(m_engine->montageChannel(1).highPass, 20.0);
        QCOMPARE(m_engine->montageChannel(2).lowPass, 40.0);
        QCOMPARE(m_engine->getFilter(CortexCore::HPF, 0), m_engine->getHPF());
        QCOMPARE(m_engine->getFilter(CortexCore::HPF, 2), 0.5f);
    }

    void lostHeadsetIsSearchedForUntilItReturns_data()
    {
        QTest::addColumn<bool>("wrongRate");
        QTest::newRow("disconnected") << false;
        QTest::newRow("wrongDataRate") << true;
    }

    void lostHeadsetIsSearchedForUntilItReturns()
    {
        QFETCH(bool, wrongRate);
        QVERIFY(m_engine->startDevice(search({ QStringLiteral("OX8G (0031)") }), {}, -1));
        const qsizetype createdBefore = m_created.size();

        // Gone: every search ends without it, and the engine keeps searching.
        m_discovery->visible.clear();
        const int startsBefore = m_discovery->starts;
        QSignalSpy restarted(m_engine, &CortexCore::deviceStarted);
        if (wrongRate)
            Q_EMIT m_created.last()->wrongDataRate();
        else
            m_created.last()->loseConnection();
        QTRY_VERIFY(m_discovery->starts >= startsBefore + 5);
        QVERIFY(!m_engine->isDeviceStarted());
        QCOMPARE(restarted.count(), 0);

        // Back: found by the next search and started again with its preferred count.
        m_discovery->visible = { QStringLiteral("OX8G (0031)") };
        QTRY_COMPARE(restarted.count(), 1);
        QVERIFY(m_created.size() > createdBefore); // a new object for the new connection
        QCOMPARE(m_created.last()->startedRate, 125);
        QCOMPARE(m_engine->currentDeviceInfo().name, QStringLiteral("OX8G (0031)"));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));

        // Reconnected: the search loop has ended, and a later search by hand (which stops the
        // device) neither loops nor brings the device back by itself.
        const int startsAfter = m_discovery->starts;
        m_engine->startDeviceSearch();
        QTest::qWait(50);
        QCOMPARE(m_discovery->starts, startsAfter + 1);
        QCOMPARE(restarted.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDeviceDiscovery)
#include "tst_devicediscovery.moc"
