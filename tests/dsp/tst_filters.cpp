#include "dsp/ButterworthFilter.h"
#include "dsp/FIRfilter.h"
#include "dsp/IIRFilter.h"
#include "dsp/NotchFilter.h"

#include <QtTest>

#include <array>
#include <cmath>
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
    const float thetaP = (highPass ? fs - f1 : f1) / fs, theta = f1 / fs;
    const float w = float(std::tan(M_PI * double(thetaP))); // double, as the design does
    // c0 + c1*u + c2*u^2 with u = -(z^-1 + al) / (1 + al*z^-1), times (1 + al*z^-1)^2.
    const LD al = -std::cos(Pi * (LD(thetaP) + theta)) / std::cos(Pi * (LD(thetaP) - theta));
    auto map = [al](const std::array<LD, 3>& c) {
        return std::array<LD, 3>{c[0] - c[1] * al + c[2] * al * al, 2 * al * (c[0] + c[2]) - (1 + al * al) * c[1],
                                 al * al * c[0] - al * c[1] + c[2]};
    };
    for (int k = 0; k < n / 2; ++k) {
        const LD x = (2 * k + 1) * Pi / (2 * n);
        const float re = float(-LD(w) * std::cos(x)), im = float(LD(w) * std::sin(x));
        const LD d = 1 - LD((1.0f - re) * re) + LD(im) * im; // that product is formed in float
        const float zr = float((1 - LD(re) * re - LD(im) * im) / d), zi = float(2 * LD(im) / d);
        std::array<LD, 3> a{1, -2 * LD(zr), LD(zr) * zr + LD(zi) * zi};
        const LD s = a[0] + a[1] + a[2];
        std::array<LD, 3> b{s / 4, s / 2, s / 4};
        if (highPass) {
            a = map(a);
            b = map(b);
        }
        out.gain = float(out.gain * (b[0] / a[0]));
        out.sections.push_back({1, float(b[1] / b[0]), float(b[2] / b[0]), 1, float(a[1] / a[0]), float(a[2] / a[0])});
    }
    return out;
}

void compareCascade(const IIRFilter* cascade, const Design& expected)
{
    QVERIFY(cascade && cascade->isCascade());
    QCOMPARE(cascade->getSectionCount(), int(expected.sections.size()));
    QVERIFY(std::fabs(cascade->getGain() - expected.gain) <= 1e-5 * std::fabs(expected.gain));
    for (int k = 0; k < cascade->getSectionCount(); ++k) {
        const QList<float> ba = cascade->getSection(k)->getB() + cascade->getSection(k)->getA();
        QCOMPARE(ba.size(), 6);
        for (int i = 0; i < 6; ++i)
            QVERIFY2(std::fabs(ba[i] - expected.sections[k][i]) < 1e-5,
                     qPrintable(QString("coefficient %1 of section %2").arg(i).arg(k)));
    }
}

// Steady-state amplitude gain of a filter for a sine at f Hz: 20 s to settle, 10 s measured.
double sineGain(AbstractFilter& filter, double f, double fs)
{
    filter.Reset();
    double inPower = 0, outPower = 0;
    for (int i = 0; i < int(30 * fs); ++i) {
        const float x = float(std::sin(2 * M_PI * f * i / fs)), y = filter.InternalProcess(x);
        inPower += i < int(20 * fs) ? 0 : double(x) * x;
        outPower += i < int(20 * fs) ? 0 : double(y) * y;
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

// Every filter kind and block path: FIR with one to five sections, each Butterworth mode
// (7 is no mode: a pass-through), a band-pass without its high-pass stage, notch, direct IIR.
std::vector<std::unique_ptr<AbstractFilter>> filterZoo()
{
    std::vector<std::unique_ptr<AbstractFilter>> filters;
    for (int order = 1; order <= 10; ++order)
        for (int type : {0, 1})
            filters.emplace_back(new FIRfilter(AbstractFilter::FilterTypeEnum(type), AbstractFilter::Hann, order,
                                               250, type ? 2 : 40));
    for (int type : {0, 1, 2, 3, 7})
        filters.emplace_back(new ButterworthFilter(AbstractFilter::FilterTypeEnum(type), 6, 500, 5, 40));
    filters.emplace_back(new ButterworthFilter(AbstractFilter::BandPass, 4, 250, 0, 30));
    filters.emplace_back(new NotchFilter(250, 50, 2));
    QList<float> b{0.5f, 0.25f, -0.125f, 0.0625f}, a{1, -0.3f};
    filters.emplace_back(new IIRFilter(&b, &a));
    return filters;
}

// One Butterworth construction and the cascades it must build: "LP 40" is a low-pass stage at
// 40 Hz, "" no stage; with neither, the design is degenerate and the filter passes its input.
struct ButterCase
{
    int type, order;
    float fs, f1, f2;
    QString second, first;
    int sections; // of each stage
};

} // namespace

Q_DECLARE_METATYPE(ButterCase)

class TestFilters : public QObject
{
    Q_OBJECT
private Q_SLOTS:
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

    void butterworthDesign_data()
    {
        QTest::addColumn<ButterCase>("c");
        // A plain low-pass takes its cut-off from f1, a plain high-pass from f2.
        QTest::newRow("LP 40/250 order 4") << ButterCase{0, 4, 250, 40, 999, "LP 40", "", 2};
        QTest::newRow("LP odd order 3 rounds up") << ButterCase{0, 3, 250, 40, 999, "LP 40", "", 2};
        QTest::newRow("LP order 25 capped at 20") << ButterCase{0, 25, 500, 30, 999, "LP 30", "", 10};
        QTest::newRow("LP 1/125 order 8") << ButterCase{0, 8, 125, 1, 999, "LP 1", "", 4};
        QTest::newRow("LP clamped to fs/2") << ButterCase{0, 4, 250, 300, 0, "LP 125", "", 2};
        QTest::newRow("HP 2/250 order 4") << ButterCase{1, 4, 250, 999, 2, "", "HP 2", 2};
        QTest::newRow("HP 1/500 order 7") << ButterCase{1, 7, 500, 999, 1, "", "HP 1", 4};
        QTest::newRow("HP 30/125 order 2") << ButterCase{1, 2, 125, 999, 30, "", "HP 30", 1};
        QTest::newRow("band-pass 1-30") << ButterCase{2, 4, 250, 1, 30, "HP 1", "LP 30", 2};
        QTest::newRow("band-stop 45-55") << ButterCase{3, 4, 250, 45, 55, "LP 45", "HP 55", 2};
        QTest::newRow("HP at 0 Hz") << ButterCase{1, 4, 250, 1, 0, "", "", 0};
        QTest::newRow("LP clamped to 0 Hz") << ButterCase{0, 4, 250, -5, 0, "", "", 0};
    }
    void butterworthDesign()
    {
        QFETCH(ButterCase, c);
        ButterworthFilter filter(AbstractFilter::FilterTypeEnum(c.type), c.order, c.fs, c.f1, c.f2);
        if (c.first.isEmpty() && c.second.isEmpty()) {
            for (float x : testSignal(50))
                QCOMPARE(filter.InternalProcess(x), x);
            return;
        }
        for (const auto& [cascade, stage] : {std::pair(filter.getSecondCascade(), c.second),
                                             std::pair(filter.getFirstCascade(), c.first)}) {
            if (stage.isEmpty()) {
                QVERIFY(!cascade);
                continue;
            }
            const Design expected = referenceButter(stage.startsWith("HP"), c.order, stage.mid(3).toFloat(), c.fs);
            QCOMPARE(int(expected.sections.size()), c.sections);
            compareCascade(cascade, expected);
        }
    }

    void oddAndDegenerateDesigns()
    {
        QList<QList<float>> sections{{7, 7, 7, 7, 7, 7}};
        float gain = 3;
        ButterworthFilter::Butter(&sections, &gain, AbstractFilter::BandPass, 4, 1, 30, 250);
        QCOMPARE(gain, 1.0f); // band types are not designed there: only the gain is reset
        QCOMPARE(sections, (QList<QList<float>>{{7, 7, 7, 7, 7, 7}}));
        QCOMPARE(FIRfilter(AbstractFilter::LowPass, AbstractFilter::Hamming, 3, 250, 40).getSectionCount(), 2);
        QCOMPARE(FIRfilter(AbstractFilter::LowPass, AbstractFilter::Hamming, 0, 250, 40).InternalProcess(1.25f), 1.25f);
    }

    void frequencyResponses()
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
        // Notch at 50 Hz, bandwidth 1 at 250 Hz: pole radius R = 1 - 3/250, unit gain at DC.
        NotchFilter notch(250, 50, 1);
        QVERIFY(std::fabs(notch.getFilter()->getA()[2] - 0.988f * 0.988f) < 1e-6);
        float y = 0;
        for (int i = 0; i < 5000; ++i)
            y = notch.InternalProcess(1.0f);
        QVERIFY(std::fabs(y - 1) < 1e-4);
        QVERIFY(sineGain(notch, 50, 250) < 0.01);
        QVERIFY(std::fabs(sineGain(notch, 10, 250) - 1) < 0.01);
    }

    // The block paths are separate fast loops; every entry point must give exactly the
    // per-sample results, across block boundaries, on strided buffers and after Reset.
    void entryPointsMatchPerSample()
    {
        const auto filters = filterZoo(), blocks = filterZoo(), strided = filterZoo();
        const std::vector<float> x = testSignal(500);
        const int n = int(x.size());
        for (size_t k = 0; k < filters.size(); ++k) {
            AbstractFilter& filter = *filters[k];
            const QString label = QString("%1 #%2").arg(filter.objectName()).arg(k);
            const bool fir = qobject_cast<FIRfilter*>(&filter);
            QCOMPARE(filter.objectName(), fir ? QString("FIRFilter") : filter.metaObject()->className());
            QCOMPARE(int(filter.getImpulseResponse()), fir ? 0 : 1);
            QList<float> expected, data(x.begin(), x.end()), interleaved(2 * n, 0.0f);
            for (int i = 0; i < n; ++i) {
                expected.append(filter.InternalProcess(x[i]));
                interleaved[2 * i] = x[i];
            }
            for (int start = 0, size = 1; start < n; start += size, size = size * 3 + 1) {
                const int count = std::min(size, n - start);
                blocks[k]->Process(data.data() + start, count);
                strided[k]->Process(interleaved.data() + 2 * start, count, 2);
            }
            for (int i = 0; i < n; ++i)
                QVERIFY2(data[i] == expected[i] && interleaved[2 * i] == expected[i], qPrintable(label));
            filter.Reset();
            QList<float> list(x.begin(), x.end()), in = list, out, shortOut(10, 0.0f);
            filter.Process(&list, 0); // nothing, not even the state
            filter.Process(&list, -1);
            filter.Reset();
            filter.Process(&in, &out, -1); // an empty out is sized first
            filter.Reset();
            filter.Process(&in, &shortOut, n); // never past the shorter list
            QVERIFY2(list == expected && out == expected, qPrintable(label + " lists"));
            QVERIFY2(shortOut == expected.mid(0, 10), qPrintable(label + " short out"));
        }
    }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
