#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "support/FakeDevices.h"

#include <QtTest>

#include <cmath>

namespace {
constexpr float Rate = 125.0f; // the 8-channel headset mode
const double TwoPi = 2.0 * M_PI;

QList<QList<float>> sineBlock(int channels, int samples, qint64 start, double frequency, double amplitude,
                              double dc = 0)
{
    QList<QList<float>> block(channels);
    for (int c = 0; c < channels; ++c) {
        for (int k = 0; k < samples; ++k)
            block[c].append(float(dc + amplitude * std::sin(TwoPi * frequency * double(start + k) / Rate)));
    }
    return block;
}

// Two samples per input that tell the inputs apart: input c holds { c, 10 c }.
QList<QList<float>> rampBlock()
{
    QList<QList<float>> block(8);
    for (int c = 0; c < 8; ++c)
        block[c] = { float(c), float(10 * c) };
    return block;
}
}

class TestDataPath : public QObject
{
    Q_OBJECT

    CortexCore* m_engine = nullptr;
    qint64 m_sample = 0;

    void startHeadset(const QList<MontageChannel>& montage = {})
    {
        m_engine->stopDevice();
        m_sample = 0;
        QVERIFY(m_engine->startDevice(m_engine->getFoundDevices().first(), montage, -1));
    }

    void startUnfiltered(const QList<MontageChannel>& montage = {})
    {
        m_engine->setFilters(0, 0, 0, 0);
        startHeadset(montage);
    }

    // Streams `seconds` of the same sine on every input, in blocks of 10 samples.
    void stream(double seconds, double frequency, double amplitude, double dc = 0)
    {
        for (int b = 0; b < int(seconds * Rate / 10); ++b, m_sample += 10)
            m_engine->addDataChannelWise(sineBlock(8, 10, m_sample, frequency, amplitude, dc));
    }

    // Peak of the filtered output of each channel over the last second of `seconds` of input.
    QList<float> steadyPeaks(double seconds, double frequency, double amplitude, double dc = 0)
    {
        m_engine->setStorageTimeSeconds(1);
        stream(seconds, frequency, amplitude, dc);
        QList<float> peaks;
        for (const QList<float>& channel : m_engine->getFilteredData())
            peaks.append(std::abs(*std::max_element(channel.begin(), channel.end(),
                                                    [](float a, float b) { return std::abs(a) < std::abs(b); })));
        return peaks;
    }

private Q_SLOTS:
    void init()
    {
        m_engine = engineFindingHeadset(this);
        QCOMPARE(m_engine->getDeviceCount(), 1);
        CortexCore::Use_FIR = true;
        startHeadset(); // with the default filters
    }

    void cleanup()
    {
        delete m_engine;
        CortexCore::Use_FIR = true; // process-wide: leave the default for whatever runs next
    }

    void historiesAreBoundedByStorageTime()
    {
        QList<float> target { 1, 2, 3 };
        QList<float> source { 4, 5, 6, 7 };
        CortexCore::appendAndCropDataVector(target, source, 5);
        QCOMPARE(target, QList<float>({ 3, 4, 5, 6, 7 }));
        CortexCore::appendAndCropDataVector(target, source, 2);
        QCOMPARE(target, QList<float>({ 6, 7 }));

        m_engine->setStorageTimeSeconds(10);
        stream(16, 10, 20);
        // Device inputs, montage channels and filtered channels: 8 each.
        for (const QList<QList<float>>& history :
             { m_engine->getRawDeviceData(), m_engine->getRawData(), m_engine->getFilteredData() })
            QCOMPARE(history.value(7).size(), 1250);
        // The kept samples are the newest ones, in order; a shorter storage time crops at once.
        QCOMPARE(m_engine->getRawDeviceData().first(), sineBlock(1, 1250, m_sample - 1250, 10, 20).first());
        m_engine->setStorageTimeSeconds(2);
        QCOMPARE(m_engine->getRawData().first(), sineBlock(1, 250, m_sample - 250, 10, 20).first());
    }

    void grabBuffers()
    {
        stream(1, 10, 20);
        QCOMPARE(m_engine->grabFilteredData().first().size(), 0); // grab mode off
        m_engine->enableDataGrabMode(true);
        stream(0.8, 10, 20);
        const QList<QList<float>> grabbed = m_engine->grabFilteredData();
        QCOMPARE(grabbed.size(), 8);
        const QList<float> kept = m_engine->getFilteredData().first();
        QCOMPARE(grabbed.first(), kept.mid(kept.size() - 100));
        QCOMPARE(m_engine->grabOriginalData().first().size(), 100);
        // A grab right after a grab: one empty list per channel.
        QCOMPARE(m_engine->grabFilteredData(), QList<QList<float>>(8));
        QCOMPARE(m_engine->grabOriginalData(), QList<QList<float>>(8));
    }

    void engineChainShapesTheSpectrum()
    {
        for (bool fir : { true, false }) {
            CortexCore::Use_FIR = fir;
            m_engine->setFilters(2, 40, 50, 0);
            startHeadset();
            // The Butterworth cascade family's own design arithmetic leaves a few per cent of
            // passband ripple; the recursive-section family is flat.
            const float passband = steadyPeaks(4, 10, 100).first();
            QVERIFY2(std::abs(passband - 100) < (fir ? 1 : 8), qPrintable(QString::number(passband)));
            startHeadset();
            QVERIFY(steadyPeaks(4, 50, 100).first() < 5);  // notch and low-pass
            startHeadset();
            QVERIFY(steadyPeaks(4, 60, 100).first() < 35); // low-pass alone
            startHeadset();
            QVERIFY(steadyPeaks(8, 0, 0, 500).first() < 1); // DC removed by the high-pass
        }
    }

    void channelOverridesAndMontageCutoffs()
    {
        startUnfiltered();
        m_engine->setFilter(CortexCore::LPF, 0, 5, true);
        m_engine->setFilter(CortexCore::LPF, 99, 5, true); // no such channel: ignored
        const QList<float> peaks = steadyPeaks(4, 20, 100);
        QVERIFY(peaks[0] < 10);
        QVERIFY(peaks[1] > 99); // sampled sine: the samples miss the very top

        // A montage channel's own cut-off replaces the engine's; zero leaves the engine's.
        m_engine->setFilters(0, 40, 0, 0);
        QList<MontageChannel> montage;
        montage << MontageChannel(QStringLiteral("A"), 0, -1, 5, 0, 0, 1, 1, 0)
                << MontageChannel(QStringLiteral("B"), 1, -1, 0, 0, 0, 1, 1, 0);
        startHeadset(montage);
        QCOMPARE(m_engine->getFilter(CortexCore::LPF, 1), 40.0f);
        const QList<float> montagePeaks = steadyPeaks(4, 20, 100);
        QCOMPARE(montagePeaks.size(), 2);
        QVERIFY(montagePeaks[0] < 10);
        QVERIFY(montagePeaks[1] > 95);
    }

    void montageReferencesScaleAndOffset()
    {
        QList<MontageChannel> montage;
        montage << MontageChannel(QStringLiteral("E1-E2"), 0, 1, 0, 0, 0, 1, 1, 0)
                << MontageChannel(QStringLiteral("E3x2"), 2, -1, 0, 0, 0, 2, 1, 100);
        startUnfiltered(montage);
        const QList<QList<float>> block = rampBlock();
        const CortexDataResult result = m_engine->addDataChannelWise(block);
        QCOMPARE(result.filteredBlock, QList<QList<float>>({ { -1, -10 }, { 104, 140 } }));
        QCOMPARE(m_engine->getRawData(), QList<QList<float>>({ { -1, -10 }, { 4, 40 } }));
        QCOMPARE(m_engine->getRawDeviceData().size(), 8);

        m_engine->setChannelScale(1, 3, true);
        QCOMPARE(m_engine->addDataChannelWise(block).filteredBlock[1], QList<float>({ 106, 160 }));
        QSignalSpy visual(m_engine, &CortexCore::channelVisualScaleChanged);
        m_engine->setChannelVisualScale(0, 0.5, true);
        m_engine->setChannelVisualScale(5, 0.5, true); // beyond the montage: ignored
        QCOMPARE(visual.count(), 1);
        QCOMPARE(visual.first(), QVariantList({ 0, 0.5 }));
        QCOMPARE(m_engine->getChannelOffset(7), 0.0);
    }

    void unfilteredBlockAndItsSignals()
    {
        startUnfiltered();
        QSignalSpy byChannel(m_engine, &CortexCore::newDataByChannel);
        QSignalSpy quality(m_engine, &CortexCore::newSignalQuality);
        QSignalSpy results(m_engine, &CortexCore::newCortexDataResult);
        QSignalSpy sampleWise(m_engine, &CortexCore::newData);
        const QList<QList<float>> block = rampBlock();
        QCOMPARE(m_engine->addDataChannelWise(block).filteredBlock, block); // filters off: unchanged
        QCOMPARE(m_engine->getRawData(), block);
        QCOMPARE(QList<qsizetype>({ byChannel.count(), quality.count(), results.count(), sampleWise.count() }),
                 QList<qsizetype>({ 1, 1, 1, 1 }));
        QCOMPARE(quality.first().first().value<QList<int>>().size(), 8);
        const QList<float> interleaved = sampleWise.first().first().value<QList<float>>();
        QCOMPARE(interleaved.mid(0, 3), QList<float>({ 0, 1, 2 }));
        QCOMPARE(interleaved.mid(8, 3), QList<float>({ 0, 10, 20 }));

        // The sample-wise entry regroups into the same blocks.
        m_engine->addData(interleaved);
        QCOMPARE(byChannel.last().first().value<QList<QList<float>>>(), block);

        // A block with another channel count than the device's, fewer or more: the montage step
        // is skipped.
        for (int channels : { 4, 9 }) {
            const QList<QList<float>> odd = sineBlock(channels, 10, 0, 10, 20);
            QCOMPARE(m_engine->addDataChannelWise(odd).filteredBlock, odd);
            QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("Montage 8 vs %1").arg(channels)));
        }
    }

    void blocksOfAStoppedDeviceAreDropped()
    {
        QSignalSpy byChannel(m_engine, &CortexCore::newDataByChannel);
        // Queued towards the engine, which has stopped the device by the time it arrives.
        static_cast<TestHeadset*>(m_engine->currentDevice())->emitSample(sineBlock(8, 10, 0, 10, 20));
        m_engine->stopDevice();
        QTest::qWait(20);
        QCOMPARE(byChannel.count(), 0);
    }

    void filterSettersClampAndRebuild()
    {
        stream(1, 10, 20);
        QSignalSpy recreated(m_engine, &CortexCore::dataRecreated);
        m_engine->setHPF(-3, false);
        QCOMPARE(m_engine->getHPF(), 0.0f);
        m_engine->setLPFOrder(0, false);
        QCOMPARE(m_engine->getLPFOrder(), 1);
        m_engine->setHPFOrder(12, false);
        QCOMPARE(m_engine->getHPFOrder(), 8);
        QCOMPARE(recreated.count(), 0); // stored only
        m_engine->setLPF(30, true);
        QCOMPARE(recreated.count(), 1);
        stream(1, 10, 20);
        QCOMPARE(m_engine->getFilteredData().first().size(), 120); // history restarted
    }

    void qualityFollowsTheSignal()
    {
        m_engine->setStorageTimeSeconds(1);
        stream(3, 10, 30);
        for (int value : m_engine->getSignalQuality())
            QVERIFY2(value > 90, qPrintable(QString::number(value)));
        stream(3, 0, 0); // flat
        for (int value : m_engine->getSignalQuality())
            QVERIFY2(value < 20, qPrintable(QString::number(value)));
    }

    void channelNames()
    {
        m_engine->setMontageChannelNames({ QStringLiteral("O1"), QStringLiteral("T3") });
        QCOMPARE(m_engine->getMontageChannelIndex(QStringLiteral("t3")), 1);
        QCOMPARE(m_engine->channelIndexesFromNameString(QStringLiteral("O1, t3, bogus, E8")),
                 QList<int>({ 0, 1, 7 }));
        QCOMPARE(m_engine->montageChannel(42).name, QString());
    }
};

QTEST_GUILESS_MAIN(TestDataPath)
#include "tst_datapath.moc"
