#include "dsp/CustomMathAlgorithm.h"
#include "dsp/CustomRhythmAlgorithm.h"
#include "dsp/CustomSpecialRhythmAlgorithm.h"
#include "services/GlobalConsole.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

// Consumes sample blocks and answers with the block's first sample.
struct FirstSampleAlgorithm : CustomBCIAlgorithm
{
    FirstSampleAlgorithm() : CustomBCIAlgorithm("first") {}
    DataType getDataType() const override { return DataType_Data; }
    double internalProcessData(QList<QList<float>>& blocks) override { return blocks.at(0).at(0); }
};

const QList<QString> headset{"Fp1", "Fp2", "O1", "O2"};

} // namespace

class TestCustomBCI : public QObject
{
    Q_OBJECT
    using Rhythm = CustomRhythmAlgorithm;

private Q_SLOTS:
    void init() { GlobalConsole::FullOptimization = false; }

    void bandIncludesBothEndBins()
    {
        Rhythm alpha("alpha", "#F00", 8, 12);
        QList<QList<float>> spectra{QList<float>(41, 1)}; // 0 ... 20 Hz in 0.5 Hz steps
        QCOMPARE(alpha.processSpectrumData(spectra, 0.5f), 9 * 100.0 / 41);
        // 0.1 Hz is inexact: the frequency summed up bin by bin passes 12 Hz at bin 120, so the
        // band holds bins 80-119 exactly as a client summing the same steps finds.
        QList<QList<float>> fine{QList<float>(201, 1)};
        QCOMPARE(alpha.processSpectrumData(fine, 0.1f), 40 * 100.0 / 201);
    }

    void modesLeaveSilentChannelsOut_data()
    {
        QTest::addColumn<Rhythm::CalculationMode>("mode");
        QTest::addColumn<QString>("channels");
        QTest::addColumn<double>("expected");
        QTest::newRow("max") << Rhythm::Calculate_Max << QString() << 75.0;
        QTest::newRow("min") << Rhythm::Calculate_Min << QString() << 50.0;
        QTest::newRow("mean") << Rhythm::Calculate_Average << QString() << 62.5;
        QTest::newRow("one channel") << Rhythm::Calculate_Average << "1" << 75.0;
        QTest::newRow("silent only") << Rhythm::Calculate_Max << "2" << 0.0;
        QTest::newRow("out of range") << Rhythm::Calculate_Max << "9" << 0.0;
    }

    // Values by hand, step 1 Hz, band 1-2 Hz: 2 of 4 -> 50 %, 3 of 4 -> 75 %, the silent
    // channel has no share at all.
    void modesLeaveSilentChannelsOut()
    {
        QFETCH(Rhythm::CalculationMode, mode);
        QFETCH(QString, channels);
        Rhythm algorithm("share", "#0F0", 1, 2, channels, mode);
        QList<QList<float>> spectra{{1, 1, 1, 1, 0}, {0, 3, 0, 0, 1}, {0, 0, 0, 0, 0}};
        QTEST(algorithm.processSpectrumData(spectra, 1.0f), "expected");
    }

    void channelSpecificationResolves_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("empty") << QString() << QList<int>();
        QTest::newRow("names in any case") << "o1, FP2" << QList<int>{2, 1};
        QTest::newRow("indexes") << "3,0" << QList<int>{3, 0};
        QTest::newRow("mixed, repeated") << " O2 ,1,, o2,3" << QList<int>{3, 1};
    }

    void channelSpecificationResolves()
    {
        QFETCH(QString, channels);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        Rhythm algorithm("a", "#F00", 8, 12, channels);
        algorithm.updateChannelInfo(headset);
        QTEST(algorithm.getSelectedChannels(), "expected");
        QCOMPARE(console.count(), 0);
    }

    // One line per change of the channel list or of the text, none before the names arrive.
    void unknownChannelsReportedOnce()
    {
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        CustomSpecialRhythmAlgorithm ratio("tbr", 4, 8, 14, 35, "O1, Cz, 7, cz");
        ratio.updateChannelInfo(headset);
        ratio.updateChannelInfo(headset);
        QCOMPARE(ratio.getSelectedChannels(), QList<int>{2});
        QCOMPARE(console.count(), 1);
        const QString line = console.at(0).at(0).toString();
        QVERIFY2(line.contains("tbr") && line.contains("Cz, 7"), qPrintable(line));
        ratio.updateChannelInfo(headset + QList<QString>{"CZ"});
        QCOMPARE(ratio.getSelectedChannels(), (QList<int>{2, 4}));
        QCOMPARE(console.count(), 2);
        ratio.setChannelSpecification("o2");
        QCOMPARE(ratio.getSelectedChannels(), QList<int>{3});
        QCOMPARE(console.count(), 2);
    }

    // Only the entry point of the algorithm's own data type reaches it and sets lastResult().
    void entryPointsFollowTheDataType()
    {
        QList<QList<float>> blocks{{7.5f, 1.0f}};
        QList<StandartRhythmSample> rhythms(1);
        const auto offerAll = [&](CustomBCIAlgorithm& a) {
            return QList<double>{a.processData(blocks), a.processSpectrumData(blocks, 1.0f), a.processRhythms(rhythms),
                                 a.processResults({{"x", 3.0}}), a.lastResult()};
        };
        FirstSampleAlgorithm data;
        QCOMPARE(offerAll(data), (QList<double>{7.5, 0, 0, 0, 7.5}));
        Rhythm rhythm("r", "#F00", 0, 0);
        QCOMPARE(offerAll(rhythm), (QList<double>{0, 7.5 * 100 / 8.5, 0, 0, 7.5 * 100 / 8.5}));
        CustomMathAlgorithm math("m", "x * 2");
        QCOMPARE(offerAll(math), (QList<double>{0, 0, 0, 6, 6}));
        blocks[0][0] = qInf(); // results are published as JSON, which has no infinity
        QCOMPARE(data.processData(blocks), 0.0);
    }

    void specialRatioOfBandPowers()
    {
        // 1 Hz bins; theta 4-8 Hz holds 5 bins, beta 14-35 Hz holds 22.
        QList<QList<float>> spectra(2, QList<float>(40, 0));
        for (int bin = 4; bin <= 8; ++bin) {
            spectra[0][bin] = 2; // power 5 x 4
            spectra[1][bin] = 1; // power 5 x 1
        }
        for (int bin = 14; bin <= 35; ++bin)
            spectra[0][bin] = 1; // power 22 x 1
        CustomSpecialRhythmAlgorithm both("tbr", 4, 8, 14, 35);
        QCOMPARE(both.processSpectrumData(spectra, 1.0f), 25.0 / 22.0);
        CustomSpecialRhythmAlgorithm silentBeta("tbr", 4, 8, 14, 35, "1");
        QCOMPARE(silentBeta.processSpectrumData(spectra, 1.0f), 0.0);
    }

    void mathOverResults()
    {
        CustomMathAlgorithm focus("focus", "(alpha_o1 + ALPHA_O2) / 2 - concentration");
        QCOMPARE(focus.processResults({{"alpha_o1", 40}, {"Alpha_O2", 60}, {"concentration", 30}}), 20.0);
        QCOMPARE(focus.toJson(), QJsonObject({{"name", "focus"}, {"value", 20.0}}));

        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        CustomMathAlgorithm broken("broken", "meditation +");
        QVERIFY(!broken.isValid());
        QCOMPARE(console.count(), 1);
        QVERIFY(console.at(0).at(0).toString().contains("broken"));
        QCOMPARE(broken.processResults({{"meditation", 70}}), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestCustomBCI)
#include "tst_custombci.moc"
