#include "FakeServerContext.h"

#include "dsp/CustomBCIAlgorithm.h"
#include "server/JsonChannelData.h"
#include "server/commands/BCI.h"
#include "server/commands/BCIs.h"
#include "server/commands/Concentration.h"
#include "server/commands/ConcentrationHistory.h"
#include "server/commands/ControlOptions.h"
#include "server/commands/DisableDataGrabMode.h"
#include "server/commands/EnableDataGrabMode.h"
#include "server/commands/FilteredData.h"
#include "server/commands/GetDataStorageTime.h"
#include "server/commands/GetFilters.h"
#include "server/commands/GetSpectrum.h"
#include "server/commands/GrabFilteredData.h"
#include "server/commands/GrabRawData.h"
#include "server/commands/GrabSpectrum.h"
#include "server/commands/LastSpectrum.h"
#include "server/commands/Meditation.h"
#include "server/commands/MeditationHistory.h"
#include "server/commands/RawData.h"
#include "server/commands/Rhythms.h"
#include "server/commands/RhythmsHistory.h"
#include "server/commands/SetBSF.h"
#include "server/commands/SetDataStorageTime.h"
#include "server/commands/SetFilters.h"
#include "server/commands/SetHPF.h"
#include "server/commands/SetLPF.h"
#include "server/commands/SpectrumFrequencies.h"
#include "support/FakeDevices.h"

#include <QJsonArray>
#include <QtTest>

#include <cmath>
#include <functional>
#include <memory>

namespace {
constexpr int Channels = 6; // the generator's default montage
constexpr float Rate = 125;

using Factory = std::function<HTWSCommand*(DataServerContext*)>;

template <typename T>
Factory factory()
{
    return [](DataServerContext* context) { return new T(context); };
}

const QMap<QString, Factory>& commands()
{
    static const QMap<QString, Factory> all {
        { "meditation", factory<Meditation>() },           { "concentration", factory<Concentration>() },
        { "meditationhistory", factory<MeditationHistory>() },
        { "concentrationhistory", factory<ConcentrationHistory>() },
        { "bci", factory<BCI>() },                         { "rhythms", factory<Rhythms>() },
        { "rhythmshistory", factory<RhythmsHistory>() },   { "filtereddata", factory<FilteredData>() },
        { "grabfiltereddata", factory<GrabFilteredData>() }, { "rawdata", factory<RawData>() },
        { "grabrawdata", factory<GrabRawData>() },         { "lastspectrum", factory<LastSpectrum>() },
        { "getspectrum", factory<GetSpectrum>() },         { "grabspectrum", factory<GrabSpectrum>() },
        { "spectrumfrequencies", factory<SpectrumFrequencies>() },
    };
    return all;
}

// Reports a fixed number on every filtered block.
class ConstantAlgorithm : public CustomBCIAlgorithm
{
public:
    ConstantAlgorithm(const QString& name, double value, bool visible)
        : CustomBCIAlgorithm(name)
        , m_value(value)
    {
        setVisibleToControl(visible);
    }
    DataType getDataType() const override { return DataType_Data; }

protected:
    double internalProcessData(QList<QList<float>>&) override { return m_value; }

private:
    double m_value;
};
}

// The data, spectrum, rhythm, index, filter and storage commands against a node that streams
// the generator; blocks are pushed by hand so that every reply can be checked exactly.
class TestDataCommands : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeServerContext> m_context;
    qint64 m_sample = 0;

    CortexCore* node(int index = 0) const { return m_context->getNode(index); }

    QJsonObject run(HTWSCommand& command, QMap<QString, QString> args = {}, bool* ok = nullptr)
    {
        QJsonObject response;
        const bool result = command.processCommand(ReferrerHttp, response, args);
        if (ok)
            *ok = result;
        return response;
    }

    template <typename T>
    QJsonObject run(QMap<QString, QString> args = {}, bool* ok = nullptr)
    {
        T command(m_context.get());
        return run(command, args, ok);
    }

    // `seconds` of a 10 Hz sine (20 Hz on channel 1) in blocks of 25 samples.
    void stream(double seconds, int nodeIndex = 0)
    {
        for (int b = 0; b < int(seconds * Rate / 25); ++b) {
            QList<QList<float>> block(Channels);
            for (int c = 0; c < Channels; ++c) {
                for (int k = 0; k < 25; ++k)
                    block[c].append(float(20 * std::sin(2 * M_PI * (c == 1 ? 20 : 10) * double(m_sample + k) / Rate)));
            }
            m_sample += 25;
            node(nodeIndex)->addDataChannelWise(block);
        }
    }

    void startMetering(int nodeIndex = 0)
    {
        QVERIFY(m_context->startGenerator(nodeIndex));
        node(nodeIndex)->setFilters(0, 0, 0, 0);
        QVERIFY(node(nodeIndex)->startSpectrumCalculation(4, 0.1f, 10));
        // Each index on its default channels, with the normalizers' default arguments.
        for (const auto& [index, channels] : { std::pair(CortexCore::Meditation, "O1,O2"),
                                               std::pair(CortexCore::Concentration, "Fp1,Fp2") })
            node(nodeIndex)->startMetaIndexMetering(index, QString::fromLatin1(channels), 0, 100, 0, 100, 0, 100,
                                                    1000, 1000, 10, 16, true);
    }

private Q_SLOTS:
    void init()
    {
        m_context = std::make_unique<FakeServerContext>(2);
        m_sample = 0;
    }

    void cleanup() { m_context.reset(); }

    void preconditions_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("started");
        QTest::addColumn<QString>("error");
        const QString noDevice = QStringLiteral("Device is not connected");
        const QString grab = BaseCortexCoreNodeCommand::grabModeErrorText();
        for (const QString& name : commands().keys())
            QTest::addRow("%s without device", qPrintable(name)) << name << false << noDevice;
        for (const char* name : { "grabrawdata", "grabfiltereddata", "meditationhistory", "concentrationhistory",
                                  "rhythmshistory" })
            QTest::addRow("%s without grab mode", name) << QString(name) << true << grab;
    }

    void preconditions()
    {
        QFETCH(QString, command);
        QFETCH(bool, started);
        QFETCH(QString, error);
        if (started)
            QVERIFY(m_context->startGenerator());
        std::unique_ptr<HTWSCommand> object(commands().value(command)(m_context.get()));
        QCOMPARE(object->name(), command);
        bool ok = true;
        QCOMPARE(run(*object, {}, &ok).value("error").toString(), error);
        QVERIFY(!ok);
    }

    void nodeArgumentSelectsTheEngine()
    {
        QVERIFY(m_context->startGenerator(1));
        bool ok = false;
        run<Meditation>({ { "node", "1" } }, &ok);
        QVERIFY(ok);
        QCOMPARE(run<Meditation>({ { "node", "abc" } }).value("error").toString(), QString("Device is not connected"));
        QCOMPARE(run<Meditation>({ { "node", "2" } }).value("error").toString(),
                 QString("This node index does not exist"));
    }

    void dataRepliesAreTheEngineHistoriesTruncated()
    {
        QVERIFY(m_context->startGenerator()); // default filters: filtered and raw differ
        QList<QList<float>> block(Channels);
        for (int c = 0; c < Channels; ++c)
            block[c] = { 12.3456f, -0.019f, float(c) + 0.999f };
        node()->addDataChannelWise(block);
        stream(1);

        const QJsonArray raw = run<RawData>().value("data").toArray();
        QCOMPARE(raw, JsonChannelData::truncatedChannels(node()->getRawData()));
        QCOMPARE(raw.size(), Channels);
        QCOMPARE(raw[3].toArray()[0].toDouble(), 12.34); // cut, never rounded
        QCOMPARE(raw[3].toArray()[1].toDouble(), -0.01);
        QCOMPARE(raw[3].toArray()[2].toDouble(), 3.99);
        const QJsonArray filtered = run<FilteredData>().value("data").toArray();
        QCOMPARE(filtered, JsonChannelData::truncatedChannels(node()->getFilteredData()));
        QVERIFY(filtered != raw);
    }

    void grabsHandOutWhatAccumulated()
    {
        QVERIFY(m_context->startGenerator());
        QVERIFY(run<EnableDataGrabMode>().isEmpty());
        QVERIFY(node()->isDataGrabModeEnabled());
        stream(0.4); // 50 samples

        const QList<QList<float>> filtered = node()->getFilteredData();
        const QJsonArray grabbedRaw = run<GrabRawData>().value("data").toArray();
        QCOMPARE(grabbedRaw.size(), Channels);
        QCOMPARE(grabbedRaw[0].toArray().size(), 50);
        QCOMPARE(grabbedRaw, JsonChannelData::truncatedChannels(node()->getRawDeviceData()));
        QCOMPARE(run<GrabFilteredData>().value("data").toArray(), JsonChannelData::truncatedChannels(filtered));
        QVERIFY(run<GrabRawData>().value("data").toArray()[0].toArray().isEmpty());

        run<DisableDataGrabMode>();
        QCOMPARE(run<GrabRawData>().value("error").toString(), BaseCortexCoreNodeCommand::grabModeErrorText());
    }

    void grabbedRawDataAreTheDeviceChannels()
    {
        // A belt device: its montage adds EMG, ECG and Omega to its two inputs.
        auto* discovery = new FakeDiscovery(node());
        discovery->visible = { QStringLiteral("Corvanta-2 (0042)") };
        node()->setDeviceDiscovery(discovery);
        node()->setHeadsetFactory([](const QBluetoothDeviceInfo& info, QObject* owner) {
            return new TestHeadset(info.name(), 2, owner);
        });
        node()->startDeviceSearch();
        QTRY_COMPARE(node()->getFoundDevices().last().name, QStringLiteral("Corvanta-2 (0042)"));
        QVERIFY(node()->startDevice(node()->getFoundDevices().last(), {}, -1));
        QCOMPARE(node()->getCurrentMontageChannelNames().size(), 5);

        run<EnableDataGrabMode>();
        const QList<QList<float>> block { { 1, 2, 3 }, { 40, 50, 60 } };
        node()->addDataChannelWise(block);
        QCOMPARE(run<GrabRawData>().value("data").toArray(), JsonChannelData::truncatedChannels(block));
        QCOMPARE(run<GrabFilteredData>().value("data").toArray().size(), 5);
    }

    void spectraCarryTheEngineSpectraAndParameters()
    {
        startMetering();
        stream(6);
        const QList<TimestampedData> history = node()->getSpectrumData();
        QVERIFY(history.size() > 10);

        const QJsonObject got = run<GetSpectrum>();
        const QJsonArray spectra = got.value("spectrum").toArray();
        QCOMPARE(spectra.size(), history.size());
        QCOMPARE(spectra.last()["t"].toInteger(), history.last().timestamp);
        QCOMPARE(spectra.last()["d"].toArray(), JsonChannelData::channels(history.last().data));
        // 4 s at 125 Hz: 500 samples padded to 512 bins, 125/512 Hz apart.
        QCOMPARE(got.value("frequencyStepHz").toDouble(), 125.0 / 512);
        QCOMPARE(got.value("windowSeconds").toDouble(), 4.0);
        QCOMPARE(got.value("windowStepSeconds").toDouble(), double(0.1f));
        QCOMPARE(got.value("hanningPercent").toDouble(), 10.0);
        QCOMPARE(got.value("deviceFrequencyHz").toDouble(), 125.0);

        const QJsonArray last = run<LastSpectrum>().value("spectrum").toArray();
        QCOMPARE(last, JsonChannelData::channels(node()->getLastSpectrum()));
        // The 10 Hz sine peaks in bin 10 / (125/512) = 40.96, so in bin 41.
        const QJsonArray channel0 = last[0].toArray();
        int peak = 0;
        for (int i = 1; i < channel0.size(); ++i)
            peak = channel0[i].toDouble() > channel0[peak].toDouble() ? i : peak;
        QCOMPARE(peak, 41);

        const QJsonArray frequencies = run<SpectrumFrequencies>().value("frequencies").toArray();
        QCOMPARE(frequencies.size(), channel0.size());
        QCOMPARE(frequencies[41].toDouble(), 41 * 125.0 / 512);

        QCOMPARE(run<GrabSpectrum>().value("spectrum").toArray().size(), history.size());
        QVERIFY(run<GrabSpectrum>().value("spectrum").toArray().isEmpty());
    }

    void rhythmsPerChannel()
    {
        startMetering();
        QVERIFY(run<EnableDataGrabMode>().isEmpty());
        stream(6);
        const QList<StandartRhythmSample> engine = node()->getLastStandartRhythms();
        const QJsonArray rhythms = run<Rhythms>().value("rhythms").toArray();
        QCOMPARE(rhythms.size(), Channels);
        const QStringList names { "O1", "T3", "Fp1", "Fp2", "T4", "O2" };
        for (int c = 0; c < Channels; ++c) {
            const QJsonObject channel = rhythms[c].toObject();
            QCOMPARE(channel.value("channel").toString(), names[c]);
            QCOMPARE(channel.value("alpha").toDouble(), double(engine[c].alpha));
            QCOMPARE(channel.value("t").toInteger(), engine[c].timestamp);
            QCOMPARE(channel.keys().size(), 7);
        }
        QVERIFY(rhythms[0]["alpha"].toDouble() > 50); // 10 Hz
        QVERIFY(rhythms[1]["beta"].toDouble() > 50);  // 20 Hz

        const int spectra = int(node()->getSpectrumData().size());
        const QJsonArray history = run<RhythmsHistory>().value("rhythms").toArray();
        QCOMPARE(history.size(), Channels);
        QCOMPARE(history[2]["channel"].toString(), QString("Fp1"));
        QCOMPARE(history[2]["history"].toArray().size(), spectra);
        QCOMPARE(history[2]["history"].toArray().last()["theta"].toDouble(), double(engine[2].theta));
        QVERIFY(run<RhythmsHistory>().value("rhythms").toArray().at(2)["history"].toArray().isEmpty());
    }

    void indicesAndTheirHistories()
    {
        startMetering();
        QCOMPARE(run<Meditation>().value("meditation").toDouble(), -1.0); // nothing measured yet
        run<EnableDataGrabMode>();
        stream(6);
        const RhythmNormSample meditation = node()->getLastMetaIndexResult(CortexCore::Meditation);
        const RhythmNormSample concentration = node()->getLastMetaIndexResult(CortexCore::Concentration);
        QVERIFY(meditation.level >= 0);
        QCOMPARE(run<Meditation>().value("meditation").toDouble(), double(meditation.level));
        QCOMPARE(run<Concentration>().value("concentration").toDouble(), double(concentration.level));

        const int spectra = int(node()->getSpectrumData().size());
        const QJsonArray history = run<ConcentrationHistory>().value("history").toArray();
        QCOMPARE(history.size(), spectra);
        QCOMPARE(history.last()["t"].toInteger(), concentration.timestamp);
        QCOMPARE(history.last()["v"].toDouble(), double(concentration.level));
        QCOMPARE(run<MeditationHistory>().value("history").toArray().size(), spectra);
        QVERIFY(run<MeditationHistory>().value("history").toArray().isEmpty());
    }

    void controlValuesIncludeVisibleAlgorithms()
    {
        // The engine owns what it is given.
        node()->addCustomBCIAlgorithm(new ConstantAlgorithm("focus", 42, true));
        node()->addCustomBCIAlgorithm(new ConstantAlgorithm("internal", 7, false));
        node()->addCustomBCIAlgorithm(new ConstantAlgorithm("meditation", 99, true));
        startMetering();
        stream(0.2);

        const QJsonObject bci = run<BCI>();
        QCOMPARE(bci.value("focus").toDouble(), 42.0);
        QVERIFY(!bci.contains("internal"));
        QCOMPARE(bci.value("meditation").toDouble(), -1.0); // the index, not the algorithm
        QCOMPARE(bci.value("mentalstate").toDouble(), -1.0);

        const QJsonArray all = run<BCIs>().value("results").toArray();
        QCOMPARE(all.size(), 2);
        QCOMPARE(all[0]["node"].toInt(), 0);
        QCOMPARE(all[0]["focus"].toDouble(), 42.0);
        QCOMPARE(all[1]["node"].toInt(), 1);
        QCOMPARE(all[1]["concentration"].toDouble(), -1.0); // no device on node 1

        QStringList options;
        for (const QJsonValue& control : run<ControlOptions>().value("controls").toArray())
            options << control["name"].toString() + ":" + control["type"].toString();
        QCOMPARE(options, QStringList({ "meditation:proportional", "concentration:proportional",
                                        "mentalstate:discrete", "focus:proportional" }));
    }

    void filterSetters_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("error");
        QTest::newRow("lpf") << "setlpf" << "30" << "";
        QTest::newRow("hpf at 100") << "sethpf" << "100" << "";
        QTest::newRow("bsf off") << "setbsf" << "0" << "";
        QTest::newRow("hpf above 100") << "sethpf" << "100.5"
                                       << "Filter value should be between 0 (off) and 100 Hz, '100.5' given";
        QTest::newRow("negative") << "setlpf" << "-1" << "Filter value should be between 0 (off) and 100 Hz, '-1' given";
        QTest::newRow("not a number") << "sethpf" << "x" << "Could not parse 'x' as float";
    }

    void filterSetters()
    {
        QFETCH(QString, command);
        QFETCH(QString, value);
        QFETCH(QString, error);
        std::unique_ptr<HTWSCommand> object;
        if (command == "setlpf")
            object = std::make_unique<SetLPF>(m_context.get());
        else if (command == "sethpf")
            object = std::make_unique<SetHPF>(m_context.get());
        else
            object = std::make_unique<SetBSF>(m_context.get());
        QCOMPARE(object->name(), command);
        const QString key = command.mid(3).toUpper();
        const QJsonObject before = run<GetFilters>();
        const double storedBefore = m_context->getSettings()->property(qPrintable(key)).toDouble();
        bool ok = false;
        QCOMPARE(run(*object, { { "value", value } }, &ok).value("error").toString(), error);
        QCOMPARE(ok, error.isEmpty());
        const QJsonObject after = run<GetFilters>();
        QCOMPARE(after.value(key).toDouble(), ok ? value.toDouble() : before.value(key).toDouble());
        QCOMPARE(m_context->getSettings()->property(qPrintable(key)).toDouble(), ok ? value.toDouble() : storedBefore);
        for (const char* other : { "LPF", "HPF", "BSF", "BSF2" }) {
            if (key != QLatin1String(other))
                QCOMPARE(after.value(other), before.value(other));
        }
    }

    void setFiltersChangesOnlyTheGivenOnes()
    {
        float hpf, lpf, bsf, bsf2;
        node(1)->getFilters(hpf, lpf, bsf, bsf2);
        bool ok = false;
        run<SetFilters>({ { "node", "1" }, { "lpf", "35" }, { "BSF2", "60" } }, &ok);
        QVERIFY(ok);
        float hpf2, lpf2, bsf3, bsf4;
        node(1)->getFilters(hpf2, lpf2, bsf3, bsf4);
        QCOMPARE(lpf2, 35.0f);
        QCOMPARE(bsf4, 60.0f);
        QCOMPARE(hpf2, hpf);
        QCOMPARE(bsf3, bsf);
        QCOMPARE(m_context->getSettings()->getLPF(), 35.0f);
        QCOMPARE(m_context->getSettings()->getBSF2(), 60.0f);
        QCOMPARE(run<GetFilters>({ { "node", "1" } }).value("LPF").toDouble(), 35.0);

        // A bad value leaves every filter alone.
        QCOMPARE(run<SetFilters>({ { "HPF", "5" }, { "LPF", "abc" } }, &ok).value("error").toString(),
                 QString("Could not parse 'abc' as float"));
        QVERIFY(!ok);
        QCOMPARE(node()->getHPF(), 2.0f);
        // None given: not an error, the current values stay.
        QVERIFY(!run<SetFilters>({}, &ok).contains("error"));
        QVERIFY(ok);
        QCOMPARE(node()->getHPF(), 2.0f);
    }

    void storageTime_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("3600 refused though the text names it") << "3600" << false;
        QTest::newRow("3599") << "3599" << true;
        QTest::newRow("1") << "1" << true;
        QTest::newRow("0") << "0" << false;
        QTest::newRow("negative") << "-5" << false;
        QTest::newRow("JSON number arrives empty") << "" << false;
        QTest::newRow("fraction") << "10.5" << false;
        QTest::newRow("text") << "ten" << false;
    }

    void storageTime()
    {
        QFETCH(QString, value);
        QFETCH(bool, accepted);
        bool ok = !accepted;
        const QJsonObject reply = run<SetDataStorageTime>({ { "value", value } }, &ok);
        QCOMPARE(ok, accepted);
        const int expected = accepted ? value.toInt() : 10;
        if (!accepted)
            QCOMPARE(reply.value("error").toString(), QString("Provide a number between 1 and 3600 seconds"));
        QCOMPARE(node(0)->getStorageTimeSeconds(), expected);
        QCOMPARE(node(1)->getStorageTimeSeconds(), expected);
        QCOMPARE(run<GetDataStorageTime>().value("storageTime").toInt(), expected);
    }

    void helpTexts()
    {
        // RawData and GrabRawData describe each other's behaviour; the histories both name meditation.
        QVERIFY(RawData(nullptr).getDescription().startsWith("Grab (clear queue) channel-wise unfiltered"));
        QVERIFY(GrabRawData(nullptr).getDescription().startsWith("Get channel-wise unfiltered"));
        QCOMPARE(ConcentrationHistory(nullptr).getDescription(), MeditationHistory(nullptr).getDescription());
        QCOMPARE(Concentration(nullptr).getDescription(),
                 QString("Get current 'concentration' percentage  ('-1' if the device is unavailable)"));
        QCOMPARE(SetDataStorageTime(nullptr).getArgumentDescriptions().value("value"), QString("1-3600 seconds"));
        QCOMPARE(GetSpectrum(nullptr).getReturnsDescriptions().value("spectrum"),
                 QString("Array of { t: timestamp, d: data } of channel-wise spectrum in uV"));
    }
};

QTEST_GUILESS_MAIN(TestDataCommands)
#include "tst_datacommands.moc"
