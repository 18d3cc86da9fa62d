#include "core/HeadsetDescriptor.h"
#include "devices/OrvexDevice.h"
#include "devices/SimulatedHeadsetPeer.h"
#include "services/GlobalConsole.h"
#include "support/FakeDevices.h"

#include <QtTest>

// The headset device driven through a simulated GATT peer, with the watch ticks and the clock
// in the test's hands.
class TestOrvexDevice : public QObject
{
    Q_OBJECT

    SimulatedHeadsetPeer* m_peer = nullptr;
    OrvexDevice* m_device = nullptr;
    qint64 m_clock = 1'700'000'000'000;
    QStringList m_console; // console items since the device was made

    OrvexDevice* make(const QString& name)
    {
        m_peer = new SimulatedHeadsetPeer;
        m_device = new OrvexDevice(FakeDiscovery::bluetoothInfo(name), m_peer, this);
        m_device->setTimeSource([this] { return m_clock; });
        m_console.clear();
        return m_device;
    }

    bool consoleHas(const QString& text) const
    {
        return m_console.join(QLatin1Char('\n')).contains(text);
    }

    // Opens and starts the device and waits until the command has reached the headset.
    bool startStreaming(int rate)
    {
        m_device->open();
        m_device->start(rate);
        return QTest::qWaitFor([this] { return !m_peer->controlWrites().isEmpty(); });
    }

    // One watch tick after a second in which samples arrived at `ratio` times the nominal rate.
    void tickAfterSecond(double ratio)
    {
        const int perTenth = qRound(ratio * m_device->samplingRate() / 10);
        for (int i = 0; i < 10; ++i) {
            m_clock += 100;
            if (perTenth > 0)
                m_device->counter()->addFrame(perTenth);
        }
        m_device->watchTick();
    }

    static QByteArray packet(int counter)
    {
        QByteArray bytes(20, '\0');
        bytes[0] = char(counter);
        return bytes;
    }

private Q_SLOTS:
    void initTestCase()
    {
        connect(GlobalConsole::Instance(), &GlobalConsole::newEntry, this, [this](const QString& text) {
            m_console.append(text);
        });
    }

    void cleanup()
    {
        delete m_device;
        m_device = nullptr;
    }

    void connectionReadsTheBatteryAndCarriesOutAnEarlyStart()
    {
        make(QStringLiteral("OX8G (0031)"));
        QCOMPARE(m_device->channelCount(), 8);
        QVERIFY(m_device->open());
        QCOMPARE(m_device->connectionState(), AbstractDevice::AWAITING_CONNECTION);
        QVERIFY(!m_device->start(250)); // the data service is not discovered yet
        QTRY_COMPARE(m_peer->controlWrites(), QList<QByteArray>{ QByteArray::fromHex("0102") });
        QCOMPARE(m_peer->descriptorWrites(), QList<QByteArray>{ QByteArray::fromHex("0100") });
        QTRY_COMPARE(m_device->batteryLevel(), 87);
        QCOMPARE(m_peer->batteryReads(), 2); // once when discovered, once by the start carried out
        QVERIFY(m_device->isWatching());
    }

    void startCommand_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("rate");
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<float>("samplingRate");
        QTest::newRow("250") << "OX8G (1)" << 250 << QByteArray::fromHex("0102") << 250.0f;
        QTest::newRow("300 is not a rate") << "OX8G (1)" << 300 << QByteArray::fromHex("0101") << 125.0f;
        QTest::newRow("0") << "Kelvo 2" << 0 << QByteArray::fromHex("0101") << 125.0f;
        QTest::newRow("500") << "Kelvo 2" << 500 << QByteArray::fromHex("0104") << 500.0f;
        QTest::newRow("1000") << "Zentra" << 1000 << QByteArray::fromHex("0108") << 1000.0f;
        QTest::newRow("6x3 at 250") << "Orvex-6G (3)" << 250 << QByteArray::fromHex("0202") << 250.0f;
        QTest::newRow("6x3 at 125") << "Orvex-6G" << 125 << QByteArray::fromHex("0201") << 125.0f;
    }

    void startCommand()
    {
        QFETCH(QString, name);
        QFETCH(int, rate);
        QFETCH(QByteArray, command);
        QFETCH(float, samplingRate);
        make(name);
        m_device->open();
        QTRY_VERIFY(m_device->start(rate)); // true once the service is ready
        QCOMPARE(m_peer->controlWrites().last(), command);
        QCOMPARE(m_device->samplingRate(), samplingRate);
    }

    void aDeviceWithoutBatteryServiceStillStreams()
    {
        make(QStringLiteral("OX4 (2)"));
        m_peer->profile().batteryService = false;
        QVERIFY(startStreaming(125));
        QSignalSpy data(m_device, &AbstractDevice::dataReady);
        QSignalSpy connected(m_device, &AbstractDevice::connected);
        for (int counter = 0; counter < 4; ++counter)
            m_peer->notify(packet(counter));
        QTRY_COMPARE(data.size(), 1);
        const auto block = data.first().first().value<QList<QList<float>>>();
        QCOMPARE(block.size(), 4);
        QCOMPARE(block[0].size(), 3);
        QCOMPARE(connected.size(), 1); // the first data marks the device connected
        QCOMPARE(m_device->connectionState(), AbstractDevice::CONNECTED);
        QCOMPARE(m_device->batteryLevel(), -1);
        QCOMPARE(m_peer->batteryReads(), 0);
    }

    void lostPacketsReachTheCounter()
    {
        make(QStringLiteral("Orvex-6G (3)"));
        QVERIFY(startStreaming(250));
        QSignalSpy data(m_device, &AbstractDevice::dataReady);
        for (int counter : { 10, 11, 14, 15 })
            m_peer->notify(packet(counter));
        QTRY_COMPARE(data.size(), 4); // one sample of six channels per packet
        QCOMPARE(m_device->lostPackets(), 1);
        QCOMPARE(m_device->counter()->marker(), 1);
        m_peer->notify(QByteArray(19, '\0'));
        m_peer->notify(QByteArray(21, '\0'));
        QTest::qWait(20);
        QCOMPARE(data.size(), 4);
    }

    void emptyBatteryValueIsReported()
    {
        make(QStringLiteral("OX4 (2)"));
        m_peer->profile().batteryValue.clear();
        m_device->open();
        QTRY_VERIFY(consoleHas(QStringLiteral("BAD BATTERY SERVICE VALUES!")));
        QCOMPARE(m_device->batteryLevel(), -1);
    }

    void errorsAndDisconnection()
    {
        make(QStringLiteral("OX4 (2)"));
        m_peer->profile().connectError = 4;
        m_device->open();
        QTRY_COMPARE(m_device->connectionState(), AbstractDevice::NOT_CONNECTED);
        QVERIFY(consoleHas(QStringLiteral("Cannot connect to remote device.")));

        cleanup();
        make(QStringLiteral("OX4 (2)"));
        QVERIFY(startStreaming(125));
        QSignalSpy disconnected(m_device, &AbstractDevice::disconnected);
        m_peer->dropLink();
        QCOMPARE(disconnected.size(), 1);
        QVERIFY(consoleHas(QStringLiteral("LowEnergy controller disconnected")));
    }

    void silenceStopsTheDevice()
    {
        make(QStringLiteral("OX8G (1)"));
        QVERIFY(startStreaming(125));
        QSignalSpy disconnected(m_device, &AbstractDevice::disconnected);
        QSignalSpy stopCommands(m_peer, &SimulatedHeadsetPeer::stopRequested);
        m_clock += 2500;
        m_device->watchTick();
        for (int counter = 0; counter < 4; ++counter)
            m_peer->notify(packet(counter));
        QTRY_COMPARE(m_device->connectionState(), AbstractDevice::CONNECTED);
        m_clock += 2500; // 2.5 s after the last data
        m_device->watchTick();
        QTest::qWait(20);
        QVERIFY(!consoleHas(QStringLiteral("BLE DEVICE DISCONNECTED")));
        QCOMPARE(disconnected.size(), 0);

        m_clock += 1000; // 3.5 s
        m_device->watchTick();
        QVERIFY(consoleHas(QStringLiteral("BLE DEVICE DISCONNECTED")));
        QTRY_COMPARE(disconnected.size(), 1);
        QVERIFY(!stopCommands.isEmpty()); // the peer is gone with the closed link; it saw the stop
        QVERIFY(consoleHas(QStringLiteral("STOP CHAR WRITTEn!")));
        QVERIFY(!m_device->transport()); // closed after the stop
        QVERIFY(!m_device->open());
    }

    void batteryIsReadEvery600Ticks()
    {
        make(QStringLiteral("OX8G (1)"));
        QVERIFY(startStreaming(125));
        QTRY_COMPARE(m_peer->batteryReads(), 2); // discovery and start
        for (int tick = 1; tick < 600; ++tick)
            m_device->watchTick();
        QTest::qWait(20);
        QCOMPARE(m_peer->batteryReads(), 2);
        m_device->watchTick();
        QTRY_COMPARE(m_peer->batteryReads(), 3);
    }

    void rateWatch_data()
    {
        QTest::addColumn<QList<double>>("ratios"); // one per tick
        QTest::addColumn<int>("alarms");
        QTest::newRow("five slow") << QList<double>(5, 0.4) << 1;
        QTest::newRow("four slow") << QList<double>(4, 0.4) << 0;
        QTest::newRow("past the limit, once") << QList<double>(8, 0.4) << 1;
        QTest::newRow("five fast") << QList<double>(5, 2.0) << 1;
        QTest::newRow("a good tick takes one back") << QList<double>{ 0.4, 0.4, 0.4, 0.4, 1.0, 0.4 } << 0;
        QTest::newRow("net five") << QList<double>{ 0.4, 0.4, 0.4, 0.4, 1.0, 0.4, 2.0 } << 1;
        QTest::newRow("no data is not a rate") << QList<double>(10, 0.2) << 0;
    }

    void rateWatch()
    {
        QFETCH(QList<double>, ratios);
        QFETCH(int, alarms);
        make(QStringLiteral("OX8G (1)"));
        QVERIFY(startStreaming(250));
        m_device->counter()->setIntervalMs(1000); // the rate of the last second only
        QSignalSpy wrong(m_device, &AbstractDevice::wrongDataRate);
        for (double ratio : ratios)
            tickAfterSecond(ratio);
        QCOMPARE(wrong.size(), alarms);
        QCOMPARE(consoleHas(QStringLiteral("WRONG DATA RATE!!!")), alarms > 0);
        QCOMPARE(consoleHas(QStringLiteral("KINDA WRONG DATA RATE")), ratios.first() != 0.2);
    }

    void rateWatchEndsAtTick100()
    {
        make(QStringLiteral("OX8G (1)"));
        QVERIFY(startStreaming(250));
        m_device->counter()->setIntervalMs(1000);
        QSignalSpy wrong(m_device, &AbstractDevice::wrongDataRate);
        for (int tick = 1; tick < 100; ++tick)
            tickAfterSecond(1.0);
        QVERIFY(!consoleHas(QStringLiteral("From now on bad frame rate is not watched")));
        tickAfterSecond(0.4);
        QVERIFY(consoleHas(QStringLiteral("From now on bad frame rate is not watched")));
        for (int tick = 0; tick < 10; ++tick)
            tickAfterSecond(0.4);
        QCOMPARE(wrong.size(), 0);
        QVERIFY(!consoleHas(QStringLiteral("KINDA WRONG DATA RATE")));
    }

    void stopWritesTheStopCommandAndCloses()
    {
        make(QStringLiteral("OX8G (1)"));
        QVERIFY(startStreaming(125));
        m_device->stop();
        QCOMPARE(m_peer->controlWrites().last(), QByteArray::fromHex("0000"));
        QVERIFY(consoleHas(QStringLiteral("STOP CHAR WRITTEn!")));
        QVERIFY(consoleHas(QStringLiteral("STOPPED")));
        QVERIFY(!m_device->transport());
        QCOMPARE(m_device->connectionState(), AbstractDevice::NOT_CONNECTED);
        QVERIFY(!m_device->isStreaming());
        m_device->stop();
        QVERIFY(consoleHas(QStringLiteral("ALREADY STOPPED")));
        m_device->close(); // nothing left to close
    }

    void anUnacknowledgedStopEndsAllTheSame()
    {
        make(QStringLiteral("OX8G (1)"));
        m_device->setStopAckTimeoutMs(150);
        m_peer->profile().acknowledgeStop = false;
        QVERIFY(startStreaming(125));
        QPointer<SimulatedHeadsetPeer> peer = m_peer;
        m_device->stop();
        QVERIFY(!consoleHas(QStringLiteral("STOP CHAR WRITTEn!")));
        QVERIFY(consoleHas(QStringLiteral("STOPPED")));
        QVERIFY(!m_device->transport());
        QTRY_VERIFY(peer.isNull()); // the transport is released
    }

    void capabilityTableFitsTheEngineAndTheDecoder()
    {
        QVERIFY(!OrvexDevice::ValidNames().isEmpty());
        for (const OrvexCapability& row : OrvexDevice::capabilities()) {
            const QString name = row.prefix + QStringLiteral(" (0042)");
            QVERIFY2(HeadsetDescriptor::isAllowedName(name), qPrintable(name));
            QVERIFY(OrvexDevice::isOrvexName(name));
            QCOMPARE(int(row.channelNames.size()), row.channelCount);
            QVERIFY(HeadsetDescriptor::channelModeRate(row.channelCount) > 0);
            QVERIFY(OrvexDataGrabber(row.channelCount, OrvexFrameDefault).samplesPerFrame() > 0);
            QCOMPARE(OrvexDevice::capabilityByDeviceName(name.toLower()).channelCount, row.channelCount);
        }
        QCOMPARE(OrvexDevice::capabilityByDeviceName(QStringLiteral("Orvex-6G (1)")).channelCount, 6);
        QCOMPARE(OrvexDevice::capabilityByDeviceName(QStringLiteral("OX8G (0031)")).channelCount, 8);
        QCOMPARE(OrvexDevice::capabilityByDeviceName(QStringLiteral("Corvanta-2 (5)")).channelCount, 2);
        QVERIFY(!OrvexDevice::isOrvexName(QStringLiteral("Headphones")));
        QVERIFY(!OrvexDevice::isOrvexName(QString()));
    }
};

QTEST_GUILESS_MAIN(TestOrvexDevice)
#include "tst_orvexdevice.moc"
