#include "dsp/RhythmNormalizer.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

using Params = QList<double>; // the eleven init arguments, in order

RhythmNormalizer make(const Params& p)
{
    return RhythmNormalizer(p[0], p[1], p[2], p[3], int(p[4]), p[5], p[6], int(p[7]), int(p[8]),
                            int(p[9]), p[10] != 0);
}

// Low 0 and top 10 stay fixed: both estimate windows (20) exceed the history (10).
Params fixedRange(double top, int smoothing, bool limit)
{
    return {0, top, 0, 100, 20, 0, 100, 20, 10, double(smoothing), double(limit)};
}

// Alpha share wandering between 20 and 40 % with noise, from a fixed seed.
float nextAlpha(quint32& state, float& level)
{
    const auto uniform = [&state] { // -1 ... 1
        state = state * 1664525u + 1013904223u;
        return float(state >> 8) / float(1 << 23) - 1.0f;
    };
    level = std::clamp(level + 0.5f * uniform(), 22.0f, 38.0f);
    return level + 2.0f * uniform();
}

int stepsUntil(RhythmNormalizer& n, float input, float threshold, bool rising)
{
    for (int step = 1; step <= 100; ++step) {
        const float level = n.addValue(input, step);
        if (rising ? level > threshold : level < threshold)
            return step;
    }
    return 1000;
}

} // namespace

class TestRhythmNormalizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void prefill()
    {
        for (int size : {10, 7, 0, -3}) {
            RhythmNormalizer n(5, 50, 10, 100, 4, 60, 100, 4, size, 256, true);
            QCOMPARE(n.getLow(), 10.0f); // only the minimums apply at init
            QCOMPARE(n.getTop(), 60.0f);
            const QList<float>& history = n.getHistoryOfValues();
            QCOMPARE(history.size(), size > 0 ? size + size % 2 : 0);
            for (int i = 0; i < history.size(); ++i)
                QCOMPARE(history[i], i % 2 ? 50.0f : 5.0f);
            QCOMPARE(int(n.getSmoothing()), 0); // 256 keeps its low byte ...
            QCOMPARE(n.addValue(30, 9) == 0, size <= 0);
            QCOMPARE(int(n.getSmoothing()), size > 0 ? 1 : 0); // ... and is used as 1
            QCOMPARE(n.getLastValue().timestamp, size > 0 ? 9 : 0);
        }
    }

    // Expected state after feeding `inputs` to a normalizer made from `params`.
    void scenarios_data()
    {
        QTest::addColumn<Params>("params");
        QTest::addColumn<QList<float>>("inputs");
        QTest::addColumn<float>("low");
        QTest::addColumn<float>("top");
        QTest::addColumn<float>("level");
        QTest::addColumn<float>("value");
        const QList<float> zeroToNine{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        const QList<float> forties(40, 40.0f);
        QTest::newRow("low waits for a full window")
            << Params{7, 90, 0, 100, 20, 0, 100, 5, 10, 1, 1} << zeroToNine << 7.f << 8.f << 100.f << 9.f;
        QTest::newRow("0..9") << Params{50, 60, 0, 100, 10, 0, 100, 10, 10, 1, 1} << zeroToNine
                              << 2.f << 7.f << 100.f << 9.f;
        QTest::newRow("0..9 low minimum") << Params{50, 60, 3, 100, 10, 0, 100, 10, 10, 1, 1}
                                          << zeroToNine << 3.f << 7.f << 100.f << 9.f;
        QTest::newRow("0..9 low maximum") << Params{50, 60, 0, 1.5, 10, 0, 100, 10, 10, 1, 1}
                                          << zeroToNine << 1.5f << 7.f << 100.f << 9.f;
        QTest::newRow("0..9 crossed clamps") << Params{50, 60, 5, 3, 10, 0, 100, 10, 10, 1, 1}
                                             << zeroToNine << 3.f << 7.f << 100.f << 9.f;
        // A constant input leaves low unchanged and moves top to it, within the top clamps.
        QTest::newRow("constant") << Params{5, 80, 0, 100, 1, 0, 100, 1, 1, 1, 1} << forties
                                  << 5.f << 40.f << 100.f << 40.f;
        QTest::newRow("constant top minimum") << Params{5, 80, 0, 100, 1, 50, 100, 1, 1, 1, 1}
                                              << forties << 5.f << 50.f << 77.f << 40.f;
        QTest::newRow("constant below low") << Params{5, 80, 0, 100, 1, 0, 4, 1, 1, 1, 1}
                                            << forties << 5.f << 5.01f << 100.f << 40.f;
        // While a window of 10 fills, low climbs to 40 as well; top is then widened above it.
        QTest::newRow("constant window 10") << Params{5, 80, 0, 100, 10, 0, 100, 10, 10, 1, 1}
                                            << forties << 40.f << 40.01f << 0.f << 40.f;
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const QList<std::tuple<const char*, bool, float, float, float>> limits{
            {"unlimited", false, 50, 500, 50},      {"unlimited large", false, 1000, 10000, 1000},
            {"limited", true, 50, 100, 50},         {"limited large", true, 1000, 100, 100},
            {"negative", false, -5, 0, 0},          {"nan", false, nan, 0, 0},
            {"infinite", false, INFINITY, 2147483520.0f, INFINITY}};
        for (const auto& [name, limit, input, level, value] : limits)
            QTest::newRow(name) << fixedRange(10, 1, limit) << QList<float>{input} << 0.f
                                << 10.f << level << value;
        const QList<std::pair<int, float>> smoothed{{3, 20}, {2, 25}, {258, 25}, {256, 30}};
        for (const auto& [smoothing, level] : smoothed)
            QTest::newRow(qPrintable(QString("smoothing %1").arg(smoothing)))
                << fixedRange(100, smoothing, true) << QList<float>{10.9f, 20.9f, 30.9f} << 0.f
                << 100.f << level << 30.9f;
    }
    void scenarios()
    {
        QFETCH(Params, params);
        QFETCH(QList<float>, inputs);
        RhythmNormalizer n = make(params);
        for (int i = 0; i < inputs.size(); ++i)
            n.addValue(inputs[i], 100 + i);
        const RhythmNormSample& last = n.getLastValue();
        QTEST(last.low, "low");
        QTEST(last.top, "top");
        QTEST(last.level, "level");
        QTEST(last.value, "value");
        QCOMPARE(last.timestamp, 100 + inputs.size() - 1);
        QCOMPARE(n.getLow(), last.low);
        QCOMPARE(n.getTop(), last.top);
    }

    void partialValues()
    {
        RhythmNormalizer n = make(fixedRange(100, 1, true));
        QVERIFY(!n.addValueFromPartial(5));
        n.addPartialValue(99);
        n.clearPartialValues();
        for (float v : {10.0f, 20.0f, 60.0f})
            n.addPartialValue(v);
        QCOMPARE(n.partialValuesCount(), 3);
        QVERIFY(n.addValueFromPartial(1234));
        QCOMPARE(n.partialValuesCount(), 0);
        QCOMPARE(n.getLastValue().value, 30.0f);
        QCOMPARE(n.getLastValue().timestamp, 1234);
        QVERIFY(!n.addValueFromPartial(1235));
    }

    // Engine defaults: a long wandering stream stays in range, then steps are followed within
    // the bounds of docs/rhythm-normalizer.md (15 steps with smoothing 16).
    void longRunAndSteps()
    {
        RhythmNormalizer n;
        quint32 seed = 20240611u;
        float alpha = 30;
        for (int i = 0; i < 6000; ++i) {
            const float level = n.addValue(nextAlpha(seed, alpha), i);
            QVERIFY2(level >= 0 && level <= 100, qPrintable(QString::number(level)));
            QVERIFY(n.getLow() < n.getTop());
            // Once the pre-fill has left the history, both are means of stream values.
            if (i >= 1000)
                QVERIFY(n.getLow() >= 20 && n.getTop() <= 40.01f);
        }
        QVERIFY(stepsUntil(n, 60, 90, true) <= 15);
        for (int i = 0; i < 20; ++i)
            n.addValue(60, i);
        QVERIFY(n.getLow() > 10); // the drop below goes under low
        QVERIFY(stepsUntil(n, 10, 10, false) <= 15);
        QCOMPARE(n.getHistoryOfLow().size(), 1000);
        QCOMPARE(n.getHistoryOfTop().size(), 1000);
        QCOMPARE(n.getHistoryOfRawLevel().size(), 1000);
        QCOMPARE(n.getHistoryOfRawLevel().last(), n.getLastRawLevel());

        n.init(0, 100, 0, 100, 8, 0, 100, 8, 2000, 4, true); // a larger history keeps more
        for (int i = 0; i < 2500; ++i)
            n.addValue(float(i % 50), i);
        QCOMPARE(n.getHistoryOfValues().size(), 2000);
        QCOMPARE(n.getHistoryOfLow().size(), 2000);
    }
};

QTEST_GUILESS_MAIN(TestRhythmNormalizer)
#include "tst_rhythmnormalizer.moc"
