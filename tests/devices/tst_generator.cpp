#include "devices/GeneratorVirtualDevice.h"
#include "settings/VirtualDevicesSettings.h"

#include <QMetaEnum>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

using Block = QList<QList<float>>;

// Ticks are driven by hand with a fake clock, so every block size and value is exact.
// The generators share process-wide state; the members below mirror what earlier test
// functions consumed of it (sine time axis, noise draws), and per-channel state is reset by
// running a tick with a different channel count.
class TestGenerator : public QObject
{
    Q_OBJECT

    qint64 m_now = 1000000;
    qint64 m_sineCounter = 0;
    qint64 m_randomDraws = 0;

    std::unique_ptr<GeneratorVirtualDevice> device(float rate, float base, float increment, float amplitude,
                                                   int channels, int type, float second = 0)
    {
        auto dev = std::make_unique<GeneratorVirtualDevice>();
        dev->setTimeSource([this] { return m_now; });
        QList<QString> names;
        for (int i = 0; i < channels; ++i)
            names << QStringLiteral("C%1").arg(i);
        dev->setSettings(rate, base, increment, amplitude, names, type, second);
        return dev;
    }

    Block tick(GeneratorVirtualDevice& dev, qint64 ms = 50)
    {
        m_now += ms;
        QSignalSpy spy(&dev, &AbstractDevice::dataReady);
        QMetaObject::invokeMethod(&dev, "onDataTimer");
        return spy.isEmpty() ? Block() : spy.first().first().value<Block>();
    }

    // Ticks until channel 0 holds at least `samples` samples (a fresh clock's first tick is empty).
    Block collect(GeneratorVirtualDevice& dev, int samples)
    {
        Block all(dev.channelCount());
        while (all[0].size() < samples) {
            const Block block = tick(dev);
            for (int ch = 0; ch < block.size(); ++ch)
                all[ch] += block[ch];
        }
        return all;
    }

    // A tick with an unusual channel count makes the next run start from fresh per-channel state.
    void resetChannelState(int type)
    {
        auto other = device(125, 10, 0, 1, 9, type);
        collect(*other, 1);
    }

    static double sineAt(double frequency, qint64 sample, double rate)
    {
        return std::sin(2 * M_PI * frequency * double(sample) / rate);
    }

    // Runs a sine-family device and compares every channel with expected(channel, sample
    // number on the shared time axis), keeping the mirror of that axis up to date.
    template<typename Expected>
    bool sineMatches(GeneratorVirtualDevice& dev, int samples, double tolerance, Expected expected)
    {
        const qint64 first = m_sineCounter;
        const Block got = collect(dev, samples);
        m_sineCounter += got[0].size();
        for (int ch = 0; ch < got.size(); ++ch)
            for (int i = 0; i < got[ch].size(); ++i)
                if (qAbs(got[ch][i] - expected(ch, first + i)) > tolerance)
                    return false;
        return true;
    }

    static QList<int> negativePeaks(const QList<float>& channel, float amplitude)
    {
        QList<int> at;
        for (int i = 0; i < channel.size(); ++i)
            if (channel[i] == -amplitude)
                at << i;
        return at;
    }

private Q_SLOTS:
    void identity()
    {
        GeneratorVirtualDevice dev;
        QCOMPARE(dev.deviceType(), QStringLiteral("GeneratorDevice"));
        QCOMPARE(dev.name(), QStringLiteral("GeneratorDevice"));
        QVERIFY(!dev.deviceVersion().isEmpty());
        QVERIFY(!dev.hasBattery());
        QVERIFY(!dev.hasImpedance());
        const QMetaEnum types = QMetaEnum::fromType<GeneratorVirtualDevice::GeneratorType>();
        QCOMPARE(types.name(), "GeneratorType");
        QCOMPARE(types.keyToValue("ModulatedSine"), 5);
        QCOMPARE(types.keyToValue("ECG"), 6);

        auto* timer = dev.findChild<QTimer*>();
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 50);
        QVERIFY(dev.open());
        QVERIFY(timer->isActive());
        QCOMPARE(dev.connectionState(), AbstractDevice::CONNECTED);
        dev.stop();
        QVERIFY(!timer->isActive());
        QVERIFY(dev.start(125));
        dev.close();
        QVERIFY(!timer->isActive());
    }

    void pacingCarriesTheFraction()
    {
        auto dev = device(125, 10, 0, 1, 1, GeneratorVirtualDevice::Saw);
        QVERIFY(tick(*dev).isEmpty()); // the first tick only stamps the clock
        QList<int> sizes;
        for (int i = 0; i < 8; ++i)
            sizes << int(tick(*dev).first().size());
        QCOMPARE(sizes, QList<int>({6, 6, 6, 7, 6, 6, 6, 7}));

        qint64 total = 0;
        for (int i = 0; i < 2000; ++i)
            total += tick(*dev).value(0).size();
        QCOMPARE(total, qint64(12500));

        // Irregular spacing: the sum still follows the clock exactly (0.125 samples per ms).
        const qint64 steps[] = {13, 87, 1, 49, 330, 0}; // 480 ms per round: no carry left
        total = 0;
        qint64 elapsed = 0;
        for (int i = 0; i < 600; ++i) {
            const qint64 ms = steps[i % 6];
            elapsed += ms;
            total += tick(*dev, ms).value(0).size();
        }
        QCOMPARE(total, elapsed / 8);

        // Re-configuring restarts the clock.
        dev->setSettings(125, 10, 0, 1, {"C0"}, GeneratorVirtualDevice::Saw, 0);
        QVERIFY(tick(*dev, 500).isEmpty());
        QCOMPARE(tick(*dev).first().size(), 6);

        // So does a restart: the pause is not delivered as one block.
        dev->stop();
        dev->start(125);
        QVERIFY(tick(*dev, 5000).isEmpty());
        QCOMPARE(tick(*dev).first().size(), 6);
        QCOMPARE(tick(*dev, 36).first().size(), 5); // carry 0.5 + 4.5
        // A non-positive rate is stored but keeps the old samples-per-millisecond.
        dev->setFrequency(0);
        QCOMPARE(dev->samplingRate(), 0.0f);
        QCOMPARE(tick(*dev, 40).first().size(), 5);
        dev->setFrequency(-20);
        QCOMPARE(tick(*dev, 80).first().size(), 10);
        // A clock running backwards produces nothing and breaks nothing.
        QVERIFY(tick(*dev, -1000).isEmpty());
        dev->setFrequency(1000);
        QCOMPARE(tick(*dev, 1000).first().size(), 1000);
        // An unknown signal type produces nothing.
        dev->setSignalType(42);
        QVERIFY(tick(*dev).isEmpty());
    }

    void sineFamily()
    {
        const float amp = 100;
        // The increment raises each further channel's frequency.
        auto dev = device(125, 10, 5, amp, 2, GeneratorVirtualDevice::Sine);
        QVERIFY(sineMatches(*dev, 200, 1e-3 * amp, [&](int ch, qint64 n) { return amp * sineAt(10 + 5 * ch, n, 125); }));
        // A second instance continues the same time axis.
        auto other = device(125, 7, 0, amp, 1, GeneratorVirtualDevice::Sine);
        const auto plain7 = [&](int, qint64 n) { return amp * sineAt(7, n, 125); };
        QVERIFY(sineMatches(*other, 30, 1e-3 * amp, plain7));
        // Switching the type alone leaves the second frequency at 0: still a plain sine.
        other->setSignalType(GeneratorVirtualDevice::DoubleSine);
        QVERIFY(sineMatches(*other, 30, 1e-3 * amp, plain7));

        // Equal frequencies at 200 Hz sample the crest exactly: the peak is twice the amplitude.
        auto same = device(200, 10, 0, amp, 1, GeneratorVirtualDevice::DoubleSine, 10);
        const Block crest = collect(*same, 100);
        m_sineCounter += crest[0].size();
        const auto [lo, hi] = std::minmax_element(crest[0].begin(), crest[0].end());
        QVERIFY(qAbs(*hi - 2 * amp) < 1e-3 * amp && qAbs(*lo + 2 * amp) < 1e-3 * amp);
        // The increment shifts both frequencies of a channel.
        auto dual = device(125, 10, 2, amp, 2, GeneratorVirtualDevice::DoubleSine, 3);
        QVERIFY(sineMatches(*dual, 150, 2e-3 * amp, [&](int ch, qint64 n) {
            return amp * (sineAt(10 + 2 * ch, n, 125) + sineAt(3 + 2 * ch, n, 125));
        }));
        // Modulation multiplies by |sin|, not by a shifted sine.
        auto mod = device(125, 10, 0, amp, 1, GeneratorVirtualDevice::ModulatedSine, 2);
        QVERIFY(sineMatches(*mod, 150, 1e-3 * amp, [&](int, qint64 n) {
            return amp * sineAt(10, n, 125) * std::fabs(sineAt(2, n, 125));
        }));
    }

    void sawRampsAndResets()
    {
        const float amp = 120;
        resetChannelState(GeneratorVirtualDevice::Saw);
        auto dev = device(125, 10, 0, amp, 1, GeneratorVirtualDevice::Saw);
        const Block got = collect(*dev, 30);
        for (int i = 0; i < got[0].size(); ++i)
            QCOMPARE(got[0][i], float(i % 12) * 10.0f); // 0, A/12, ..., 11A/12, 0

        // Two channels now: the counters restart; channel 1 runs at 10 + 15 Hz (period 5).
        auto two = device(125, 10, 15, amp, 2, GeneratorVirtualDevice::Saw);
        const Block both = collect(*two, 12);
        for (int i = 0; i < both[0].size(); ++i) {
            QCOMPARE(both[0][i], float(i % 12) * 10.0f);
            QCOMPARE(both[1][i], float(i % 5) * 24.0f);
        }

        // A zero frequency gives the minimum period of 2.
        resetChannelState(GeneratorVirtualDevice::Saw);
        auto flat = device(125, 0, 0, amp, 1, GeneratorVirtualDevice::Saw);
        const Block period2 = collect(*flat, 10);
        for (int i = 0; i < period2[0].size(); ++i)
            QCOMPARE(period2[0][i], i % 2 ? 60.0f : 0.0f);
    }

    void meanderHalvesTheFrequency()
    {
        const float amp = 80;
        resetChannelState(GeneratorVirtualDevice::Meander);
        auto dev = device(125, 10, 0, amp, 1, GeneratorVirtualDevice::Meander);
        const Block got = collect(*dev, 60);
        for (int i = 0; i < got[0].size(); ++i)
            QCOMPARE(got[0][i], (i / 12) % 2 ? amp : 0.0f);

        // Changing the channel count restarts counter and level (a high level 5 samples in).
        auto two = device(125, 10, 0, amp, 2, GeneratorVirtualDevice::Meander);
        const Block fresh = collect(*two, 24);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < 24; ++i)
                QCOMPARE(fresh[ch][i], i < 12 ? 0.0f : amp);
    }

    void randomIsReproducibleUniformNoise()
    {
        const float amp = 30;
        auto dev = device(125, 10, 0, amp, 2, GeneratorVirtualDevice::Random);
        std::mt19937_64 reference(1);
        reference.discard(static_cast<unsigned long long>(m_randomDraws));
        const auto nextExpected = [&] {
            const double u = double(reference() >> 11) / 9007199254740992.0;
            return float(-double(amp) + u * 2.0 * double(amp));
        };

        tick(*dev);
        double sum = 0;
        int count = 0;
        for (int t = 0; t < 200; ++t) {
            const Block block = tick(*dev);
            for (const QList<float>& channel : block) // channel by channel
                for (float value : channel) {
                    QCOMPARE(value, nextExpected());
                    QVERIFY(value >= -amp && value < amp);
                    sum += value;
                    ++count;
                }
        }
        m_randomDraws += count;
        QVERIFY(qAbs(sum / count) < 0.05 * amp);
    }

    void ecgBeatTemplateAndHrvWalk()
    {
        const float amp = 1000;
        resetChannelState(GeneratorVirtualDevice::ECG);
        // Constructor values: 60 bpm, HRV 0.5. At 125 Hz: P = 125, h = 12, s = 1.
        // Channel 1 runs at 1 + 0.25 Hz, P = 100.
        auto dev = device(125, 10, 0.25f, amp, 2, GeneratorVirtualDevice::ECG);
        const Block got = collect(*dev, 60 * 125);
        QCOMPARE(got[1].size(), got[0].size());

        // First beat of a fresh channel: the inverted template.
        const auto segment = [](double q1, double q0, double a, double w, double phi, int k, int n) {
            const double x = double(k) / n;
            return q1 * x + q0 + a + a * std::sin(w * x + phi);
        };
        QCOMPARE(got[0][0], 0.0f);
        QVERIFY(qAbs(got[0][9] + amp * 0.1) < 1e-3);  // P crest (segment 0..18, middle)
        QCOMPARE(got[0][20], 0.0f);                    // gap between P and Q
        QVERIFY(qAbs(got[0][28] - amp * 0.1 * 3 / 6) < 1e-3); // Q: 0 -> -0.1 over 25..31
        QCOMPARE(got[0][36], -amp);                    // R peak, negative
        QVERIFY(qAbs(got[0][41] - amp * 0.4) < 1e-3);  // S trough, positive
        QVERIFY(qAbs(got[0][60] + amp * segment(0, 0, 0.1, M_PI, -M_PI / 2, 4, 19)) < 1e-3);
        QVERIFY(qAbs(got[0][75] + amp * 0.2) < 1e-3);  // T crest
        QCOMPARE(got[0][110], 0.0f);

        // Beat lengths from the R peaks: 125 - offset, the offset walking 0..12..0 in steps of 1.
        const QList<int> r0 = negativePeaks(got[0], amp);
        QCOMPARE(r0.first(), 36);
        QVERIFY(r0.size() > 50);
        for (int j = 0; j + 1 < r0.size(); ++j) {
            const int phase = j % 24;
            const int offset = phase <= 12 ? phase : 24 - phase;
            QCOMPARE(r0[j + 1] - r0[j], 125 - offset);
        }
        const QList<int> r1 = negativePeaks(got[1], amp);
        QCOMPARE(r1.first(), 29);
        QCOMPARE(r1[1] - r1[0], 100);
        QCOMPARE(r1[2] - r1[1], 99);
        QCOMPARE(r1[13] - r1[12], 100 - 12);
        QCOMPARE(r1[14] - r1[13], 100 - 11);
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
        settings.setSignalType(GeneratorVirtualDevice::ModulatedSine);
        settings.setGeneratorECGbpm(120);
        settings.setGeneratorECGHRV(1.0f);

        GeneratorVirtualDevice dev;
        dev.setTimeSource([this] { return m_now; });
        dev.setSettings(nullptr); // ignored
        QCOMPARE(dev.channelCount(), 0);
        dev.setSettings(&settings);
        QCOMPARE(dev.channelNames(), QList<QString>({"A", "B", "C"}));
        QCOMPARE(dev.channelCount(), 3);
        QCOMPARE(dev.samplingRate(), 200.0f);

        // The second-frequency setting acts as the modulation frequency here.
        QVERIFY(sineMatches(dev, 40, 0.04, [](int ch, qint64 n) {
            return 40 * sineAt(5 + ch, n, 200) * std::fabs(sineAt(3, n, 200));
        }));

        // Heart rate and HRV come along: 120 bpm at 200 Hz gives P = 100, h = 20, s = 4.
        resetChannelState(GeneratorVirtualDevice::ECG);
        settings.setSignalType(GeneratorVirtualDevice::ECG);
        settings.setGeneratorFrequencyIncrement(0);
        dev.setSettings(&settings);
        const Block ecg = collect(dev, 500);
        const QList<int> peaks = negativePeaks(ecg[0], 40);
        QVERIFY(peaks.size() >= 5);
        QCOMPARE(peaks[0], 29);
        QCOMPARE(peaks[1] - peaks[0], 100);
        QCOMPARE(peaks[2] - peaks[1], 96);
        QCOMPARE(peaks[3] - peaks[2], 92);
    }
};

QTEST_GUILESS_MAIN(TestGenerator)
#include "tst_generator.moc"
