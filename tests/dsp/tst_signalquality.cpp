#include "dsp/SignalQualityMeter.h"

#include <QtTest>

#include <cmath>
#include <numeric>
#include <random>

using Signal = std::vector<float>;

namespace {

Signal sine(double fs, double seconds, double hz, double amplitude, double phase = 0)
{
    Signal s(size_t(std::lround(fs * seconds)));
    for (size_t n = 0; n < s.size(); ++n)
        s[n] = float(amplitude * std::sin(2 * M_PI * hz * double(n) / fs + phase));
    return s;
}

Signal add(Signal a, const Signal& b, double offset = 0)
{
    for (size_t n = 0; n < a.size(); ++n)
        a[n] += float(b[n] + offset);
    return a;
}

// Gaussian noise of `rms` µV plus, with `rhythms`, alpha/theta/beta sines and 1/f-ish noise
// (leaky integrators), the whole scaled to `rms` µV.
Signal noise(double fs, double seconds, double rms, unsigned seed, bool rhythms)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> white;
    Signal s = rhythms ? add(add(sine(fs, seconds, 10, 25, 0.3), sine(fs, seconds, 6, 15, 1)),
                             sine(fs, seconds, 21, 8, 2))
                       : Signal(size_t(std::lround(fs * seconds)), 0.0f);
    double slow[3] = {0, 0, 0}, energy = 0;
    for (float& v : s) {
        const double w = white(random);
        for (int i = 0; i < 3; ++i)
            v += float(rhythms ? (slow[i] = (1 - std::pow(0.1, i)) * slow[i] + 0.3 * w) : w);
        energy += double(v) * v;
    }
    for (float& v : s)
        v = float(v * rms / std::sqrt(energy / double(s.size())));
    return s;
}

Signal eeg(double fs, double seconds, double rms, unsigned seed = 1)
{
    return noise(fs, seconds, rms, seed, true);
}

// Without `filtered`, the filter chain is stood in for by removing the mean.
int measure(double fs, const Signal& input, Signal filtered = {})
{
    if (filtered.empty()) {
        const double mean = std::accumulate(input.begin(), input.end(), 0.0) / input.size();
        filtered = add(input, Signal(input.size(), 0.0f), -mean);
    }
    SignalQualityMeter meter;
    meter.reset(1, float(fs));
    meter.addSamples(0, input.data(), filtered.data(), int(input.size()));
    return meter.quality(0);
}

} // namespace

class TestSignalQuality : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void scores_data()
    {
        QTest::addColumn<double>("fs");
        QTest::addColumn<Signal>("input");
        QTest::addColumn<Signal>("filtered"); // empty: the centred input
        QTest::addColumn<int>("low");
        QTest::addColumn<int>("high");
        const Signal clean250 = eeg(250, 3, 10), none;
        Signal clipped = sine(250, 3, 7, 500); // ten times over a ±50 µV range
        for (float& v : clipped)
            v = std::clamp(v, -50.0f, 50.0f);

        QTest::newRow("flat") << 250.0 << Signal(750, 3.0f) << none << 0 << 0;
        QTest::newRow("clipped") << 250.0 << clipped << none << 0 << 19;
        QTest::newRow("noise 2000") << 250.0 << noise(250, 3, 2000, 7, false) << none << 0 << 19;
        QTest::newRow("50 Hz") << 250.0 << add(clean250, sine(250, 3, 50, 141)) << none << 0 << 19;
        QTest::newRow("60 Hz") << 250.0 << add(clean250, sine(250, 3, 60, 141)) << none << 0 << 19;
        QTest::newRow("60 Hz at 125") << 125.0 << add(eeg(125, 3, 10), sine(125, 3, 60, 141))
                                      << none << 0 << 19;
        // Mains removed by the filters still counts: it tells of a poor contact.
        QTest::newRow("50 Hz notched") << 250.0 << add(clean250, sine(250, 3, 50, 141))
                                       << clean250 << 0 << 19;
        for (double fs : {125.0, 250.0, 500.0, 127.5})
            QTest::newRow(qPrintable(QString("clean at %1").arg(fs)))
                << fs << eeg(fs, 3, 30, 3) << none << 91 << 100;
        QTest::newRow("clean on DC offset")
            << 250.0 << add(eeg(250, 3, 20), Signal(750, 0.0f), -30000) << none << 91 << 100;
        // Every fourth sample repeats the maximum exactly, but a sampled sine is not clipped.
        QTest::newRow("sine at fs/4") << 500.0 << sine(500, 3, 125, 40, 0.3) << none << 91 << 100;

        // Mid-points of the documented ramps: each signal fails exactly one check half-way.
        QTest::newRow("RMS 1") << 250.0 << sine(250, 3, 10, M_SQRT2) << none << 49 << 51;
        QTest::newRow("RMS 447") << 250.0 << sine(250, 3, 10, std::sqrt(4e5)) << none << 49 << 51;
        for (double fs : {250.0, 127.5}) { // 127.5 Hz: mains between two DFT bins
            const double mains = 20 * std::sqrt(0.3 / 0.7); // 30 % of the variance
            QTest::newRow(qPrintable(QString("mains share 0.3 at %1").arg(fs)))
                << fs << add(sine(fs, 3, 10, 20), sine(fs, 3, 50, mains)) << none << 47 << 53;
        }
        Signal railed = sine(250, 3, 10, 40); // 37 + 38 of 250 samples repeat an extreme
        for (int window = 0; window < 3; ++window) {
            std::fill_n(railed.begin() + window * 250, 38, 100.0f);
            std::fill_n(railed.begin() + window * 250 + 125, 39, -100.0f);
        }
        QTest::newRow("rail share 0.3") << 250.0 << railed << none << 49 << 51;
    }

    void scores()
    {
        QFETCH(double, fs);
        QFETCH(Signal, input);
        QFETCH(Signal, filtered);
        QFETCH(int, low);
        QFETCH(int, high);
        const int q = measure(fs, input, filtered);
        QVERIFY2(q >= low && q <= high, qPrintable(QString::number(q)));
    }

    void channelsAndWindows()
    {
        const Signal clean = eeg(250, 2, 20), flat(500, 0.0f);
        const Signal mains = add(clean, sine(250, 2, 50, 150));
        const Signal* inputs[3] = {&clean, &flat, &mains};
        SignalQualityMeter meter;
        meter.reset(3, 250);
        QCOMPARE(meter.windowLength(), 250);
        for (int part = 0; part < 2; ++part) {
            for (int ch = 0; ch < 3; ++ch) {
                const float* at = inputs[ch]->data() + part * 249;
                meter.addSamples(ch, at, at, part == 0 ? 249 : 251);
                meter.addSamples(ch + 3, at, at, 10); // out of range: ignored
                meter.addSamples(ch, nullptr, at, 10);
            }
            if (part == 0) // one sample short of the first window
                QCOMPARE(meter.qualities(), QList<int>({0, 0, 0}));
        }
        QVERIFY(meter.quality(0) > 90);
        QCOMPARE(meter.quality(1), 0);
        QVERIFY(meter.quality(2) < 20);
        QCOMPARE(meter.quality(0), measure(250, clean, clean));
        QCOMPARE(meter.quality(-1), 0);
    }

    void partialBlocks()
    {
        Signal s; // five windows that score differently
        for (double rms : {0.7, 1.0, 1.6, 300.0, 600.0}) {
            const Signal part = eeg(250, 1, rms, unsigned(rms));
            s.insert(s.end(), part.begin(), part.end());
        }
        SignalQualityMeter whole, pieces;
        whole.reset(1, 250);
        pieces.reset(1, 250);
        QList<int> perWindow;
        for (int w = 0; w < 5; ++w) {
            whole.addSamples(0, s.data() + w * 250, s.data() + w * 250, 250);
            perWindow << whole.quality(0);
        }
        QCOMPARE(QSet<int>(perWindow.begin(), perWindow.end()).size(), 5);
        std::mt19937 random(5);
        for (int done = 0; done < 1250;) {
            const int n = std::min(1250 - done, int(random() % 97) + 1);
            pieces.addSamples(0, s.data() + done, s.data() + done, n);
            done += n;
            QCOMPARE(pieces.quality(0), done < 250 ? 0 : perWindow[done / 250 - 1]);
        }
    }

    void oddRatesAndInput()
    {
        // 100 Hz: 50 Hz sits on the Nyquist frequency and 60 Hz above it, where it would alias
        // onto a genuine 40 Hz rhythm; both are skipped.
        QVERIFY(measure(100, add(eeg(100, 3, 10), sine(100, 3, 40, 30))) > 90);
        for (double fs : {120.0, 10.0, 1.0})
            QVERIFY(measure(fs, eeg(fs, 3, 20)) <= 100);
        for (double fs : {0.0, -5.0, double(NAN), 2e6}) {
            SignalQualityMeter meter;
            meter.reset(2, float(fs));
            const Signal s = eeg(250, 2, 20);
            meter.addSamples(0, s.data(), s.data(), int(s.size()));
            QCOMPARE(meter.qualities(), QList<int>({0, 0}));
        }
        const Signal clean = eeg(250, 1, 20);
        Signal broken = clean;
        broken[100] = NAN;
        QCOMPARE(measure(250, broken, clean), 0);
        QCOMPARE(measure(250, clean, broken), 0);
    }
};

QTEST_GUILESS_MAIN(TestSignalQuality)
#include "tst_signalquality.moc"
