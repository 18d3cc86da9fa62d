#include "devices/GeneratorVirtualDevice.h"
#include "settings/VirtualDevicesSettings.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <memory>
#include <random>
#include <utility>

using Block = QList<QList<float>>;
using Gen = GeneratorVirtualDevice;

struct Wave
{
    int type;
    float base, increment, second;
    int channels;
    QList<int> periods = {}; // saw and meander: each channel's expected period
    float rate = 125, amplitude = 120;
};
Q_DECLARE_METATYPE(Wave)

// Ticks are driven by hand with a fake clock, so every block size and value is exact.
// The generators share process-wide state: m_sineCounter mirrors the shared sine time axis,
// and per-channel state is reset by running a tick with a different channel count.
class TestGenerator : public QObject
{
    Q_OBJECT

    qint64 m_now = 1000000;
    qint64 m_sineCounter = 0;

    std::unique_ptr<Gen> device(const Wave& w)
    {
        auto dev = std::make_unique<Gen>();
        dev->setTimeSource([this] { return m_now; });
        dev->setSettings(w.rate, w.base, w.increment, w.amplitude, QList<QString>(w.channels, "C"), w.type, w.second);
        return dev;
    }

    Block tick(Gen& dev, qint64 ms = 50)
    {
        m_now += ms;
        QSignalSpy spy(&dev, &AbstractDevice::dataReady);
        QMetaObject::invokeMethod(&dev, "onDataTimer");
        return spy.isEmpty() ? Block() : spy.first().first().value<Block>();
    }

    // Ticks until channel 0 holds at least `samples` samples (a fresh clock's first tick is empty).
    Block collect(Gen& dev, int samples)
    {
        Block all(dev.channelCount());
        while (all[0].size() < samples) {
            const Block block = tick(dev);
            for (int ch = 0; ch < block.size(); ++ch)
                all[ch] += block[ch];
        }
        return all;
    }

    void resetChannelState(int type) { collect(*device(Wave{type, 10, 0, 0, 9}), 1); }

    // Each waveform computed from its formula; sines on the shared time axis (sample n).
    static double expected(const Wave& w, int ch, int i, qint64 n)
    {
        const int p = w.periods.value(ch);
        const auto sine = [&](double f) { return std::sin(2 * M_PI * f * double(n) / w.rate); };
        const double carrier = sine(w.base + ch * w.increment);
        switch (w.type) {
        case Gen::Saw: return float(i % p) * (w.amplitude / p); // 0, A/p, ..., (p-1)A/p, 0
        case Gen::Meander: return (i / p) % 2 ? w.amplitude : 0; // a level lasts p samples: half frequency
        case Gen::DoubleSine: return w.amplitude * (carrier + sine(w.second + ch * w.increment));
        case Gen::ModulatedSine: return w.amplitude * carrier * std::fabs(sine(w.second));
        default: return w.amplitude * carrier;
        }
    }

    // Collects at least `samples` per channel and compares them all; saw and meander exactly.
    bool waveMatches(Gen& dev, const Wave& w, int samples)
    {
        const bool sine = w.periods.isEmpty();
        const qint64 first = m_sineCounter;
        const Block got = collect(dev, samples);
        m_sineCounter += sine ? got[0].size() : 0;
        const double tolerance = sine ? (w.type == Gen::DoubleSine ? 2e-3 : 1e-3) * w.amplitude : 0;
        for (int ch = 0; ch < got.size(); ++ch)
            for (int i = 0; i < got[ch].size(); ++i)
                if (qAbs(got[ch][i] - expected(w, ch, i, first + i)) > tolerance)
                    return false;
        return true;
    }

    // The first R peak's position (peaks are negative), then the beat lengths from peak to peak.
    static QList<int> rIntervals(const QList<float>& channel, float amplitude)
    {
        QList<int> out;
        for (int i = 0, last = 0; i < channel.size(); ++i)
            if (channel[i] == -amplitude)
                out << i - std::exchange(last, i);
        return out;
    }

    // The same as the HRV walk gives them: beat j lasts period - offset, the offset walking
    // 0, s, ..., h and back down in steps of s.
    static QList<int> hrvIntervals(int firstPeak, qsizetype count, int period, int h, int s)
    {
        QList<int> out{firstPeak};
        for (int j = 0, m = h / s; out.size() < count; ++j)
            out << period - s * (j % (2 * m) <= m ? j % (2 * m) : 2 * m - j % (2 * m));
        return out;
    }

private Q_SLOTS:
    void pacingAndLifecycle()
    {
        auto dev = device(Wave{Gen::Saw, 10, 0, 0, 1});
        QCOMPARE(dev->deviceType(), QStringLiteral("GeneratorDevice"));
        QCOMPARE(dev->name(), QStringLiteral("GeneratorDevice"));
        QVERIFY(tick(*dev).isEmpty()); // the first tick only stamps the clock
        QList<int> sizes;
        for (int i = 0; i < 8; ++i)
            sizes << int(tick(*dev).first().size());
        QCOMPARE(sizes, QList<int>({6, 6, 6, 7, 6, 6, 6, 7}));

        // Irregular spacing: the sum still follows the clock exactly (0.125 samples per ms).
        const qint64 steps[] = {13, 87, 1, 49, 330, 0}; // 480 ms per round: no carry left
        qint64 total = 0, elapsed = 0;
        for (int i = 0; i < 600; ++i) {
            elapsed += steps[i % 6];
            total += tick(*dev, steps[i % 6]).value(0).size();
        }
        QCOMPARE(total, elapsed / 8);

        // Re-configuring restarts the clock, and so does a restart: a pause is not one block.
        dev->setSettings(125, 10, 0, 1, {"C"}, Gen::Saw, 0);
        QVERIFY(tick(*dev, 500).isEmpty());
        QCOMPARE(tick(*dev).first().size(), 6);
        auto* timer = dev->findChild<QTimer*>();
        QVERIFY(dev->open() && timer->interval() == 50 && timer->isActive());
        QCOMPARE(dev->connectionState(), AbstractDevice::CONNECTED);
        dev->stop();
        QVERIFY(!timer->isActive());
        QVERIFY(dev->start(125) && tick(*dev, 5000).isEmpty());
        QCOMPARE(tick(*dev).first().size(), 6);
        QCOMPARE(tick(*dev, 36).first().size(), 5); // carry 0.5 + 4.5

        // A non-positive rate is stored but keeps the old samples-per-millisecond.
        dev->setFrequency(0);
        QCOMPARE(tick(*dev, 40).first().size(), 5);
        dev->setFrequency(-20);
        QCOMPARE(tick(*dev, 80).first().size(), 10);
        // A clock running backwards produces nothing and breaks nothing; neither does an unknown type.
        QVERIFY(tick(*dev, -1000).isEmpty());
        dev->setFrequency(1000);
        QCOMPARE(tick(*dev, 1000).first().size(), 1000);
        dev->setSignalType(42);
        QVERIFY(tick(*dev).isEmpty());
    }

    void waveforms_data()
    {
        QTest::addColumn<Wave>("wave");
        QTest::addRow("sine, increment per channel") << Wave{Gen::Sine, 10, 5, 0, 2};
        QTest::addRow("sine switched to double") << Wave{Gen::Sine, 7, 0, 3, 1};
        QTest::addRow("double, increment shifts both") << Wave{Gen::DoubleSine, 10, 2, 3, 2};
        QTest::addRow("double, equal frequencies") << Wave{Gen::DoubleSine, 10, 0, 10, 1};
        QTest::addRow("modulated by |sin|") << Wave{Gen::ModulatedSine, 10, 0, 2, 1};
        QTest::addRow("saw 10 Hz") << Wave{Gen::Saw, 10, 0, 0, 1, {12}};
        QTest::addRow("saw, channel 1 at 25 Hz") << Wave{Gen::Saw, 10, 15, 0, 2, {12, 5}};
        QTest::addRow("saw 0 Hz: period 2") << Wave{Gen::Saw, 0, 0, 0, 1, {2}};
        QTest::addRow("meander 10 Hz, 25 Hz") << Wave{Gen::Meander, 10, 15, 0, 2, {12, 5}};
        QTest::addRow("meander 0 Hz: period 2") << Wave{Gen::Meander, 0, 0, 0, 1, {2}};
    }

    // Every sine row is a new instance continuing the shared time axis; every saw and meander
    // row follows a run with another channel count, which must restart the counters.
    void waveforms()
    {
        QFETCH(Wave, wave);
        if (!wave.periods.isEmpty())
            resetChannelState(wave.type);
        auto dev = device(wave);
        // The type alone leaves the second frequency at 0: still a plain sine.
        if (wave.type == Gen::Sine && wave.second > 0)
            dev->setSignalType(Gen::DoubleSine);
        QVERIFY(waveMatches(*dev, wave, 150));
    }

    // The only test that draws noise, so the shared generator is at its seed.
    void randomIsReproducibleUniformNoise()
    {
        const Wave noise{Gen::Random, 10, 0, 0, 2};
        const double amp = noise.amplitude;
        auto dev = device(noise);
        std::mt19937_64 reference(1);
        tick(*dev);
        for (int t = 0; t < 200; ++t)
            for (const QList<float>& channel : tick(*dev)) // channel by channel
                for (float value : channel) {
                    const double u = double(reference() >> 11) / 9007199254740992.0;
                    QCOMPARE(value, float(-amp + u * 2.0 * amp));
                }
    }

    void ecgBeatTemplateAndHrvWalk()
    {
        const float amp = 1000;
        resetChannelState(Gen::ECG);
        // Constructor values: 60 bpm, HRV 0.5. At 125 Hz: P = 125, h = 12, s = 1.
        // Channel 1 runs at 1 + 0.25 Hz, P = 100.
        auto dev = device(Wave{Gen::ECG, 10, 0.25f, 0, 2, {}, 125, amp});
        const Block got = collect(*dev, 60 * 125);

        // First beat of a fresh channel: the inverted template.
        const double tRising = 0.1 + 0.1 * std::sin(M_PI * 4 / 19 - M_PI / 2); // 45..60 % is 56..75
        const QList<QPair<int, double>> points = {
            {0, 0}, {9, -0.1},           // P crest (segment 0..18, middle)
            {20, 0}, {28, 0.05},         // gap before Q; Q: 0 -> -0.1 over 25..31
            {41, 0.4}, {60, -tRising},   // S trough; T rising
            {75, -0.2}, {110, 0}};       // T crest; baseline
        for (const auto& [at, value] : points)
            QCOMPARE(got[0][at], float(amp * value));

        const QList<int> r0 = rIntervals(got[0], amp);
        QVERIFY(r0.size() > 50);
        QCOMPARE(r0, hrvIntervals(36, r0.size(), 125, 12, 1));
        const QList<int> r1 = rIntervals(got[1], amp);
        QCOMPARE(r1, hrvIntervals(29, r1.size(), 100, 12, 1));
    }

    void settingsObjectConfiguresEverything()
    {
        QTemporaryDir folder;
        KxSettings::setStorageFolder(folder.path());
        VirtualDevicesSettings settings;
        settings.setAutoSave(false);
        settings.setGeneratorChannelNames(QStringLiteral(" A , B,,C "));
        settings.setGeneratorSamplingRate(200);
        settings.setGeneratorBaseFrequency(5);
        settings.setGeneratorFrequencyIncrement(1);
        settings.setGeneratorAmplitude(40);
        settings.setGeneratorSecondFrequency(3);
        settings.setSignalType(Gen::ModulatedSine);
        settings.setGeneratorECGbpm(120);
        settings.setGeneratorECGHRV(1.0f);

        Gen dev;
        dev.setTimeSource([this] { return m_now; });
        dev.setSettings(nullptr); // ignored
        dev.setSettings(&settings);
        QCOMPARE(dev.channelNames(), QList<QString>({"A", "B", "C"}));
        // The second-frequency setting acts as the modulation frequency here.
        QVERIFY(waveMatches(dev, Wave{Gen::ModulatedSine, 5, 1, 3, 3, {}, 200, 40}, 40));

        // Heart rate and HRV come along: 120 bpm at 200 Hz gives P = 100, h = 20, s = 4.
        resetChannelState(Gen::ECG);
        settings.setSignalType(Gen::ECG);
        settings.setGeneratorFrequencyIncrement(0);
        dev.setSettings(&settings);
        const QList<int> peaks = rIntervals(collect(dev, 2000)[0], 40);
        QVERIFY(peaks.size() > 15);
        QCOMPARE(peaks, hrvIntervals(29, peaks.size(), 100, 20, 4));
    }
};

QTEST_GUILESS_MAIN(TestGenerator)
#include "tst_generator.moc"
