#include "server/BaseCortexCoreNodeCommand.h"
#include "server/BaseDataCommand.h"
#include "server/BaseGrabDataCommand.h"
#include "server/BaseHistoryCommand.h"
#include "server/BaseSetFilterCommand.h"
#include "server/SpectrumGrabCommand.h"

#include "server/FakeServerContext.h"

#include <QJsonArray>
#include <QtTest>

// Mixed-case class name: the command word is its lower-cased form.
class GetMixedCASEThing : public HTWSCommand
{
    Q_OBJECT
public:
    using HTWSCommand::HTWSCommand;
    bool processCommand(Referrer, QJsonObject&, QMap<QString, QString>&) override { return true; }
    using HTWSCommand::getAnyArgumentOrErrorIfNeeded;
};

// Remembers the node it was handed.
class NodeProbe : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    using BaseCortexCoreNodeCommand::BaseCortexCoreNodeCommand;
    using BaseCortexCoreNodeCommand::processCommand;
    bool processCommand(CortexCore* node, Referrer, QJsonObject&, QMap<QString, QString>&) override
    {
        reached = node;
        return true;
    }
    CortexCore* reached = nullptr;
};

class FixedData : public BaseDataCommand
{
    Q_OBJECT
public:
    using BaseDataCommand::BaseDataCommand;
    QList<QList<float>> channels;

protected:
    QList<QList<float>> getData(CortexCore*, QMap<QString, QString>&) override { return channels; }
};

class FixedGrab : public BaseGrabDataCommand
{
    Q_OBJECT
public:
    using BaseGrabDataCommand::BaseGrabDataCommand;

protected:
    QList<QList<float>> getData(CortexCore*, QMap<QString, QString>&) override { return { { 1.239f } }; }
};

class FixedHistory : public BaseHistoryCommand
{
    Q_OBJECT
public:
    using BaseHistoryCommand::BaseHistoryCommand;

protected:
    QList<TimestampedValue> getHistory(CortexCore*, QMap<QString, QString>&) override
    {
        return { { 1700000000123, 42.5 }, { 1700000000623, -1 } };
    }
};

class SetTestHPF : public BaseSetFilterCommand
{
    Q_OBJECT
public:
    using BaseSetFilterCommand::BaseSetFilterCommand;

protected:
    void setFilterValue(float& hpf, float&, float&, float&, float value) override { hpf = value; }
    QString settingsKey() const override { return QStringLiteral("HPF"); }
};

class FixedSpectrum : public SpectrumGrabCommand
{
    Q_OBJECT
public:
    using SpectrumGrabCommand::SpectrumGrabCommand;

protected:
    QJsonValue getSpectrum(CortexCore*, QMap<QString, QString>&) override { return QJsonArray { 1, 2 }; }
    QString spectrumDescription() const override { return QStringLiteral("test"); }
};

class TestCommandFramework : public QObject
{
    Q_OBJECT

    static QString grabText()
    {
        return "For general optimisation this data is available in data grab mode only. Use command "
               "'enableDataGrabMode' to start grabbing data history";
    }

private Q_SLOTS:
    void namesAndArguments()
    {
        GetMixedCASEThing command;
        QCOMPARE(command.name(), QString("getmixedcasething"));
        QVERIFY(!command.isSecret());

        QMap<QString, QString> args { { "SN", "0031" }, { "Index", "2" } };
        QString name = "sn";
        QCOMPARE(HTWSCommand::argumentCaseInsensitive(args, name, "none"), QString("0031"));
        name = "INDEX";
        QCOMPARE(HTWSCommand::argumentCaseInsensitive(args, name, "none"), QString("2"));
        name = "node";
        QCOMPARE(HTWSCommand::argumentCaseInsensitive(args, name, "none"), QString("none"));

        // Exact names, first match in the given order wins.
        QJsonObject response;
        QString found;
        QMap<QString, QString> both { { "index", "1" }, { "sn", "77" } };
        QCOMPARE(GetMixedCASEThing::getAnyArgumentOrErrorIfNeeded({ "sn", "index" }, found, response, both),
                 QVariant("77"));
        QCOMPARE(found, QString("sn"));
        QVERIFY(!response.contains("error"));

        found.clear();
        QVariant missing = GetMixedCASEThing::getAnyArgumentOrErrorIfNeeded({ "sn", "index" }, found, response, args);
        QVERIFY(!missing.isValid());
        QVERIFY(found.isEmpty());
        QCOMPARE(response.value("error").toString(), QString("Please specify any of 'sn' or 'index' as an argument"));
    }

    void nodeSelection_data()
    {
        QTest::addColumn<int>("nodes");
        QTest::addColumn<QString>("node"); // "-" for no argument
        QTest::addColumn<int>("reached");  // -1: the error
        QTest::newRow("absent") << 1 << "-" << 0;
        QTest::newRow("not a number") << 1 << "abc" << 0;
        QTest::newRow("past the end") << 1 << "5" << -1;
        QTest::newRow("one past") << 2 << "2" << -1;
        QTest::newRow("negative") << 2 << "-1" << -1;
        QTest::newRow("second") << 2 << "1" << 1;
        QTest::newRow("hex is not base 10") << 2 << "0x1" << 0;
    }

    void nodeSelection()
    {
        QFETCH(int, nodes);
        QFETCH(QString, node);
        QFETCH(int, reached);
        FakeServerContext context(nodes);
        NodeProbe probe(0, &context);
        QMap<QString, QString> args;
        if (node != "-")
            args.insert("node", node);
        QJsonObject response;
        QCOMPARE(probe.processCommand(ReferrerHttp, response, args), reached >= 0);
        if (reached >= 0) {
            QCOMPARE(probe.reached, context.getNode(reached));
        } else {
            QCOMPARE(probe.reached, nullptr);
            QCOMPARE(response.value("error").toString(), QString("This node index does not exist"));
        }
    }

    void deviceAndGrabModeChecks()
    {
        FakeServerContext context(1);
        CortexCore* node = context.getNode(0);
        NodeProbe needsDevice(BaseCortexCoreNodeCommand::RequiresDevice, &context);
        NodeProbe needsGrab(BaseCortexCoreNodeCommand::RequiresDevice | BaseCortexCoreNodeCommand::RequiresGrabMode,
                            &context);
        FixedGrab grab(&context);
        FixedHistory history(&context);
        QVERIFY(needsGrab.requiresDevice() && needsGrab.requiresGrabMode() && !needsDevice.requiresGrabMode());
        QVERIFY(history.requiresDevice() && history.requiresGrabMode());
        QMap<QString, QString> args;

        QJsonObject response;
        QVERIFY(!needsDevice.processCommand(ReferrerHttp, response, args));
        QCOMPARE(response.value("error").toString(), QString("Device is not connected"));

        QVERIFY(context.startGenerator(0));
        node->enableDataGrabMode(false);
        response = {};
        QVERIFY(needsDevice.processCommand(ReferrerHttp, response, args));
        QVERIFY(!needsGrab.processCommand(ReferrerHttp, response, args));
        QCOMPARE(response.value("error").toString(), grabText());
        response = {};
        QVERIFY(!grab.processCommand(ReferrerHttp, response, args)); // its own check, flags 1
        QCOMPARE(response.value("error").toString(), grabText());
        QVERIFY(!response.contains("data"));

        node->enableDataGrabMode(true);
        response = {};
        QVERIFY(grab.processCommand(ReferrerHttp, response, args));
        QCOMPARE(response.value("data"), QJsonValue(QJsonArray { QJsonArray { 1.23 } }));

        response = {};
        QVERIFY(history.processCommand(ReferrerWebSocket, response, args));
        const QJsonArray expected { QJsonObject { { "t", 1700000000123LL }, { "v", 42.5 } },
                                    QJsonObject { { "t", 1700000000623LL }, { "v", -1 } } };
        QCOMPARE(response.value("history").toArray(), expected);
        QCOMPARE(response.value("history").toArray().first().toObject().value("t").toInteger(), 1700000000123LL);

        FixedSpectrum spectrum(&context);
        response = {};
        QVERIFY(spectrum.processCommand(ReferrerHttp, response, args));
        QCOMPARE(response.value("spectrum"), QJsonValue(QJsonArray { 1, 2 }));
        QCOMPARE(response.value("deviceFrequencyHz").toDouble(), double(node->getCurrentDeviceFrequency()));
        QVERIFY(node->getCurrentDeviceFrequency() > 0);
        for (const char* key : { "frequencyStepHz", "windowSeconds", "windowStepSeconds", "hanningPercent" })
            QVERIFY2(response.value(key).isDouble(), key);
    }

    // Expected values from numpy float32 arithmetic: trunc(float32(v) * float32(100)) / 100.
    void samplesTruncatedToHundredths_data()
    {
        QTest::addColumn<float>("sample");
        QTest::addColumn<double>("sent");
        QTest::newRow("12.3456") << 12.3456f << 12.34;
        QTest::newRow("-0.019") << -0.019f << -0.01;
        QTest::newRow("-7.999") << -7.999f << -7.99;
        QTest::newRow("1.005 (float is 1.00499..)") << 1.005f << 1.0;
        QTest::newRow("2.675") << 2.675f << 2.67;
        QTest::newRow("-1.115") << -1.115f << -1.11;
        QTest::newRow("0.004") << 0.004f << 0.0;
        QTest::newRow("33.33") << 33.33f << 33.33;
        QTest::newRow("1e6+0.07 (product rounds up in float)") << 1000000.07f << 1000000.08;
    }

    void samplesTruncatedToHundredths()
    {
        QFETCH(float, sample);
        QFETCH(double, sent);
        FakeServerContext context(1);
        QVERIFY(context.startGenerator(0));
        FixedData data(&context);
        data.channels = { { sample, sample }, {} };
        QJsonObject response;
        QMap<QString, QString> args;
        QVERIFY(data.processCommand(ReferrerHttp, response, args));
        const QJsonArray channels = response.value("data").toArray();
        QCOMPARE(channels.size(), 2);
        QCOMPARE(channels[1].toArray().size(), 0);
        QCOMPARE(channels[0].toArray().size(), 2);
        QCOMPARE(channels[0].toArray()[0].toDouble(), sent);
    }

    void filterSetter_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("error"); // empty: accepted
        const QString between = "Filter value should be between 0 (off) and 100 Hz, '%1' given";
        const QString parse = "Could not parse '%1' as float";
        QTest::newRow("100") << "100" << "";
        QTest::newRow("0 is off") << "0" << "";
        QTest::newRow("fraction") << "0.5" << "";
        QTest::newRow("100.5") << "100.5" << between.arg("100.5");
        QTest::newRow("negative") << "-0.1" << between.arg("-0.1");
        QTest::newRow("x") << "x" << parse.arg("x");
        QTest::newRow("missing") << "" << parse.arg("");
        QTest::newRow("comma decimal") << "1,5" << parse.arg("1,5");
        QTest::newRow("nan") << "nan" << between.arg("nan");
        QTest::newRow("inf") << "inf" << between.arg("inf");
    }

    void filterSetter()
    {
        QFETCH(QString, value);
        QFETCH(QString, error);
        FakeServerContext context(1);
        CortexCore* node = context.getNode(0);
        node->setFilters(3, 40, 50, 60);
        context.getSettings()->setHPF(3);
        SetTestHPF command(&context);
        QCOMPARE(command.getArgumentDescriptions().keys(), QStringList { "value" });

        QMap<QString, QString> args;
        if (!value.isEmpty())
            args.insert("value", value);
        QJsonObject response;
        const bool accepted = command.processCommand(ReferrerHttp, response, args);
        QCOMPARE(accepted, error.isEmpty());
        QCOMPARE(response.value("error").toString(), error);

        float hpf = 0, lpf = 0, bsf = 0, bsf2 = 0;
        node->getFilters(hpf, lpf, bsf, bsf2);
        const float expected = accepted ? value.toFloat() : 3.0f;
        QCOMPARE(hpf, expected);
        QCOMPARE(context.getSettings()->getHPF(), expected);
        QCOMPARE(lpf, 40.0f);
        QCOMPARE(bsf, 50.0f);
        QCOMPARE(bsf2, 60.0f);
    }
};

QTEST_GUILESS_MAIN(TestCommandFramework)
#include "tst_commandframework.moc"
