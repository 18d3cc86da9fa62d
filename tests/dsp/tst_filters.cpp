#include "dsp/ButterworthFilter.h"
#include "dsp/FIRfilter.h"
#include "dsp/IIRFilter.h"
#include "dsp/NotchFilter.h"

#include <QtTest>

#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace {

using LD = long double;
const LD Pi = 3.141592653589793238462643383279502884L;

struct Design
{
    std::vector<std::array<float, 6>> sections;
    float gain = 1;
};

// Independent rewrite of the Butterworth design: float where the design rounds to float,
// long double elsewhere; the high-pass substitution is written out in closed form.
Design referenceButter(bool highPass, int order, float f1, float fs)
{
    Design out;
    const int n = std::min(order + order % 2, 20);
    const float fp = highPass ? fs - f1 : f1;
    const float thetaP = fp / fs;
    const float theta = f1 / fs;
    const float w = float(std::tan(M_PI * double(thetaP))); // double, as the design does
    for (int k = 0; k < n / 2; ++k) {
        const LD x = (2 * k + 1) * Pi / (2 * n);
        const float re = float(-LD(w) * std::cos(x));
        const float im = float(LD(w) * std::sin(x));
        const float product = (1.0f - re) * re;
        const LD d = 1 - LD(product) + LD(im) * im;
        const float zr = float((1 - LD(re) * re - LD(im) * im) / d);
        const float zi = float(2 * LD(im) / d);
        LD a[3] = {1, -2 * LD(zr), LD(zr) * zr + LD(zi) * zi};
        const LD s = a[0] + a[1] + a[2];
        LD b[3] = {s / 4, s / 2, s / 4};
        if (highPass) {
            const LD al = -std::cos(Pi * (LD(thetaP) + theta)) / std::cos(Pi * (LD(thetaP) - theta));
            // c0 + c1*u + c2*u^2 with u = -(z^-1 + al) / (1 + al*z^-1), times (1 + al*z^-1)^2.
            auto map = [al](LD* c) {
                const LD t0 = c[0] - c[1] * al + c[2] * al * al;
                const LD t1 = 2 * al * c[0] - (1 + al * al) * c[1] + 2 * al * c[2];
                const LD t2 = al * al * c[0] - al * c[1] + c[2];
                c[0] = t0; c[1] = t1; c[2] = t2;
            };
            map(b);
            map(a);
            const LD a0 = a[0];
            for (int i = 0; i < 3; ++i) {
                b[i] /= a0;
                a[i] /= a0;
            }
        }
        out.gain = float(out.gain * b[0]);
        out.sections.push_back({float(b[0] / b[0]), float(b[1] / b[0]), float(b[2] / b[0]),
                                float(a[0]), float(a[1]), float(a[2])});
    }
    return out;
}

void compareCascade(const IIRFilter* cascade, const Design& expected)
{
    QVERIFY(cascade);
    QVERIFY(cascade->isCascade());
    QCOMPARE(cascade->getSectionCount(), int(expected.sections.size()));
    QVERIFY(std::fabs(cascade->getGain() - expected.gain) <= 1e-5 * std::fabs(expected.gain));
    for (int k = 0; k < cascade->getSectionCount(); ++k) {
        const QList<float> b = cascade->getSection(k)->getB();
        const QList<float> a = cascade->getSection(k)->getA();
        for (int i = 0; i < 3; ++i) {
            QVERIFY2(std::fabs(b[i] - expected.sections[k][i]) < 1e-5, qPrintable(QString("b%1 of section %2").arg(i).arg(k)));
            QVERIFY2(std::fabs(a[i] - expected.sections[k][i + 3]) < 1e-5, qPrintable(QString("a%1 of section %2").arg(i).arg(k)));
        }
    }
}

// Steady-state amplitude gain of a filter for a sine at f Hz.
double sineGain(AbstractFilter& filter, double f, double fs)
{
    filter.Reset();
    const int settle = int(20 * fs), measure = int(10 * fs);
    double inPower = 0, outPower = 0;
    for (int i = 0; i < settle + measure; ++i) {
        const float x = float(std::sin(2 * M_PI * f * i / fs));
        const float y = filter.InternalProcess(x);
        if (i >= settle) {
            inPower += double(x) * x;
            outPower += double(y) * y;
        }
    }
    return std::sqrt(outPower / inPower);
}

std::vector<float> testSignal(int count)
{
    std::vector<float> x(count);
    for (int i = 0; i < count; ++i)
        x[i] = float(10 * std::sin(0.05 * i) + 3 * std::sin(1.3 * i) + (i % 7) - 3);
    return x;
}

} // namespace

class TestFilters : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void identity()
    {
        QList<float> b{1}, a{1};
        NotchFilter notch(250, 50, 2);
        FIRfilter fir(AbstractFilter::LowPass, AbstractFilter::Hamming, 4, 250, 40);
        QCOMPARE(IIRFilter(&b, &a).objectName(), QString("IIRFilter"));
        QCOMPARE(ButterworthFilter(AbstractFilter::LowPass, 4, 250, 40, 0).objectName(), QString("ButterworthFilter"));
        QCOMPARE(notch.objectName(), QString("NotchFilter"));
        QCOMPARE(fir.objectName(), QString("FIRFilter"));
        QCOMPARE(int(fir.getImpulseResponse()), 0);
        QCOMPARE(int(notch.getImpulseResponse()), 1);
    }

    void iirDirectFormMatchesDifferenceEquation()
    {
        // a[0] = 5 must be ignored; b longer than a.
        QList<float> b{0.5f, 0.25f, -0.125f, 0.0625f}, a{5.0f, -0.3f, 0.1f};
        IIRFilter filter(&b, &a);
        const std::vector<float> x = testSignal(200);
        std::vector<double> y(x.size());
        for (size_t n = 0; n < x.size(); ++n) {
            auto xs = [&](int k) { return n >= size_t(k) ? double(x[n - k]) : 0.0; };
            auto ys = [&](int k) { return n >= size_t(k) ? y[n - k] : 0.0; };
            y[n] = 0.5 * xs(0) + 0.25 * xs(1) - 0.125 * xs(2) + 0.0625 * xs(3) + 0.3 * ys(1) - 0.1 * ys(2);
            QVERIFY(std::fabs(filter.InternalProcess(x[n]) - y[n]) < 1e-5 * (1 + std::fabs(y[n])));
        }
    }

    void butterDesign_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("order");
        QTest::addColumn<float>("cutoff");
        QTest::addColumn<float>("fs");
        QTest::addColumn<int>("sections");
        QTest::newRow("LP 40/250 order 4") << 0 << 4 << 40.f << 250.f << 2;
        QTest::newRow("LP odd order 3 rounds up") << 0 << 3 << 40.f << 250.f << 2;
        QTest::newRow("LP order 25 capped at 20") << 0 << 25 << 30.f << 500.f << 10;
        QTest::newRow("LP 1/125 order 8") << 0 << 8 << 1.f << 125.f << 4;
        QTest::newRow("HP 2/250 order 4") << 1 << 4 << 2.f << 250.f << 2;
        QTest::newRow("HP 1/500 order 7") << 1 << 7 << 1.f << 500.f << 4;
        QTest::newRow("HP 30/125 order 2") << 1 << 2 << 30.f << 125.f << 1;
    }
    void butterDesign()
    {
        QFETCH(int, type);
        QFETCH(int, order);
        QFETCH(float, cutoff);
        QFETCH(float, fs);
        QFETCH(int, sections);
        const Design expected = referenceButter(type == 1, order, cutoff, fs);
        QCOMPARE(int(expected.sections.size()), sections);
        // Through the filter object: low-pass from the first argument, high-pass from the second.
        ButterworthFilter filter(AbstractFilter::FilterTypeEnum(type), order, fs,
                                 type == 0 ? cutoff : 999.f, type == 0 ? 999.f : cutoff);
        compareCascade(type == 0 ? filter.getSecondCascade() : filter.getFirstCascade(), expected);
        QVERIFY(!(type == 0 ? filter.getFirstCascade() : filter.getSecondCascade()));
    }

    void butterIgnoresBandTypes()
    {
        QList<QList<float>> sections{{7, 7, 7, 7, 7, 7}};
        float gain = 3;
        ButterworthFilter::Butter(&sections, &gain, AbstractFilter::BandPass, 4, 1, 30, 250);
        QCOMPARE(gain, 1.0f);
        QCOMPARE(sections, (QList<QList<float>>{{7, 7, 7, 7, 7, 7}}));
    }

    void butterworthCascadeTable()
    {
        ButterworthFilter lowClamped(AbstractFilter::LowPass, 4, 250, 300, 0);
        compareCascade(lowClamped.getSecondCascade(), referenceButter(false, 4, 125, 250));
        QCOMPARE(lowClamped.getSecondCascade()->getSection(0)->getA(), (QList<float>{1, 2, 1}));
        ButterworthFilter bandPass(AbstractFilter::BandPass, 4, 250, 1, 30);
        compareCascade(bandPass.getSecondCascade(), referenceButter(true, 4, 1, 250));
        compareCascade(bandPass.getFirstCascade(), referenceButter(false, 4, 30, 250));
        ButterworthFilter bandStop(AbstractFilter::BandStop, 4, 250, 45, 55);
        compareCascade(bandStop.getSecondCascade(), referenceButter(false, 4, 45, 250));
        compareCascade(bandStop.getFirstCascade(), referenceButter(true, 4, 55, 250));
        QCOMPARE(bandStop.getMode(), 3);
        // A high-pass at 0 Hz (second argument; the first is ignored) or a low-pass clamped
        // to 0 Hz is a degenerate design: the stage passes its input.
        ButterworthFilter highZero(AbstractFilter::HighPass, 4, 250, 1, 0);
        ButterworthFilter lowNegative(AbstractFilter::LowPass, 4, 250, -5, 0);
        for (float x : testSignal(50)) {
            QCOMPARE(highZero.InternalProcess(x), x);
            QCOMPARE(lowNegative.InternalProcess(x), x);
        }
    }

    void butterworthBandResponses()
    {
        ButterworthFilter bandPass(AbstractFilter::BandPass, 4, 250, 1, 30);
        for (double f : {3.0, 10.0, 20.0})
            QVERIFY2(std::fabs(sineGain(bandPass, f, 250) - 1) < 0.1, qPrintable(QString::number(f)));
        for (double f : {0.1, 80.0})
            QVERIFY(sineGain(bandPass, f, 250) < 0.05);
        // Series low-pass(45) then high-pass(55): nothing passes, the mains band included.
        // (At 250 Hz the order-4 high-pass at 55 Hz would be unstable, hence 500 Hz.)
        ButterworthFilter bandStop(AbstractFilter::BandStop, 4, 500, 45, 55);
        for (double f : {0.5, 10.0, 30.0, 50.0, 60.0, 100.0, 200.0})
            QVERIFY2(sineGain(bandStop, f, 500) < 0.3, qPrintable(QString::number(f)));
    }

    void listEntryPoints()
    {
        const std::vector<float> x = testSignal(64);
        const QList<float> original(x.begin(), x.end());
        FIRfilter reference(AbstractFilter::HighPass, AbstractFilter::Rectangular, 4, 250, 2);
        QList<float> expected;
        for (float v : x)
            expected.append(reference.InternalProcess(v));

        FIRfilter filter(AbstractFilter::HighPass, AbstractFilter::Rectangular, 4, 250, 2);
        QList<float> list = original;
        filter.Process(&list, 0); // nothing, not even the state
        QCOMPARE(list, original);
        filter.Process(&list, -1);
        QCOMPARE(list, expected);

        filter.Reset();
        QList<float> in = original, out;
        filter.Process(&in, &out, -1); // empty out is sized first
        QCOMPARE(out, expected);
        QList<float> shortOut(10, 0.0f);
        filter.Process(&in, &shortOut, 64); // never past the shorter list
        QCOMPARE(shortOut.size(), 10);
    }

    // The block paths are separate fast loops; they must give exactly the per-sample results,
    // across block boundaries and on strided buffers.
    void blockMatchesPerSample()
    {
        using Factory = std::function<AbstractFilter*()>;
        std::vector<std::pair<QString, Factory>> factories;
        for (int order = 1; order <= 10; ++order)
            for (int type : {0, 1})
                factories.push_back({QString("FIR %1/%2").arg(type).arg(order), [=] {
                    return new FIRfilter(AbstractFilter::FilterTypeEnum(type), AbstractFilter::Hann, order, 250, type ? 2 : 40);
                }});
        for (int type : {0, 1, 2, 3, 7})
            factories.push_back({QString("Butterworth %1").arg(type), [=] {
                return new ButterworthFilter(AbstractFilter::FilterTypeEnum(type), 6, 500, 5, 40);
            }});
        factories.push_back({"Butterworth band-pass without high-pass", [] {
            return new ButterworthFilter(AbstractFilter::BandPass, 4, 250, 0, 30);
        }});
        factories.push_back({"notch", [] { return new NotchFilter(250, 50, 2); }});
        factories.push_back({"IIR 4/2", [] {
            QList<float> b{0.5f, 0.25f, -0.125f, 0.0625f}, a{1, -0.3f};
            return new IIRFilter(&b, &a);
        }});
        const std::vector<float> x = testSignal(500);
        for (const auto& [name, make] : factories) {
            std::unique_ptr<AbstractFilter> perSample(make()), blocks(make()), strided(make());
            std::vector<float> expected(x.size());
            for (size_t i = 0; i < x.size(); ++i)
                expected[i] = perSample->InternalProcess(x[i]);
            std::vector<float> data(x);
            std::vector<float> interleaved(2 * x.size());
            for (size_t i = 0; i < x.size(); ++i)
                interleaved[2 * i] = x[i];
            for (int start = 0, size = 1; start < int(x.size()); start += size, size = size * 3 + 1) {
                const int count = std::min(size, int(x.size()) - start);
                blocks->Process(data.data() + start, count);
                strided->Process(interleaved.data() + 2 * start, count, 2);
            }
            for (size_t i = 0; i < x.size(); ++i) {
                QVERIFY2(data[i] == expected[i], qPrintable(name));
                QVERIFY2(interleaved[2 * i] == expected[i], qPrintable(name + " strided"));
            }
        }
    }

    void resetReproducesOutput()
    {
        QList<float> b{0.2f, 0.3f}, a{1, -0.5f};
        std::vector<std::unique_ptr<AbstractFilter>> filters;
        filters.emplace_back(new IIRFilter(&b, &a));
        filters.emplace_back(new ButterworthFilter(AbstractFilter::BandPass, 6, 250, 1, 30));
        filters.emplace_back(new NotchFilter(250, 50, 2));
        filters.emplace_back(new FIRfilter(AbstractFilter::LowPass, AbstractFilter::Hann, 5, 250, 40));
        const std::vector<float> x = testSignal(300);
        for (auto& filter : filters) {
            std::vector<float> first(x), second(x);
            filter->Process(first.data(), int(first.size()));
            filter->Reset();
            filter->Process(second.data(), int(second.size()));
            QVERIFY2(first == second, qPrintable(filter->objectName()));
        }
    }

    void notch()
    {
        NotchFilter notch(250, 50, 1);
        const QList<float> a = notch.getFilter()->getA();
        const float r = 0.988f;
        QVERIFY(std::fabs(a[2] - r * r) < 1e-6);
        QVERIFY(std::fabs(a[1] + 2 * r * std::cos(2 * M_PI * 50 / 250)) < 1e-6);
        float y = 0;
        for (int i = 0; i < 5000; ++i)
            y = notch.InternalProcess(1.0f);
        QVERIFY(std::fabs(y - 1) < 1e-4);
        QVERIFY(sineGain(notch, 50, 250) < 0.01);
        QVERIFY(std::fabs(sineGain(notch, 10, 250) - 1) < 0.01);
    }

    void firSections()
    {
        FIRfilter odd(AbstractFilter::LowPass, AbstractFilter::Hamming, 3, 250, 40);
        QCOMPARE(odd.getOrder(), 4);
        QCOMPARE(odd.getSectionCount(), 2);
        FIRfilter none(AbstractFilter::LowPass, AbstractFilter::Hamming, 0, 250, 40);
        QCOMPARE(none.getSectionCount(), 0);
        QCOMPARE(none.InternalProcess(1.25f), 1.25f);
    }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
