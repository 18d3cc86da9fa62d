#include "dsp/CustomMathAlgorithm.h"
#include "dsp/CustomRhythmAlgorithm.h"
#include "dsp/CustomSpecialRhythmAlgorithm.h"
#include "services/GlobalConsole.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>

namespace {

// Consumes sample blocks and answers with the block's first sample.
class FirstSampleAlgorithm : public CustomBCIAlgorithm
{
public:
    FirstSampleAlgorithm()
        : CustomBCIAlgorithm(QStringLiteral("first"))
    {
    }
    DataType getDataType() const override { return DataType_Data; }

protected:
    double internalProcessData(QList<QList<float>>& blocks) override { return blocks.at(0).at(0); }
};

QList<float> constant(int bins, float value)
{
    return QList<float>(bins, value);
}

// Values by hand, step 1 Hz, band 1-2 Hz: 2 of 4 -> 50 %, 3 of 4 -> 75 %, the silent channel
// has no share at all.
QList<QList<float>> threeChannels()
{
    return {{1, 1, 1, 1, 0}, {0, 3, 0, 0, 1}, {0, 0, 0, 0, 0}};
}

QList<QString> headset()
{
    return {QStringLiteral("Fp1"), QStringLiteral("Fp2"), QStringLiteral("O1"), QStringLiteral("O2")};
}

} // namespace

class TestCustomBCI : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { GlobalConsole::FullOptimization = false; }

    void bandIncludesBothEndBins()
    {
        CustomRhythmAlgorithm alpha(QStringLiteral("alpha"), QStringLiteral("#F00"), 8, 12);
        QList<QList<float>> spectra{constant(41, 1)}; // 0 ... 20 Hz in 0.5 Hz steps
        QCOMPARE(alpha.processSpectrumData(spectra, 0.5f), 9 * 100.0 / 41);
        // 0.1 Hz is inexact in floating point; the 8 and 12 Hz bins still belong to the band.
        QList<QList<float>> fine{constant(201, 1)};
        QCOMPARE(alpha.processSpectrumData(fine, 0.1f), 41 * 100.0 / 201);
    }

    void modesLeaveSilentChannelsOut_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("channels");
        QTest::addColumn<double>("expected");
        QTest::newRow("max") << int(CustomRhythmAlgorithm::Calculate_Max) << QString() << 75.0;
        QTest::newRow("min") << int(CustomRhythmAlgorithm::Calculate_Min) << QString() << 50.0;
        QTest::newRow("mean") << int(CustomRhythmAlgorithm::Calculate_Average) << QString() << 62.5;
        QTest::newRow("one channel") << int(CustomRhythmAlgorithm::Calculate_Average) << QStringLiteral("1") << 75.0;
        QTest::newRow("silent only") << int(CustomRhythmAlgorithm::Calculate_Max) << QStringLiteral("2") << 0.0;
        QTest::newRow("out of range") << int(CustomRhythmAlgorithm::Calculate_Max) << QStringLiteral("9") << 0.0;
    }

    void modesLeaveSilentChannelsOut()
    {
        QFETCH(int, mode);
        QFETCH(QString, channels);
        QFETCH(double, expected);
        CustomRhythmAlgorithm algorithm(QStringLiteral("share"), QStringLiteral("#0F0"), 1, 2, channels,
                                        CustomRhythmAlgorithm::CalculationMode(mode));
        QList<QList<float>> spectra = threeChannels();
        QCOMPARE(algorithm.processSpectrumData(spectra, 1.0f), expected);
        QCOMPARE(algorithm.lastResult(), expected);
    }

    void channelSpecificationResolves_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("empty") << QString() << QList<int>();
        QTest::newRow("names in any case") << QStringLiteral("o1, FP2") << QList<int>{2, 1};
        QTest::newRow("indexes") << QStringLiteral("3,0") << QList<int>{3, 0};
        QTest::newRow("mixed, repeated") << QStringLiteral(" O2 ,1,, o2,3") << QList<int>{3, 1};
    }

    void channelSpecificationResolves()
    {
        QFETCH(QString, channels);
        QFETCH(QList<int>, expected);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        CustomRhythmAlgorithm algorithm(QStringLiteral("a"), QStringLiteral("#F00"), 8, 12, channels);
        algorithm.updateChannelInfo(headset());
        QCOMPARE(algorithm.getSelectedChannels(), expected);
        QCOMPARE(console.count(), 0);
    }

    void unknownChannelsReportedOnce()
    {
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        CustomSpecialRhythmAlgorithm ratio(QStringLiteral("tbr"), 4, 8, 14, 35, QStringLiteral("O1, Cz, 7, cz"));
        QCOMPARE(console.count(), 0); // no channel names yet: nothing to judge by
        ratio.updateChannelInfo(headset());
        ratio.updateChannelInfo(headset());
        QCOMPARE(ratio.getSelectedChannels(), QList<int>{2});
        QCOMPARE(console.count(), 1);
        const QString line = console.at(0).at(0).toString();
        QVERIFY2(line.contains(QStringLiteral("tbr")) && line.contains(QStringLiteral("Cz, 7")), qPrintable(line));

        ratio.updateChannelInfo(headset() << QStringLiteral("CZ")); // a new list is judged again
        QCOMPARE(ratio.getSelectedChannels(), (QList<int>{2, 4}));
        QCOMPARE(console.count(), 2);
        ratio.setChannelSpecification(QStringLiteral("o2"));
        QCOMPARE(ratio.getSelectedChannels(), QList<int>{3});
        QCOMPARE(console.count(), 2);
    }

    void entryPointsFollowTheDataType()
    {
        QList<QList<float>> blocks{{7.5f, 1.0f}};
        QList<StandartRhythmSample> rhythms(1);
        const QMap<QString, double> results{{QStringLiteral("x"), 3.0}};

        FirstSampleAlgorithm data;
        QCOMPARE(data.processData(blocks), 7.5);
        QCOMPARE(data.processSpectrumData(blocks, 1.0f), 0.0);
        QCOMPARE(data.processRhythms(rhythms), 0.0);
        QCOMPARE(data.processResults(results), 0.0);
        QCOMPARE(data.lastResult(), 7.5); // a refused call leaves the last result alone

        CustomRhythmAlgorithm rhythm(QStringLiteral("r"), QStringLiteral("#F00"), 0, 0);
        QCOMPARE(rhythm.processSpectrumData(blocks, 1.0f), 7.5 * 100 / 8.5);
        QCOMPARE(rhythm.processData(blocks), 0.0);
        QCOMPARE(rhythm.processRhythms(rhythms), 0.0);
        QCOMPARE(rhythm.processResults(results), 0.0);

        CustomMathAlgorithm math(QStringLiteral("m"), QStringLiteral("x * 2"));
        QCOMPARE(math.processSpectrumData(blocks, 1.0f), 0.0);
        QCOMPARE(math.processData(blocks), 0.0);
        QCOMPARE(math.processResults(results), 6.0);
    }

    void specialRatioOfBandPowers()
    {
        // 1 Hz bins; theta 4-8 Hz holds 5 bins, beta 14-35 Hz holds 22.
        QList<float> first = constant(40, 0);
        QList<float> second = constant(40, 0);
        for (int bin = 4; bin <= 8; ++bin) {
            first[bin] = 2; // power 5 x 4
            second[bin] = 1; // power 5 x 1
        }
        for (int bin = 14; bin <= 35; ++bin)
            first[bin] = 1; // power 22 x 1
        QList<QList<float>> spectra{first, second};

        CustomSpecialRhythmAlgorithm both(QStringLiteral("tbr"), 4, 8, 14, 35);
        QCOMPARE(both.processSpectrumData(spectra, 1.0f), 25.0 / 22.0);
        CustomSpecialRhythmAlgorithm silentBeta(QStringLiteral("tbr"), 4, 8, 14, 35, QStringLiteral("1"));
        QCOMPARE(silentBeta.processSpectrumData(spectra, 1.0f), 0.0);
        QCOMPARE(both.toJson(), QJsonObject({{QStringLiteral("name"), QStringLiteral("tbr")},
                                             {QStringLiteral("value"), 25.0 / 22.0}}));
    }

    void mathOverResults()
    {
        CustomMathAlgorithm focus(QStringLiteral("focus"), QStringLiteral("(alpha_o1 + ALPHA_O2) / 2 - concentration"));
        QVERIFY(focus.isValid());
        const QMap<QString, double> results{{QStringLiteral("alpha_o1"), 40}, {QStringLiteral("Alpha_O2"), 60},
                                            {QStringLiteral("concentration"), 30}, {QStringLiteral("meditation"), 70}};
        QCOMPARE(focus.processResults(results), 20.0);
        QCOMPARE(focus.toJson().value(QStringLiteral("value")).toDouble(), 20.0);

        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        CustomMathAlgorithm broken(QStringLiteral("broken"), QStringLiteral("meditation +"));
        QVERIFY(!broken.isValid());
        QCOMPARE(console.count(), 1);
        QVERIFY(console.at(0).at(0).toString().contains(QStringLiteral("broken")));
        QCOMPARE(broken.processResults(results), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestCustomBCI)
#include "tst_custombci.moc"
