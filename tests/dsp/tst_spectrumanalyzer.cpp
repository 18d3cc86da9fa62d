#include "dsp/SpectrumAnalyzer.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <complex>
#include <memory>
#include <random>

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

// The same transform with make_w called in every butterfly.
QList<Complex> referenceFft(const QList<Complex>& in)
{
    const int n = int(in.size());
    QList<Complex> out(n);
    for (int i = 0, bits = int(std::log2(n)); i < n; ++i) {
        int r = 0;
        for (int b = 0; b < bits; ++b)
            r |= ((i >> b) & 1) << (bits - 1 - b);
        out[r] = in[i];
    }
    for (int len = 2; len <= n; len *= 2)
        for (int start = 0; start < n; start += len)
            for (int j = 0; j < len / 2; ++j) {
                Complex w, &a = out[start + j], &b = out[start + j + len / 2];
                SpectrumAnalyzer::make_w(j, len, w);
                const float tr = w.real() * b.real() - w.imag() * b.imag();
                const float ti = w.real() * b.imag() + w.imag() * b.real();
                b = Complex(a.real() - tr, a.imag() - ti);
                a = Complex(a.real() + tr, a.imag() + ti);
            }
    return out;
}

} // namespace

class TestSpectrumAnalyzer : public QObject
{
    Q_OBJECT
    std::unique_ptr<SpectrumAnalyzer> a;

    void configure(float rate, float window, float step, float percent)
    {
        a->setDataFrequency(rate);
        a->setWindowSize(window);
        a->setWindowStep(step);
        a->setSmoothingWindowPercent(percent);
    }

private Q_SLOTS:
    void init() { a = std::make_unique<SpectrumAnalyzer>(); }

    void configuration_data()
    {
        QTest::addColumn<QList<float>>("in");     // rate, window, step, percent
        QTest::addColumn<QList<float>>("stored"); // the same after the clamps, then the bin step
        QTest::addColumn<QList<int>>("sizes");    // N, step, nfft, bins
        QTest::newRow("125Hz 4s 0.1s") << QList<float>{125, 4, 0.1f, 10} << QList<float>{125, 4, 0.1f, 10, 0.244140625f}
                                       << QList<int>{500, 13, 512, 257};
        QTest::newRow("half rounds up") << QList<float>{125, 0.7f, 0.3f, 0} << QList<float>{125, 0.7f, 0.3f, 0, 0.9765625f}
                                        << QList<int>{88, 38, 128, 65};
        QTest::newRow("clamped low") << QList<float>{-5, 0.01f, 0.001f, -3} << QList<float>{0, 0.1f, 0.01f, 0, 0}
                                     << QList<int>{0, 0, 1, 1};
        QTest::newRow("clamped high") << QList<float>{100, 0.05f, 0.001f, 80} << QList<float>{100, 0.1f, 0.01f, 50, 6.25f}
                                      << QList<int>{10, 1, 16, 9};
    }
    void configuration()
    {
        QFETCH(QList<float>, in);
        QFETCH(QList<float>, stored);
        QFETCH(QList<int>, sizes);
        configure(in[0], in[1], in[2], in[3]);
        QCOMPARE((QList<float>{a->getDataFrequency(), a->getWindowSize(), a->getWindowStep(),
                               a->getSmoothingWindowPercent(), a->getFrequencyStep()}), stored);
        QCOMPARE((QList<int>{a->getWindowSamples(), a->getStepSamples(), a->getNFFT(), int(a->getFrequencies().size())}), sizes);
        QCOMPARE(a->getFrequencies().last(), stored[4] * (sizes[3] - 1));
    }

    void wrongLengthConstantAndNonsense()
    {
        a->addRhythm("alpha", 8, 14);
        configure(125, 4, 0.1f, 50);
        QSignalSpy rhythms(a.get(), &SpectrumAnalyzer::spectrumRhythmsCalculated);
        QVERIFY(a->calculateSpectrum(QList<float>(499, 1.0f)).isEmpty());
        QCOMPARE(rhythms.count(), 0);
        // A constant is all mean: zero spectrum, zero total, no rhythms.
        QCOMPARE(a->calculateSpectrum(QList<float>(500, 7.0f)), QList<float>(257, 0.0f));
        QCOMPARE(rhythms.count(), 1);
        QVERIFY((rhythms.at(0).at(0).value<QMap<QString, float>>().isEmpty()));
        configure(INFINITY, NAN, NAN, NAN); // cut to a bounded window, never a crash
        QCOMPARE(a->getWindowSamples(), SpectrumAnalyzer::MaxWindowSamples);
        QCOMPARE(a->getSmoothingWindowPercent(), 0.0f);
    }

    // With its correction the taper keeps a bin-centred sine at its amplitude at every percent.
    void sinePeak_data()
    {
        QTest::addColumn<float>("rate");
        QTest::addColumn<float>("percent");
        QTest::addColumn<int>("bin");
        QTest::newRow("125Hz no taper") << 125.0f << 0.0f << 41;
        QTest::newRow("250Hz tukey 10") << 250.0f << 10.0f << 100;
        QTest::newRow("125Hz hann 50") << 125.0f << 50.0f << 80;
    }
    void sinePeak()
    {
        QFETCH(float, rate);
        QFETCH(float, percent);
        QFETCH(int, bin);
        configure(rate, 4.096f, 1, percent); // a power-of-two window: no zero padding
        const QList<float> s = a->calculateSpectrum(sines(rate, a->getWindowSamples(), {{bin * rate / a->getNFFT(), 7.5}}, 3));
        QCOMPARE(int(std::max_element(s.begin(), s.end()) - s.begin()), bin);
        QVERIFY(std::fabs(s[bin] - 7.5) < 1e-4 * 7.5);
    }

    void rhythmBands()
    {
        a->addRhythm("a", 8, 13);
        a->addRhythm(SpectrumRhythm("b", 13, 20));
        a->addRhythm("beyond", 30, 80); // no bin reaches 80 Hz: skipped, global end untouched
        configure(128, 4, 1, 0);        // 0.25 Hz bins
        QCOMPARE(a->getRhythmIndexes(), (QList<QPair<int, int>>{{32, 52}, {52, 80}, {120, 0}}));
        QCOMPARE((QPair<int, int>(a->getGlobalStart(), a->getGlobalEnd())), (QPair<int, int>(32, 80)));
        for (float f : {8.0f, 13.0f}) { // 8 Hz belongs to "a", 13 Hz to "b"
            a->calculateSpectrum(sines(128, 512, {{f, 5}}));
            const QMap<QString, float> r = a->getLastRhythms();
            QCOMPARE(r.keys(), (QStringList{"a", "b", "sum"}));
            QVERIFY(std::fabs(r["sum"] - 5) < 1e-3);
            QVERIFY(std::fabs(r[f == 8 ? "a" : "b"] - 100) < 1e-2 && r[f == 8 ? "b" : "a"] < 1e-2);
        }
    }

    void oneSpectrumPerCallRhythmsFirst()
    {
        a->addRhythm("alpha", 8, 14);
        configure(125, 4, 0.1f, 10);
        QStringList order;
        connect(a.get(), &SpectrumAnalyzer::spectrumRhythmsCalculated, this, [&] { order << "rhythms"; });
        connect(a.get(), &SpectrumAnalyzer::spectrumCalculated, this, [&] { order << "spectrum"; });
        QCOMPARE(a->addDataSample(sines(125, 3 * 500, {{10, 1}})).size(), 257);
        QCOMPARE(order, (QStringList{"rhythms", "spectrum"}));
        QCOMPARE(a->getBufferedSampleCount(), 3 * 500 - 13);
        a->setWindowStep(0.1f); // a refresh keeps the buffer
        QCOMPARE(a->addDataSample(QList<float>()).size(), 257); // the backlog drains one per call
        QCOMPARE(a->getBufferedSampleCount(), 3 * 500 - 26);
    }

    void customRhythmAndStatistics()
    {
        configure(128, 4, 1, 0);
        QCOMPARE(a->calculateCustomRhythm(8, 12), 0.0f); // no spectrum yet
        a->calculateSpectrum(sines(128, 512, {{10, 1000}}));
        // No rhythms, so no total: the truncated integer mean of the 257 bins, 999 / 257 = 3.
        QVERIFY(std::fabs(a->calculateCustomRhythm(8, 12) - 1000.0f / 3) < 0.01);
        a->addRhythm("alpha", 8, 14);
        a->calculateSpectrum(sines(128, 512, {{9, 2}, {11, 1}}));
        QVERIFY(std::fabs(a->calculateCustomRhythm(8, 10) - 2.0f / 3) < 1e-4); // a fraction
        QVERIFY(std::fabs(a->calcWeightedAverageFrequency("alpha") - 29.0f / 3) < 1e-4);
        QCOMPARE(a->calcMaximumDominantFrequency("alpha", 0.6), 9.0f); // 9 Hz holds 2/3 of the band
        QCOMPARE(a->calcMaximumDominantFrequency("alpha", 0.7), 0.0f);
        QCOMPARE(a->calcWeightedAverageFrequency("beta") + a->calcMaximumDominantFrequency("beta", 0), 0.0f);
    }

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
            double worst = 0, peak = 0; // against a direct DFT in double
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
