#include "core/CortexCore.h"
#include "dsp/CustomMathAlgorithm.h"
#include "dsp/CustomRhythmAlgorithm.h"
#include "support/FakeDevices.h"

#include <QtTest>

#include <cmath>
#include <functional>

namespace {
constexpr float Rate = 125.0f; // the 8-channel headset mode
const QList<int> AllChannels { 0, 1, 2, 3, 4, 5, 6, 7 };

// A block algorithm that only tells when it runs.
class ProbeAlgorithm : public CustomBCIAlgorithm
{
public:
    explicit ProbeAlgorithm(std::function<void()> onBlock)
        : CustomBCIAlgorithm(QStringLiteral("probe"))
        , m_onBlock(std::move(onBlock))
    {
    }
    DataType getDataType() const override { return DataType_Data; }

protected:
    double internalProcessData(QList<QList<float>>&) override
    {
        m_onBlock();
        return 0;
    }

private:
    std::function<void()> m_onBlock;
};

using EngineChange = std::function<void(CortexCore*)>;
}
Q_DECLARE_METATYPE(EngineChange)

// Spectra, rhythms, indices and custom algorithms as the engine runs them on streamed blocks.
class TestMetering : public QObject
{
    Q_OBJECT

    CortexCore* m_engine = nullptr;
    qint64 m_sample = 0;

    // Streams `seconds` of a sine on every channel (channel 1 at twice the frequency) in
    // blocks of 10 samples; returns the results of the passes that produced a spectrum.
    QList<CortexDataResult> stream(double seconds, double frequency, double amplitude = 20)
    {
        QList<CortexDataResult> withSpectrum;
        for (int b = 0; b < int(seconds * Rate / 10); ++b) {
            QList<QList<float>> block(8);
            for (int c = 0; c < 8; ++c) {
                const double f = c == 1 ? 2 * frequency : frequency;
                for (int k = 0; k < 10; ++k)
                    block[c].append(float(amplitude * std::sin(2 * M_PI * f * double(m_sample + k) / Rate)));
            }
            m_sample += 10;
            const CortexDataResult result = m_engine->addDataChannelWise(block);
            if (result.hasSpectrum)
                withSpectrum.append(result);
        }
        return withSpectrum;
    }

private Q_SLOTS:
    void init()
    {
        m_engine = engineFindingHeadset(this);
        QCOMPARE(m_engine->getDeviceCount(), 1);
        QVERIFY(m_engine->startDevice(m_engine->getFoundDevices().first(), {}, -1));
        m_engine->setFilters(0, 0, 0, 0);
        m_sample = 0;
    }

    // An index over the given channels, with the normalizer's default arguments.
    void startIndex(int index, const QList<int>& channels)
    {
        m_engine->startMetaIndexMetering(index, channels, 0, 100, 0, 100, 0, 100, 1000, 1000, 10, 16, true);
    }

    void cleanup()
    {
        delete m_engine;
    }

    void spectraAndRhythmsPerStep()
    {
        QVERIFY(m_engine->startSpectrumCalculation(4, 0.1f, 10));
        QCOMPARE(m_engine->getSpectrumFrequencyStep(), 0.244140625f);
        QCOMPARE(m_engine->getCurrentSpectrumFrequencies().size(), 257);
        m_engine->enableDataGrabMode(true);

        // The first spectrum needs a full window (500 samples); then one per 13-sample step
        // (12.5 rounded up): 1 + 250 / 13 spectra in 750 samples.
        const QList<CortexDataResult> results = stream(6, 10);
        QCOMPARE(results.size(), 20);
        QCOMPARE(results.first().spectrum.size(), 8);
        QCOMPARE(results.first().spectrum.first().size(), 257);

        const QList<StandartRhythmSample> rhythms = m_engine->getLastStandartRhythms();
        QCOMPARE(rhythms.size(), 8);
        // Amplitude shares: the taper's leakage spreads a sine over many bins.
        QVERIFY2(rhythms[0].alpha > 50, qPrintable(QString::number(rhythms[0].alpha)));
        QVERIFY(rhythms[0].alpha > 4 * std::max({ rhythms[0].beta, rhythms[0].theta, rhythms[0].delta }));
        QVERIFY(rhythms[1].beta > 50); // 20 Hz on channel 1
        const float sum = rhythms[0].alpha + rhythms[0].beta + rhythms[0].theta + rhythms[0].delta + rhythms[0].gamma;
        QVERIFY(sum <= 100.001f);

        const QList<QList<StandartRhythmSample>> grabbed = m_engine->grabLastStandartRhythms();
        QCOMPARE(grabbed.size(), 8);
        QCOMPARE(grabbed.first().size(), results.size());
        QVERIFY(m_engine->grabLastStandartRhythms().first().isEmpty());
        QCOMPARE(m_engine->grabSpectrumData().size(), results.size());
        QVERIFY(m_engine->grabSpectrumData().isEmpty());
        QCOMPARE(m_engine->getSpectrumData().size(), results.size());
        QCOMPARE(m_engine->getLastSpectrum(), results.last().spectrum);
    }

    void indicesFollowTheirBands()
    {
        m_engine->startSpectrumCalculation(4, 0.1f, 10);
        startIndex(CortexCore::Meditation, AllChannels);
        startIndex(CortexCore::Concentration, AllChannels);
        stream(6, 10); // alpha everywhere but channel 1
        RhythmNormSample meditation = m_engine->getLastMetaIndexResult(CortexCore::Meditation);
        RhythmNormSample concentration = m_engine->getLastMetaIndexResult(CortexCore::Concentration);
        // Raw values: the share of the 8-14 Hz and 14-35 Hz bands, in percent, averaged over
        // the channels: the same bands as the alpha and beta rhythms.
        float alpha = 0;
        float beta = 0;
        for (const StandartRhythmSample& channel : m_engine->getLastStandartRhythms()) {
            alpha += channel.alpha / 8;
            beta += channel.beta / 8;
        }
        QVERIFY2(std::abs(meditation.value - alpha) < 1e-3f, qPrintable(QString::number(meditation.value)));
        QVERIFY2(std::abs(concentration.value - beta) < 1e-3f, qPrintable(QString::number(concentration.value)));
        QVERIFY(meditation.level >= 0 && meditation.level <= 100);
        QCOMPARE(m_engine->getCurrentMetaIndexLevel(CortexCore::Meditation), meditation.level);
        QCOMPARE(m_engine->getCurrentMetaIndexLevel(7), 0.0f);

        m_engine->stopMetaIndexMetering(CortexCore::Meditation); // keeps running
        const int before = int(m_engine->grabMetaIndexData(CortexCore::Meditation).size());
        QVERIFY(before > 10);
        stream(1, 10);
        QVERIFY(!m_engine->grabMetaIndexData(CortexCore::Meditation).isEmpty());

        // None of the index's channels in the montage: no value at all.
        m_engine->startMetaIndexMetering(CortexCore::Concentration, QStringLiteral("bogus, Cz"), 0, 100, 0, 100, 0,
                                         100, 1000, 1000, 10, 16, true);
        stream(1, 10);
        QCOMPARE(m_engine->getLastMetaIndexResult(CortexCore::Concentration).level, -1.0f);
        QVERIFY(m_engine->grabMetaIndexData(CortexCore::Concentration).isEmpty());
    }

    void filterChangesKeepTheSpectrum_data()
    {
        QTest::addColumn<EngineChange>("change");
        QTest::newRow("setHPF") << EngineChange([](CortexCore* e) { e->setHPF(1, true); });
        QTest::newRow("setLPF") << EngineChange([](CortexCore* e) { e->setLPF(30, true); });
        QTest::newRow("setBSF") << EngineChange([](CortexCore* e) { e->setBSF(50, true); });
        QTest::newRow("setFilters") << EngineChange([](CortexCore* e) { e->setFilters(1, 30, 50, 60); });
        QTest::newRow("setFilter") << EngineChange([](CortexCore* e) { e->setFilter(CortexCore::LPF, 0, 20, true); });
        QTest::newRow("setChannelScale") << EngineChange([](CortexCore* e) { e->setChannelScale(0, 2, true); });
        QTest::newRow("setChannelOffset") << EngineChange([](CortexCore* e) { e->setChannelOffset(0, 5, true); });
    }

    void filterChangesKeepTheSpectrum()
    {
        QFETCH(EngineChange, change);
        m_engine->startSpectrumCalculation(4, 0.1f, 10);
        startIndex(CortexCore::Meditation, AllChannels);
        stream(5, 10);
        const QList<QList<float>> spectrum = m_engine->getLastSpectrum();
        const qsizetype spectra = m_engine->getSpectrumData().size();
        const qint64 indexTime = m_engine->getLastMetaIndexResult(CortexCore::Meditation).timestamp;
        QVERIFY(spectra > 0);

        change(m_engine);
        QCOMPARE(m_engine->getLastSpectrum(), spectrum);
        QCOMPARE(m_engine->getSpectrumData().size(), spectra);
        QCOMPARE(m_engine->getLastStandartRhythms().size(), 8);
        QCOMPARE(m_engine->getLastMetaIndexResult(CortexCore::Meditation).timestamp, indexTime);
        // The analyzers go on: the next step brings a spectrum and an index value, not a whole
        // window later.
        const QList<CortexDataResult> next = stream(0.4, 10);
        QVERIFY(!next.isEmpty());
        QVERIFY(next.first().hasIndexValues);
    }

    // Block algorithms see each block before its spectrum; the quality comes after both.
    void dataPathOrder()
    {
        m_engine->startSpectrumCalculation(4, 0.1f, 10);
        QStringList events;
        auto spectra = [this] { return QString::number(m_engine->getSpectrumData().size()); };
        m_engine->addCustomBCIAlgorithm(new ProbeAlgorithm([&] { events << QStringLiteral("algorithm ") + spectra(); }));
        QObject context;
        connect(m_engine, &CortexCore::newDataByChannel, &context, [&] { events << QStringLiteral("data"); });
        connect(m_engine, &CortexCore::newSignalQuality, &context,
                [&] { events << QStringLiteral("quality ") + spectra(); });
        stream(4, 10); // 500 samples: the last block completes the first spectrum
        QCOMPARE(events.mid(events.size() - 3), QStringList({ "data", "algorithm 0", "quality 1" }));
    }

    void meteringArgumentsReachTheNormalizer()
    {
        m_engine->startSpectrumCalculation(4, 0.1f, 10);
        // Low clamped to 0..0 and top to 200..200, no smoothing: the level is half the raw
        // value, truncated. Each argument has to reach its own place for that to hold.
        m_engine->startMetaIndexMetering(CortexCore::Meditation, QStringLiteral("E1"), 0, 200, 0, 0, 200, 200,
                                         1000, 1000, 1000, 1, true);
        stream(5, 10);
        const RhythmNormSample sample = m_engine->getLastMetaIndexResult(CortexCore::Meditation);
        QCOMPARE(sample.low, 0.0f);
        QCOMPARE(sample.top, 200.0f);
        QCOMPARE(sample.value, m_engine->getLastStandartRhythms().first().alpha); // channel E1 alone
        QCOMPARE(sample.level, float(int(sample.value / 2)));
    }

    void rangesAreClamped()
    {
        m_engine->setMeditationRange(0.1f, 0.2f);
        QCOMPARE(m_engine->getMeditationMinimum(), 0.5);
        QCOMPARE(m_engine->getMeditationMaximum(), 0.5);
        m_engine->setMeditationRange(10, 5);
        QCOMPARE(m_engine->getMeditationMinimum(), 10.0);
        QCOMPARE(m_engine->getMeditationMaximum(), 10.0);
        QCOMPARE(m_engine->getConcentrationMinimum(), 14.0);
        QCOMPARE(m_engine->getConcentrationMaximum(), 35.0);
    }

    void customAlgorithmsRunInListOrder()
    {
        m_engine->startSpectrumCalculation(4, 0.1f, 10);
        m_engine->addCustomBCIAlgorithm(new CustomRhythmAlgorithm(QStringLiteral("beta_e2"), QStringLiteral("#0F0"),
                                                                  14, 35, QStringLiteral("o2"),
                                                                  CustomRhythmAlgorithm::Calculate_Average));
        // The algorithm finds its channel under the name it gets after it was added.
        m_engine->setMontageChannelNames({ QStringLiteral("E1"), QStringLiteral("O2") });
        m_engine->addCustomBCIAlgorithm(new CustomMathAlgorithm(QStringLiteral("half"), QStringLiteral("beta_e2 / 2")));
        m_engine->addCustomBCIAlgorithm(nullptr);
        QCOMPARE(m_engine->getCustomAlgoritms().size(), 2);

        const CortexDataResult last = stream(5, 10).last();
        QVERIFY(last.hasAlgorithmResults);
        QCOMPARE(last.algorithmResults.size(), 2);
        QCOMPARE(last.algorithmResults[0].value("name").toString(), QStringLiteral("beta_e2"));
        const double beta = last.algorithmResults[0].value("value").toDouble();
        QVERIFY2(beta > 80, qPrintable(QString::number(beta))); // E2 carries 20 Hz
        QCOMPARE(last.algorithmResults[1].value("value").toDouble(), beta / 2);

        QVERIFY(m_engine->removeCustomBCIAlgorithm(QStringLiteral("beta_e2")));
        QVERIFY(!m_engine->removeCustomBCIAlgorithm(QStringLiteral("beta_e2")));
        m_engine->clearCustomBCIAlgorithms();
        QVERIFY(m_engine->getCustomAlgoritms().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestMetering)
#include "tst_metering.moc"
