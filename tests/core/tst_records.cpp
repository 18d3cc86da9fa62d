#include "core/CortexCore.h"
#include "core/CortexDataResult.h"
#include "core/DeviceInfo.h"
#include "core/RhythmNormSample.h"
#include "core/StandartRhythmSample.h"
#include "core/TimestampedData.h"

#include <QJsonDocument>
#include <QtTest>

class TestRecords : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaultDeviceInfoJson()
    {
        const DeviceInfo info;
        QCOMPARE(info.toJsonText(),
                 QByteArray(R"j({"name":"","serialNumber":"","model":"","preferredChannelCount":8,)j"
                            R"j("maxChannels":0,"battery":-1,"channelModes":[]})j"));
    }

    void deviceInfoJsonLeavesOutPrivateFields()
    {
        DeviceInfo info;
        info.name = QStringLiteral("OX8G (0031)");
        info.secondName = QStringLiteral("second");
        info.serialNumber = QStringLiteral("0031");
        info.model = QStringLiteral("Orvex");
        info.maxChannels = 8;
        info.currentChannelCount = 8;
        info.channelModes.insert(8, 125.0f);
        info.channelModes.insert(2, 500.0f);
        info.channelNames = { QStringLiteral("O1") };
        const QByteArray text = info.toJsonText();
        QCOMPARE(text,
                 QByteArray(R"j({"name":"OX8G (0031)","serialNumber":"0031","model":"Orvex",)j"
                            R"j("preferredChannelCount":8,"maxChannels":8,"battery":-1,)j"
                            R"j("channelModes":[{"channels":2,"frequency":500},{"channels":8,"frequency":125}]})j"));
        // The text is the same object as toJson(), only ordered.
        QCOMPARE(QJsonDocument::fromJson(text).object(), info.toJson());

        const DeviceInfo copy = info;
        QCOMPARE(copy.secondName, info.secondName);
        QCOMPARE(copy.channelNames, info.channelNames);
    }

    void defaultsMeanNotComputed()
    {
        const StandartRhythmSample rhythms;
        QCOMPARE(rhythms.alpha, -1.0f);
        QCOMPARE(rhythms.extra, -1.0f);
        QCOMPARE(rhythms.timestamp, 0);
        const RhythmNormSample norm;
        QCOMPARE(norm.level, -1.0f);
        QVERIFY(!norm.flag);
        const CortexDataResult result;
        QCOMPARE(result.meditation.level, -1.0f);
        QCOMPARE(result.concentration.level, -1.0f);
        QVERIFY(result.filteredBlock.isEmpty());
        const TimestampedData data(42, { { 1.0f } });
        QCOMPARE(data.timestamp, 42);
        QCOMPARE(data.data.first().first(), 1.0f);
    }

    void recordsAreRegisteredForQueuedSignals()
    {
        CortexCore engine;
        QVERIFY(QMetaType::fromName("DeviceInfo").isValid());
        QVERIFY(QMetaType::fromName("CortexDataResult").isValid());
    }
};

QTEST_GUILESS_MAIN(TestRecords)
#include "tst_records.moc"
