#include "core/AbstractDeviceDiscovery.h"
#include "server/commands/CurrentDeviceInfo.h"
#include "server/commands/CurrentDevicesInfo.h"
#include "server/commands/DeviceCount.h"
#include "server/commands/GetDeviceInfo.h"
#include "server/commands/GetFavoriteDeviceName.h"
#include "server/commands/ListDevices.h"
#include "server/commands/MakeFavorite.h"
#include "server/commands/SetMontage.h"
#include "server/commands/StartDevice.h"
#include "server/commands/StartSearch.h"
#include "server/commands/StopSearch.h"
#include "server/FakeServerContext.h"

#include "support/FakeDevices.h"

#include <QBluetoothAddress>
#include <QJsonArray>
#include <QtTest>

using Args = QMap<QString, QString>;

// Device commands through the command objects, on engines that find the generator and two
// stub headsets, "OX8G (0031)" (8 channels) and "OX4 (7777)" (4 channels).
class TestDeviceCommands : public QObject
{
    Q_OBJECT

    FakeServerContext* m_context = nullptr;

    CortexCore* node(int index = 0) const { return m_context->getNode(index); }

    void findHeadsets(CortexCore* core, const QStringList& names)
    {
        auto* discovery = new FakeDiscovery(core);
        discovery->visible = names;
        core->setDeviceDiscovery(discovery);
        core->setHeadsetFactory([](const QBluetoothDeviceInfo& info, QObject* owner) {
            return new TestHeadset(info.name(), info.name().startsWith(QLatin1String("OX4")) ? 4 : 8, owner);
        });
    }

    template<typename Command>
    QJsonObject run(Args args, bool expected = true)
    {
        Command command(m_context);
        QJsonObject response;
        const bool result = command.processCommand(ReferrerHttp, response, args);
        if (result != expected)
            QTest::qFail(qPrintable(QStringLiteral("unexpected result: ")
                                    + QString::fromUtf8(QJsonDocument(response).toJson(QJsonDocument::Compact))),
                         __FILE__, __LINE__);
        return response;
    }

    // Searches and waits until the generator and both headsets are listed.
    void searchAll()
    {
        run<StartSearch>({});
        QTRY_COMPARE(run<DeviceCount>({}).value("deviceCount").toInt(), 3);
    }

private Q_SLOTS:
    void init()
    {
        m_context = new FakeServerContext(2);
        findHeadsets(node(0), { QStringLiteral("OX8G (0031)"), QStringLiteral("Phone"), QStringLiteral("OX4 (7777)") });
    }

    void cleanup()
    {
        delete m_context;
    }

    void searchListsDevicesInOrder()
    {
        searchAll();
        const QJsonArray devices = run<ListDevices>({}).value("devices").toArray();
        QStringList names, serials;
        for (const QJsonValue& device : devices) {
            names << device["name"].toString();
            serials << device["serialNumber"].toString();
        }
        QCOMPARE(names, QStringList({ "GeneratorDevice", "OX8G (0031)", "OX4 (7777)" }));
        QCOMPARE(serials, QStringList({ "GeneratorDevice", "0031", "7777" }));
        QCOMPARE(devices[1]["channelModes"].toArray().first()["frequency"].toDouble(), 125.0);
        run<StopSearch>({});
        QVERIFY(!node()->isSearchingDevices());
    }

    void nothingToChooseFrom()
    {
        m_context->getVirtualDevicesSettings()->setGeneratorEnabled(false);
        findHeadsets(node(0), {});
        run<StartSearch>({});
        QTest::qWait(0);
        QCOMPARE(run<DeviceCount>({}).value("deviceCount").toInt(), 0);
        QCOMPARE(run<ListDevices>({}).value("devices").toArray().size(), 0);
        const QString text = QStringLiteral("There are no devices to choose from");
        QCOMPARE(run<StartDevice>({ { "index", "0" } }, false).value("error").toString(), text);
        QCOMPARE(run<GetDeviceInfo>({ { "SN", "0031" } }, false).value("error").toString(), text);
    }

    void selectionErrors_data()
    {
        QTest::addColumn<Args>("args");
        QTest::addColumn<QString>("startError");
        QTest::addColumn<QString>("infoError");
        const QString none = QStringLiteral("Please specify any of 'id' or 'sn' as an argument");
        const QString range = QStringLiteral("Index is out of range");
        QTest::newRow("no selector") << Args { { "channels", "4" } } << none << none;
        QTest::newRow("past the end") << Args { { "index", "3" } } << range << range;
        QTest::newRow("negative") << Args { { "id", "-1" } } << range
                                  << QStringLiteral("Index must be greater than zero");
        QTest::newRow("not a number") << Args { { "Index", "x" } } << "Index must be a number, 'x' given"
                                      << "Index must be a number, 'x' given";
        QTest::newRow("short serial") << Args { { "SN", "1" } } << "Provided serial number is too short"
                                      << "Provided serial number is too short";
        QTest::newRow("unknown serial") << Args { { "sn", "9999" } } << "Device with serial number '9999' not found"
                                        << "Device with serial number '9999' not found";
    }

    void selectionErrors()
    {
        QFETCH(Args, args);
        QFETCH(QString, startError);
        QFETCH(QString, infoError);
        searchAll();
        QCOMPARE(run<StartDevice>(args, false).value("error").toString(), startError);
        QVERIFY(!node()->isDeviceStarted());
        if (!infoError.isEmpty())
            QCOMPARE(run<GetDeviceInfo>(args, false).value("error").toString(), infoError);
    }

    // "channels" reaches the engine as a base-10 count; a negative one means the preferred count.
    void startDeviceChannels_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<int>("started");
        QTest::newRow("two") << "2" << 2;
        QTest::newRow("negative") << "-1" << 8;
        QTest::newRow("leading zero, not octal") << "08" << 8;
    }

    void startDeviceChannels()
    {
        QFETCH(QString, channels);
        QFETCH(int, started);
        searchAll();
        run<StartDevice>({ { "sn", "0031" }, { "channels", channels } });
        QCOMPARE(node()->getCurrentDevice().currentChannelCount, started);
    }

    void documentedSelectorsInAnyCase()
    {
        searchAll();
        QCOMPARE(run<GetDeviceInfo>({ { "SN", "7777" } }).value("info")["name"].toString(), "OX4 (7777)");
        QCOMPARE(run<GetDeviceInfo>({ { "Sn", "0031" } }).value("info")["name"].toString(), "OX8G (0031)");
        QCOMPARE(run<GetDeviceInfo>({ { "INDEX", "0" } }).value("info")["name"].toString(), "GeneratorDevice");
        // An exact key wins over a differently written one.
        QCOMPARE(run<GetDeviceInfo>({ { "id", "2" }, { "Index", "1" } }).value("info")["name"].toString(),
                 "OX4 (7777)");
        // id is looked for before sn.
        QCOMPARE(run<GetDeviceInfo>({ { "sn", "0031" }, { "index", "0" } }).value("info")["name"].toString(),
                 "GeneratorDevice");
    }

    void startDeviceStartsTheChosenOne()
    {
        searchAll();
        run<StartDevice>({ { "SN", "0031" }, { "channels", "2" } });
        QVERIFY(node()->isDeviceStarted());
        QCOMPARE(node()->getCurrentDevice().name, QStringLiteral("OX8G (0031)"));
        QCOMPARE(node()->getCurrentDevice().currentChannelCount, 2);

        // The running device again, with or without another channel count: it keeps running as
        // it is (the engine does not start a device twice), and the request succeeds.
        auto* headset = static_cast<TestHeadset*>(node()->currentDevice());
        run<StartDevice>({ { "sn", "0031" } });
        run<StartDevice>({ { "sn", "0031" }, { "channels", "8" } });
        QVERIFY(node()->isDeviceStarted());
        QCOMPARE(node()->currentDevice(), headset);
        QCOMPARE(node()->getCurrentDevice().currentChannelCount, 2);
        QCOMPARE(QList<int>({ headset->opens, headset->stops }), QList<int>({ 1, 0 }));
        QCOMPARE(run<GetDeviceInfo>({ { "id", "1" } }).value("info")["name"].toString(), "OX8G (0031)");

        run<StartDevice>({ { "index", "0" } });
        QCOMPARE(node()->getCurrentDevice().name, QStringLiteral("GeneratorDevice"));
        QCOMPARE(node()->getCurrentDeviceFrequency(), 125.0f);
    }

    void currentDeviceInfoFollowsTheNode()
    {
        QJsonObject idle = run<CurrentDeviceInfo>({});
        QVERIFY(idle.value("device").isNull());
        QCOMPARE(idle.value("currentChannels").toInt(), 0);
        QCOMPARE(idle.value("isRecording").toBool(), false);

        QVERIFY(m_context->startGenerator());
        node()->setFilters(1.5f, 30, 50, 0);
        const QJsonObject state = run<CurrentDeviceInfo>({});
        const QStringList names = node()->getCurrentMontageChannelNames();
        QCOMPARE(state.value("currentChannels").toInt(), 6);
        QCOMPARE(state.value("currentChannelsNames").toVariant().toStringList(), names);
        QCOMPARE(state.value("currentFrequency").toDouble(), 125.0);
        QCOMPARE(state.value("quality").toArray().size(), 6);
        QCOMPARE(state.value("HPF").toDouble(), 1.5);
        QCOMPARE(state.value("LPF").toDouble(), 30.0);
        QCOMPARE(state.value("BSF").toDouble(), 50.0);
        QCOMPARE(state.value("BSF2").toDouble(), 0.0);
        QCOMPARE(state.value("recordDuration").toDouble(), 0.0);
        const QJsonObject device = state.value("device").toObject();
        QCOMPARE(device.value("name").toString(), "GeneratorDevice");
        QCOMPARE(device.value("currentChannelCount").toInt(), 6);
        QCOMPARE(device.value("channelNames").toVariant().toStringList(),
                 QStringList({ "O1", "T3", "Fp1", "Fp2", "T4", "O2" }));

        const QJsonArray nodes = run<CurrentDevicesInfo>({}).value("devices").toArray();
        QCOMPARE(nodes.size(), 2);
        QCOMPARE(nodes[0]["node"].toInt(), 0);
        QCOMPARE(nodes[0]["device"]["name"].toString(), "GeneratorDevice");
        QCOMPARE(nodes[1]["node"].toInt(), 1);
        QVERIFY(nodes[1]["device"].isNull());
        QCOMPARE(run<CurrentDeviceInfo>({ { "node", "1" } }).value("currentChannels").toInt(), 0);
    }

    void favouriteDevice()
    {
        const QString text = QStringLiteral("Please provide a string of minimum 4 letters long");
        QCOMPARE(run<MakeFavorite>({}, false).value("error").toString(), text);
        QCOMPARE(run<MakeFavorite>({ { "value", " OX8 " } }, false).value("error").toString(), text);
        QCOMPARE(m_context->getSettings()->getFavouriteDevice(), QString());
        run<MakeFavorite>({ { "value", "OX8G (0031)" } });
        QCOMPARE(m_context->getSettings()->getFavouriteDevice(), QStringLiteral("OX8G (0031)"));
        QCOMPARE(run<GetFavoriteDeviceName>({}).value("device").toString(), "OX8G (0031)");
    }

    void montageNames()
    {
        QCOMPARE(run<SetMontage>({ { "channelNames", "A" } }, false).value("error").toString(),
                 "Device is not connected");
        QVERIFY(m_context->startGenerator());
        QCOMPARE(run<SetMontage>({}, false).value("error").toString(), "Provide 'channelNames' argument");
        run<SetMontage>({ { "channelnames", " A, B ,C" } });
        QCOMPARE(node()->getCurrentMontageChannelNames().mid(0, 4), QList<QString>({ "A", "B", "C", "Fp2" }));

        QVERIFY(node()->startRecord(m_context->getRecordsFolder() + QStringLiteral("/montage")));
        QCOMPARE(run<SetMontage>({ { "channelNames", "X" } }, false).value("error").toString(),
                 "Cannot change montage while recording is on");
        QCOMPARE(node()->getCurrentMontageChannelNames().first(), QStringLiteral("A"));
        node()->stopRecord();
    }
};

QTEST_GUILESS_MAIN(TestDeviceCommands)
#include "tst_devicecommands.moc"
