#include "core/CortexCore.h"
#include "devices/OrvexDevice.h"
#include "devices/SimulatedHeadsetPeer.h"
#include "services/GlobalConsole.h"
#include "settings/KxSettings.h"
#include "support/FakeDevices.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QtTest>

// The engine and the real headset device together, the Bluetooth side simulated: discovery
// lists the headset, starting it commands the headset, a lost link pauses the recording and
// the engine searches until the headset is back, then starts it again.
class TestHeadsetLoop : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    CortexCore* m_engine = nullptr;
    FakeDiscovery* m_discovery = nullptr;
    QList<QPointer<SimulatedHeadsetPeer>> m_peers;

    SimulatedHeadsetPeer* lastPeer() const { return m_peers.isEmpty() ? nullptr : m_peers.last().data(); }

    // One default frame (4 packets) of zero samples, counters continuing from `counter`.
    static void sendFrame(SimulatedHeadsetPeer* peer, int& counter)
    {
        for (int p = 0; p < 4; ++p) {
            QByteArray bytes(20, '\0');
            bytes[0] = char(counter++);
            peer->notify(bytes);
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        KxSettings::setStorageFolder(m_folder.path());
    }

    void init()
    {
        m_engine = new CortexCore(this);
        m_discovery = new FakeDiscovery(m_engine);
        m_engine->setDeviceDiscovery(m_discovery);
        m_engine->setHeadsetFactory([this](const QBluetoothDeviceInfo& info, QObject* owner) {
            m_peers.append(new SimulatedHeadsetPeer);
            return new OrvexDevice(info, m_peers.last(), owner);
        });
        m_engine->setDataFolder(m_folder.filePath(QStringLiteral("records")));
        m_engine->setFilters(0, 0, 0, 0);
    }

    void cleanup()
    {
        delete m_engine;
        m_peers.clear();
    }

    void discoveredHeadsetIsListedAndStarted()
    {
        m_discovery->visible = { QStringLiteral("OX8G (0031)"), QStringLiteral("Headphones") };
        QSignalSpy found(m_engine, &CortexCore::deviceFound);
        m_engine->startDeviceSearch();
        QTRY_COMPARE(found.size(), 1);
        const DeviceInfo info = m_engine->getFoundDevices().value(0);
        QCOMPARE(info.name, QStringLiteral("OX8G (0031)"));
        QCOMPARE(info.serialNumber, QStringLiteral("0031"));
        QCOMPARE(info.model, QStringLiteral("Orvex"));
        QCOMPARE(info.currentChannelCount, 8);
        QCOMPARE(info.channelModes, (QMap<int, float>{ { 8, 125.0f } }));

        QVERIFY(m_engine->startDevice(info, {}, -1));
        QCOMPARE(m_engine->getCurrentDeviceFrequency(), 125.0f);
        SimulatedHeadsetPeer* peer = lastPeer();
        QTRY_COMPARE(peer->controlWrites(), QList<QByteArray>{ QByteArray::fromHex("0101") });
        QVERIFY(peer->notificationsOn());

        QSignalSpy data(m_engine, &CortexCore::newDataByChannel);
        int counter = 0;
        sendFrame(peer, counter);
        QTRY_COMPARE(data.size(), 1);
        QCOMPARE(data.first().first().value<QList<QList<float>>>().value(7).size(), 3);
        QCOMPARE(m_engine->getCurrentMontageChannelNames().value(0), QStringLiteral("Fp1"));

        m_engine->stopDevice();
        QCOMPARE(peer->controlWrites().last(), QByteArray::fromHex("0000"));
        QVERIFY(!peer->isLinked());
    }

    void lostLinkPausesTheRecordingAndReconnects()
    {
        m_discovery->visible = { QStringLiteral("OX8G (0031)") };
        QSignalSpy found(m_engine, &CortexCore::deviceFound);
        m_engine->startDeviceSearch();
        QTRY_COMPARE(found.size(), 1);
        QVERIFY(m_engine->startDevice(m_engine->getFoundDevices().first(), {}, -1));
        QTRY_VERIFY(lastPeer() && !lastPeer()->controlWrites().isEmpty());
        QSignalSpy data(m_engine, &CortexCore::newDataByChannel);
        int counter = 0;
        for (int i = 0; i < 10; ++i)
            sendFrame(lastPeer(), counter);
        QTRY_COMPARE(data.size(), 10);
        QVERIFY(m_engine->startRecord());

        // The headset goes away: the recording pauses and every search misses it.
        m_discovery->visible.clear();
        const int startsBefore = m_discovery->starts;
        QSignalSpy started(m_engine, &CortexCore::deviceStarted);
        const qsizetype peersBefore = m_peers.size();
        lastPeer()->dropLink();
        QTRY_VERIFY(m_engine->isRecordPaused());
        QTRY_VERIFY(m_discovery->starts >= startsBefore + 5);
        QCOMPARE(started.size(), 0);

        // Back in range: found, restarted at its rate, and its data flows again.
        m_discovery->visible = { QStringLiteral("OX8G (0031)") };
        QTRY_COMPARE(started.size(), 1);
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));
        QCOMPARE(m_peers.size(), peersBefore + 1);
        QTRY_COMPARE(lastPeer()->controlWrites(), QList<QByteArray>{ QByteArray::fromHex("0101") });
        data.clear();
        counter = 0;
        sendFrame(lastPeer(), counter);
        QTRY_COMPARE(data.size(), 1);
        m_engine->stopRecord();
    }

    // Without an adapter the search ends at once and the virtual devices stay usable.
    void noAdapterEndsTheSearchAtOnce()
    {
        m_discovery->adapterPresent = false;
        QSignalSpy finished(m_engine, &CortexCore::deviceSearchFinished);
        QVERIFY(m_engine->startDeviceSearch());
        QCOMPARE(finished.size(), 1);
        QVERIFY(!m_engine->isSearchingDevices());
        QVERIFY(m_engine->createDevice(4, 250));
        QVERIFY(m_engine->isDeviceStarted());
    }
};

QTEST_GUILESS_MAIN(TestHeadsetLoop)
#include "tst_headsetloop.moc"
