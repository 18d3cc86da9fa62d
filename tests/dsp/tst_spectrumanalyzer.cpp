#include "dsp/SpectrumAnalyzer.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <complex>
#include <memory>
#include <random>
#include <tuple>

using Complex = SpectrumAnalyzer::Complex;
using Tones = QList<QPair<double, double>>; // Hz, amplitude

namespace {

QList<float> sines(float rate, int count, const Tones& tones, double offset = 0)
{
    QList<float> x(count, float(offset));
    for (int i = 0; i < count; ++i)
        for (const auto& tone : tones)
            x[i] += float(tone.second * std::sin(2 * M_PI * tone.first * i / rate));
    return x;
}

// The textbook recursive radix-2 transform, with make_w called for every factor.
QList<Complex> referenceFft(const QList<Complex>& x)
{
    const int n = int(x.size());
    if (n == 1)
        return x;
    QList<Complex> even, odd, out(n);
    for (int i = 0; i < n; i += 2)
        even << x[i], odd << x[i + 1];
    even = referenceFft(even), odd = referenceFft(odd);
    for (int k = 0; k < n / 2; ++k) {
        Complex w;
        SpectrumAnalyzer::make_w(k, n, w);
        out[k] = even[k] + w * odd[k];
        out[k + n / 2] = even[k] - w * odd[k];
    }
    return out;
}

// The spectrum by the documented route, taper in double: mean removed, Tukey taper with its
// amplitude correction, zero padding, ConvertDataForFFt, fft, 2|X|/n.
QList<float> literalSpectrum(const QList<float>& block, double percent, int nfft)
{
    const int n = int(block.size());
    double mean = 0;
    for (float x : block)
        mean += x;
    mean /= n;
    const int length = int(2.0 * n * std::min(0.5, percent / 100));
    QList<double> w(length);
    double sum = 0;
    for (int i = 0; i < length; ++i)
        sum += w[i] = 0.5 * (1 - std::cos(2 * M_PI * i / length));
    const double correction = length >= 1 ? n / ((n - length) + sum) : 1.0;
    const int head = length / 2, tail = n - (length - head); // flanks: [0, head) and [tail, n)
    QList<float> x(n);
    for (int i = 0; i < n; ++i) {
        const double taper = i < head ? w[i] : i >= tail ? w[head + i - tail] : 1.0;
        x[i] = float((block[i] - mean) * taper * correction);
    }
    QList<Complex> points, spectrum;
    SpectrumAnalyzer::ConvertDataForFFt(nfft, x, points);
    SpectrumAnalyzer::fft(nfft, points, spectrum);
    QList<float> amplitudes(nfft / 2 + 1);
    for (int k = 0; k < amplitudes.size(); ++k)
        amplitudes[k] = float(2 * std::abs(std::complex<double>(spectrum[k])) / n);
    return amplitudes;
}

} // namespace

class TestSpectrumAnalyzer : public QObject
{
    Q_OBJECT
    std::unique_ptr<SpectrumAnalyzer> a;

    void configure(float rate, float window, float step, float percent)
    {
        a->setDataFrequency(rate), a->setWindowSize(window), a->setWindowStep(step), a->setSmoothingWindowPercent(percent);
    }

    bool sharesMatchMap() const
    {
        const QMap<QString, float> map = a->getLastRhythms();
        const QList<SpectrumRhythm> rhythms = a->getRhythms();
        for (int r = 0; r < rhythms.size(); ++r) {
            const float share = a->getLastRhythmShare(r);
            if (!(share == map.value(rhythms[r].name, -1.0f)))
                return false;
        }
        return true;
    }

private Q_SLOTS:
    void init() { a = std::make_unique<SpectrumAnalyzer>(); }

    void configuration_data()
    {
        const int max = SpectrumAnalyzer::MaxWindowSamples;
        QTest::addColumn<QList<float>>("in");     // rate, window, step, percent
        QTest::addColumn<QList<float>>("stored"); // the same after the clamps, then the bin step
        QTest::addColumn<QList<int>>("sizes");    // N, step, nfft, bins
        QTest::newRow("125Hz 4s 0.1s") << QList<float>{125, 4, 0.1f, 10} << QList<float>{125, 4, 0.1f, 10, 0.244140625f}
                                       << QList<int>{500, 13, 512, 257};
        QTest::newRow("clamped low") << QList<float>{-5, 0.01f, 0.001f, -3} << QList<float>{0, 0.1f, 0.01f, 0, 0}
                                     << QList<int>{0, 0, 1, 1};
        QTest::newRow("clamped high") << QList<float>{100, 0.05f, 0.001f, 80} << QList<float>{100, 0.1f, 0.01f, 50, 6.25f}
                                      << QList<int>{10, 1, 16, 9};
        // Cut to a bounded window, never a crash.
        QTest::newRow("nonsense") << QList<float>{INFINITY, NAN, NAN, NAN} << QList<float>{INFINITY, 0.1f, 0.01f, 0, INFINITY}
                                  << QList<int>{max, max, max, max / 2 + 1};
    }
    void configuration()
    {
        QFETCH(QList<float>, in);
        QFETCH(QList<float>, stored);
        configure(in[0], in[1], in[2], in[3]);
        QCOMPARE((QList<float>{a->getDataFrequency(), a->getWindowSize(), a->getWindowStep(),
                               a->getSmoothingWindowPercent(), a->getFrequencyStep()}), stored);
        QTEST((QList<int>{a->getWindowSamples(), a->getStepSamples(), a->getNFFT(), int(a->getFrequencies().size())}), "sizes");
        QCOMPARE(a->getFrequencies().last(), stored[4] * (a->getFrequencies().size() - 1));
    }

    // With its correction the taper keeps a bin-centred sine at its amplitude at every percent.
    void sinePeak()
    {
        const std::tuple<float, float, int> cases[] = {{125, 0, 41}, {250, 10, 100}, {125, 50, 80}}; // rate, %, bin
        for (const auto& [rate, percent, bin] : cases) {
            configure(rate, 4.096f, 1, percent); // a power-of-two window: no zero padding
            const QList<float> s = a->calculateSpectrum(sines(rate, a->getWindowSamples(), {{bin * rate / a->getNFFT(), 7.5}}, 3));
            QCOMPARE(int(std::max_element(s.begin(), s.end()) - s.begin()), bin);
            QVERIFY2(std::fabs(s[bin] - 7.5) < 1e-4 * 7.5, qPrintable(QString("%1 Hz, %2 %").arg(rate).arg(percent)));
        }
    }

    void rhythmBands()
    {
        a->addRhythm("a", 8, 13);
        a->addRhythm(SpectrumRhythm("b", 13, 20));
        a->addRhythm("beyond", 30, 80); // no bin reaches 80 Hz: skipped, global end untouched
        configure(128, 4, 1, 0);        // 0.25 Hz bins
        QCOMPARE(a->getRhythmIndexes(), (QList<QPair<int, int>>{{32, 52}, {52, 80}, {120, 0}}));
        for (float f : {8.0f, 13.0f}) { // 8 Hz belongs to "a", 13 Hz to "b"
            a->calculateSpectrum(sines(128, 512, {{f, 5}}));
            const QMap<QString, float> r = a->getLastRhythms();
            QCOMPARE(r.keys(), (QStringList{"a", "b", "sum"}));
            QVERIFY(std::fabs(r["sum"] - 5) < 1e-3);
            QVERIFY(std::fabs(r[f == 8 ? "a" : "b"] - 100) < 1e-2 && r[f == 8 ? "b" : "a"] < 1e-2);
        }
        a->calculateSpectrum(sines(128, 512, {{9, 2}, {11, 1}}));
        QVERIFY(std::fabs(a->calculateCustomRhythm(8, 10) - 2.0f / 3) < 1e-4); // a fraction
        QVERIFY(std::fabs(a->calcWeightedAverageFrequency("a") - 29.0f / 3) < 1e-4);
        QCOMPARE(a->calcMaximumDominantFrequency("a", 0.6), 9.0f); // 9 Hz holds 2/3 of the band
        QCOMPARE(a->calcMaximumDominantFrequency("a", 0.7), 0.0f);
        QCOMPARE(a->calcWeightedAverageFrequency("beta") + a->calcMaximumDominantFrequency("beta", 0), 0.0f);
    }

    void blocksAndSignals()
    {
        a->addRhythm("alpha", 8, 14);
        configure(125, 4, 0.1f, 50);
        QStringList order;
        connect(a.get(), &SpectrumAnalyzer::spectrumRhythmsCalculated, this, [&] { order << "rhythms"; });
        connect(a.get(), &SpectrumAnalyzer::spectrumCalculated, this, [&] { order << "spectrum"; });
        QVERIFY(a->calculateSpectrum(QList<float>(499, 1.0f)).isEmpty()); // wrong length: nothing emitted
        QVERIFY(order.isEmpty());
        // A constant is all mean: zero spectrum, zero total, no rhythms.
        QCOMPARE(a->calculateSpectrum(QList<float>(500, 7.0f)), QList<float>(257, 0.0f));
        QVERIFY(order == QStringList{"rhythms"} && a->getLastRhythms().isEmpty());
        QCOMPARE(a->addDataSample(sines(125, 3 * 500, {{10, 1}})).size(), 257); // one spectrum per call
        QCOMPARE(order, (QStringList{"rhythms", "rhythms", "spectrum"}));
        QCOMPARE(a->getBufferedSampleCount(), 3 * 500 - 13);
        a->setWindowStep(0.1f); // a refresh keeps the buffer
        QCOMPARE(a->addDataSample(QList<float>()).size(), 257); // the backlog drains one per call
        QCOMPARE(a->getBufferedSampleCount(), 3 * 500 - 26);
    }

    void customRhythmWithoutRhythms()
    {
        configure(128, 4, 1, 0);
        QCOMPARE(a->calculateCustomRhythm(8, 12), 0.0f); // no spectrum yet
        a->calculateSpectrum(sines(128, 512, {{9, 0.6}, {10, 513.5}, {11, 0.6}}));
        // No rhythms, so no total: a running sum truncated at every bin (0.6 -> 0, + 513.5 -> 513,
        // + 0.6 -> 513), integer-divided by the 257 bins, is 1.
        QVERIFY(std::fabs(a->calculateCustomRhythm(8, 12) - 514.7f) < 0.01);
    }

    // Spectra come from a transform of half as many complex points (the samples packed in
    // pairs); they must match the literal complex route down to rounding, for odd and tiny
    // windows too.
    void realInputMatchesComplexRoute()
    {
        std::mt19937 random(11);
        std::normal_distribution<float> noise(0, 10);
        // rate, percent: N = 1, 2, 3 (nfft 4), 5, 8, 100 at 0.1 s; then 1000 padded to 1024.
        const std::tuple<float, float, float> cases[] = {{10, 0.1f, 0},   {20, 0.1f, 50}, {30, 0.1f, 25},
                                                         {50, 0.1f, 10},  {80, 0.1f, 0},  {1000, 0.1f, 10},
                                                         {250, 4, 10},    {256, 4, 50}};
        for (const auto& [rate, window, percent] : cases) {
            configure(rate, window, 1, percent);
            QList<float> block(a->getWindowSamples());
            for (float& x : block)
                x = 40 + noise(random);
            const QList<float> ours = a->calculateSpectrum(block);
            const QList<float> expected = literalSpectrum(block, percent, a->getNFFT());
            QCOMPARE(ours.size(), expected.size());
            double peak = 0, worst = 0;
            for (int k = 0; k < ours.size(); ++k) {
                peak = std::max(peak, double(expected[k]));
                worst = std::max(worst, std::fabs(double(ours[k]) - expected[k]));
            }
            QVERIFY2(worst <= 1e-5 * peak, qPrintable(QString("N = %1: %2 of %3").arg(block.size()).arg(worst).arg(peak)));
        }
    }

    // A long stream in blocks smaller than a step: every spectrum is exactly that of its own
    // window, however the buffer keeps the samples between steps.
    void slidingWindows()
    {
        configure(100, 1, 0.13f, 10); // N = 100, step 13
        SpectrumAnalyzer reference;
        reference.setDataFrequency(100), reference.setWindowSize(1), reference.setSmoothingWindowPercent(10);
        const QList<float> stream = sines(100, 2000, {{7, 3}, {19, 1}}, 2);
        int produced = 0;
        for (int i = 0; i < stream.size(); i += 7) {
            const QList<float> s = a->addDataSample(stream.constData() + i, std::min(7, int(stream.size()) - i));
            if (s.isEmpty())
                continue;
            QCOMPARE(s, reference.calculateSpectrum(stream.mid(produced * 13, 100)));
            ++produced;
        }
        QCOMPARE(produced, 1900 / 13 + 1);
        QCOMPARE(a->getBufferedSampleCount(), 2000 - produced * 13);
    }

    // The per-rhythm values and the map agree in every state: before any spectrum, after
    // one with rhythms, after one without (zero total), after a direct calculateRhythms that
    // fails (nothing changes) and after a rhythm is added (the map keeps what was measured).
    void rhythmValuesAndMapAgree()
    {
        a->addRhythm("a", 8, 13);
        a->addRhythm("b", 13, 20);
        a->addRhythm("beyond", 30, 80);
        configure(128, 4, 1, 0);
        QSignalSpy emitted(a.get(), &SpectrumAnalyzer::spectrumRhythmsCalculated);
        QVERIFY(sharesMatchMap());
        a->calculateSpectrum(sines(128, 512, {{9, 2}, {15, 1}}));
        QVERIFY(sharesMatchMap());
        QCOMPARE(a->getLastRhythms().keys(), (QStringList{"a", "b", "sum"}));
        QCOMPARE((emitted.last().at(0).value<QMap<QString, float>>()), a->getLastRhythms());
        QCOMPARE(a->getLastRhythmShare(2), -1.0f); // skipped: its band ends beyond the bins
        const QMap<QString, float> measured = a->getLastRhythms();
        QVERIFY(a->calculateRhythms(QList<float>(10, 1.0f)).isEmpty()); // too short
        QCOMPARE(a->getLastRhythms(), measured);
        QVERIFY(sharesMatchMap());
        a->calculateSpectrum(QList<float>(512, 3.0f)); // a constant: total 0, no rhythms
        QVERIFY(a->getLastRhythms().isEmpty() && sharesMatchMap());
        QVERIFY((emitted.last().at(0).value<QMap<QString, float>>().isEmpty()));
        const QMap<QString, float> direct = a->calculateRhythms(sines(128, 512, {{10, 1}}).mid(0, 257));
        QCOMPARE(a->getLastRhythms(), direct);
        a->addRhythm("c", 1, 2);
        QCOMPARE(a->getLastRhythms(), direct);
        QCOMPARE(a->getLastRhythmShare(3), -1.0f);
        QVERIFY(sharesMatchMap());
    }

    // Bit for bit the reference above, also in place, and close to a direct DFT in double.
    void fft()
    {
        std::mt19937 random(3);
        std::uniform_real_distribution<float> value(-100, 100);
        for (int n = 1; n <= 4096; n *= 2) {
            QList<Complex> in(n), ours, inPlace;
            for (Complex& p : in)
                p = Complex(value(random), value(random));
            SpectrumAnalyzer::fft(n, in, ours);
            QVERIFY2(ours == referenceFft(in), qPrintable(QString("table differs at n = %1").arg(n)));
            SpectrumAnalyzer::fft(n, inPlace = in, inPlace);
            QVERIFY(inPlace == ours);
            double worst = 0, peak = 0;
            for (int k = 0; k < n && n <= 1024; ++k) {
                std::complex<double> sum;
                for (int t = 0; t < n; ++t)
                    sum += std::complex<double>(in[t]) * std::polar(1.0, -2 * M_PI * double(k) * t / n);
                worst = std::max(worst, std::abs(sum - std::complex<double>(ours[k])));
                peak = std::max(peak, std::abs(sum));
            }
            QVERIFY2(worst <= 1e-5 * peak, qPrintable(QString("n = %1: %2 of %3").arg(n).arg(worst).arg(peak)));
        }
        QList<Complex> out{1};
        SpectrumAnalyzer::fft(6, QList<Complex>(6), out); // not a power of two
        QVERIFY(out.isEmpty());
        SpectrumAnalyzer::ConvertDataForFFt(2, {1, 2, 3}, out); // never shorter than the data
        QCOMPARE(out, (QList<Complex>{1, 2, 3}));
    }
};

QTEST_GUILESS_MAIN(TestSpectrumAnalyzer)
#include "tst_spectrumanalyzer.moc"
