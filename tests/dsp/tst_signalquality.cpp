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

// EEG-like test signal of `rms` µV: alpha/theta/beta sines plus 1/f-ish noise (leaky
// integrators of white noise).
Signal eeg(double fs, double seconds, double rms, unsigned seed = 1)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> white;
    Signal s = add(add(sine(fs, seconds, 10, 25, 0.3), sine(fs, seconds, 6, 15, 1)), sine(fs, seconds, 21, 8, 2));
    double slow[3] = {0, 0, 0}, energy = 0;
    for (float& v : s) {
        const double w = white(random);
        for (int i = 0; i < 3; ++i)
            v += float(slow[i] = (1 - std::pow(0.1, i)) * slow[i] + 0.3 * w);
        energy += double(v) * v;
    }
    for (float& v : s)
        v = float(v * rms / std::sqrt(energy / double(s.size())));
    return s;
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
        QTest::newRow("noise 2000") << 250.0 << eeg(250, 3, 2000, 7) << none << 0 << 19;
        for (auto [fs, hz] : {std::pair(250.0, 50.0), std::pair(250.0, 60.0), std::pair(125.0, 60.0)})
            QTest::addRow("%g Hz at %g", hz, fs) << fs << add(eeg(fs, 3, 10), sine(fs, 3, hz, 141)) << none << 0 << 19;
        // Mains removed by the filters still counts: it tells of a poor contact.
        QTest::newRow("50 Hz notched") << 250.0 << add(clean250, sine(250, 3, 50, 141)) << clean250 << 0 << 19;
        for (double fs : {125.0, 250.0, 500.0, 127.5})
            QTest::addRow("clean at %g", fs) << fs << eeg(fs, 3, 30, 3) << none << 91 << 100;
        QTest::newRow("clean on DC offset") << 250.0 << add(eeg(250, 3, 20), Signal(750, 0.0f), -30000) << none << 91 << 100;
        // Every fourth sample repeats the maximum exactly, but a sampled sine is not clipped.
        QTest::newRow("sine at fs/4") << 500.0 << sine(500, 3, 125, 40, 0.3) << none << 91 << 100;
        // 100 Hz: 50 Hz sits on the Nyquist frequency (here a strong alternating component) and
        // 60 Hz above it, where it would alias onto a genuine 40 Hz rhythm; both are skipped.
        QTest::newRow("100 Hz") << 100.0 << add(add(eeg(100, 3, 10), sine(100, 3, 40, 30)), sine(100, 3, 50, 30, M_PI / 2))
                                << none << 91 << 100;
        for (double fs : {120.0, 10.0, 1.0})
            QTest::addRow("slow rate %g", fs) << fs << eeg(fs, 3, 20) << none << 0 << 100;

        // Mid-points of the documented ramps: each signal fails exactly one check half-way.
        QTest::newRow("RMS 1") << 250.0 << sine(250, 3, 10, M_SQRT2) << none << 49 << 51;
        QTest::newRow("RMS 447") << 250.0 << sine(250, 3, 10, std::sqrt(4e5)) << none << 49 << 51;
        for (double fs : {250.0, 127.5}) // 127.5 Hz: mains between two DFT bins
            QTest::addRow("mains share 0.3 at %g", fs) // mains: 30 % of the variance
                << fs << add(sine(fs, 3, 10, 20), sine(fs, 3, 50, 20 * std::sqrt(0.3 / 0.7))) << none << 47 << 53;
        Signal railed = sine(250, 1, 10, 40); // 37 + 38 of 250 samples repeat an extreme
        std::fill_n(railed.begin(), 38, 100.0f);
        std::fill_n(railed.begin() + 125, 39, -100.0f);
        QTest::newRow("rail share 0.3") << 250.0 << railed << none << 49 << 51;

        // Refused rates leave the meter idle; a window with a NaN scores 0.
        for (double fs : {0.0, -5.0, double(NAN), 2e6})
            QTest::addRow("rate %g", fs) << fs << eeg(250, 2, 20) << none << 0 << 0;
        Signal broken = clean250;
        broken[700] = NAN; // in the last window
        QTest::newRow("NaN input") << 250.0 << broken << clean250 << 0 << 0;
        QTest::newRow("NaN filtered") << 250.0 << clean250 << broken << 0 << 0;
    }

    void scores()
    {
        QFETCH(double, fs);
        QFETCH(Signal, input);
        QFETCH(Signal, filtered);
        QFETCH(int, low);
        QFETCH(int, high);
        if (filtered.empty()) { // the filter chain is stood in for by removing the mean
            const double mean = std::accumulate(input.begin(), input.end(), 0.0) / input.size();
            filtered = add(input, Signal(input.size(), 0.0f), -mean);
        }
        SignalQualityMeter meter;
        meter.reset(1, float(fs));
        meter.addSamples(0, input.data(), filtered.data(), int(input.size()));
        QVERIFY2(meter.quality(0) >= low && meter.quality(0) <= high, qPrintable(QString::number(meter.quality(0))));
    }

    // Windows do not depend on how the samples are split into blocks, and channels do not
    // disturb each other; unknown channels and null pointers are ignored.
    void blocksAndChannels()
    {
        Signal s; // five windows that score differently
        for (double rms : {0.7, 1.0, 1.6, 300.0, 600.0}) {
            const Signal part = eeg(250, 1, rms, unsigned(rms));
            s.insert(s.end(), part.begin(), part.end());
        }
        const Signal mains = add(eeg(250, 5, 20), sine(250, 5, 50, 150));
        SignalQualityMeter whole, pieces;
        whole.reset(1, 250);
        pieces.reset(2, 250);
        QList<int> perWindow{0}; // 0 until the first window completes
        for (int w = 0; w < 5; ++w) {
            whole.addSamples(0, s.data() + w * 250, s.data() + w * 250, 250);
            perWindow << whole.quality(0);
        }
        QCOMPARE(QSet<int>(perWindow.begin(), perWindow.end()).size(), 6);
        std::mt19937 random(5);
        for (int done = 0, n = 249; done < 1250; done += n, n = std::min(1250 - done, int(random() % 97) + 1)) {
            for (int ch : {-1, 0, 2})
                pieces.addSamples(ch, s.data() + done, s.data() + done, n);
            pieces.addSamples(1, nullptr, s.data() + done, n);
            pieces.addSamples(1, mains.data() + done, mains.data() + done, n);
            QCOMPARE(pieces.quality(0), perWindow[(done + n) / 250]);
        }
        QVERIFY(pieces.quality(1) < 20);
        QCOMPARE(pieces.quality(-1), 0);
    }
};

QTEST_GUILESS_MAIN(TestSignalQuality)
#include "tst_signalquality.moc"
