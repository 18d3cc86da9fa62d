#include "dsp/RhythmNormalizer.h"

#include <QtTest>

#include <algorithm>

namespace {

// Low 0 and top as given stay fixed: both estimate windows (20) exceed the history (10).
RhythmNormalizer fixedRange(float top, int smoothing, bool limit)
{
    return RhythmNormalizer(0, top, 0, 100, 20, 0, 100, 20, 10, smoothing, limit);
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

Q_DECLARE_METATYPE(RhythmNormalizer)

class TestRhythmNormalizer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // ceil(size / 2) pairs (low, top); only the minimums apply at init; a history of 0 or less
    // makes the normalizer inert.
    void prefill()
    {
        for (int size : {10, 7, 0, -3}) {
            RhythmNormalizer n(5, 50, 10, 100, 4, 60, 100, 4, size, 1, true);
            QCOMPARE(n.getLow(), 10.0f);
            QCOMPARE(n.getTop(), 60.0f);
            QList<float> pairs;
            for (int i = 0; i < (size + 1) / 2; ++i)
                pairs << 5 << 50;
            QCOMPARE(n.getHistoryOfValues(), pairs);
            QCOMPARE(n.addValue(30, 9) == 0, size <= 0);
            QCOMPARE(n.getLastValue().timestamp, size > 0 ? 9 : 0);
        }
    }

    // Low, top, level and clamped input of the normalizer after it was fed `inputs`.
    void scenarios_data()
    {
        QTest::addColumn<RhythmNormalizer>("n");
        QTest::addColumn<QList<float>>("inputs");
        QTest::addColumn<QList<float>>("expected");
        const QList<float> zeroToNine{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        const QList<float> forties(40, 40.0f);
        QTest::newRow("low waits for a full window")
            << RhythmNormalizer(7, 90, 0, 100, 20, 0, 100, 5, 10, 1, true) << zeroToNine << QList<float>{7, 8, 100, 9};
        QTest::newRow("0..9") << RhythmNormalizer(50, 60, 0, 100, 10, 0, 100, 10, 10, 1, true) << zeroToNine << QList<float>{2, 7, 100, 9};
        // Minimum 5 above maximum 3: the maximum is applied last.
        QTest::newRow("0..9 crossed clamps")
            << RhythmNormalizer(50, 60, 5, 3, 10, 0, 100, 10, 10, 1, true) << zeroToNine << QList<float>{3, 7, 100, 9};
        // A constant input leaves low unchanged and moves top to it, within the top clamps.
        QTest::newRow("constant") << RhythmNormalizer(5, 80, 0, 100, 1, 0, 100, 1, 1, 1, true) << forties << QList<float>{5, 40, 100, 40};
        QTest::newRow("constant top minimum")
            << RhythmNormalizer(5, 80, 0, 100, 1, 50, 100, 1, 1, 1, true) << forties << QList<float>{5, 50, 77, 40};
        QTest::newRow("constant below low")
            << RhythmNormalizer(5, 80, 0, 100, 1, 0, 4, 1, 1, 1, true) << forties << QList<float>{5, 5.01f, 100, 40};
        // While a window of 10 fills, low climbs to 40 as well: equal to top, which is widened.
        QTest::newRow("constant window 10")
            << RhythmNormalizer(5, 80, 0, 100, 10, 0, 100, 10, 10, 1, true) << forties << QList<float>{40, 40.01f, 0, 40};
        const auto limits = [](const char* name, bool limit, float input, float level, float value) {
            QTest::newRow(name) << fixedRange(10, 1, limit) << QList<float>{input} << QList<float>{0, 10, level, value};
        };
        limits("unlimited", false, 50, 500, 50);
        limits("limited", true, 1000, 100, 100);
        limits("negative", false, -5, 0, 0);
        limits("nan", false, qQNaN(), 0, 0);
        limits("infinite", false, qInf(), 2147483520.0f, qInf());
        // Only the low byte of the smoothing length counts, and 0 is used as 1.
        for (const auto& [smoothing, level] : QList<std::pair<int, float>>{{3, 20}, {258, 25}, {256, 30}})
            QTest::newRow(qPrintable(QString("smoothing %1").arg(smoothing)))
                << fixedRange(100, smoothing, true) << QList<float>{10.9f, 20.9f, 30.9f} << QList<float>{0, 100, level, 30.9f};
    }
    void scenarios()
    {
        QFETCH(RhythmNormalizer, n);
        QFETCH(QList<float>, inputs);
        for (int i = 0; i < inputs.size(); ++i)
            n.addValue(inputs[i], 100 + i);
        const RhythmNormSample& last = n.getLastValue();
        QTEST((QList<float>{last.low, last.top, last.level, last.value}), "expected");
        QCOMPARE(last.timestamp, 100 + inputs.size() - 1);
    }

    void partialValues()
    {
        RhythmNormalizer n = fixedRange(100, 1, true);
        QVERIFY(!n.addValueFromPartial(5));
        n.addPartialValue(99);
        n.clearPartialValues();
        for (float v : {10.0f, 20.0f, 60.0f})
            n.addPartialValue(v);
        QVERIFY(n.addValueFromPartial(1234));
        QCOMPARE(n.partialValuesCount(), 0);
        QCOMPARE(n.getLastValue().value, 30.0f);
        QCOMPARE(n.getLastValue().timestamp, 1234);
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
        // The estimate histories stay bounded: max(history size, 1000) entries.
        QCOMPARE((QList<qsizetype>{n.getHistoryOfLow().size(), n.getHistoryOfTop().size(), n.getHistoryOfRawLevel().size()}),
                 (QList<qsizetype>{1000, 1000, 1000}));
        QCOMPARE(n.getHistoryOfRawLevel().last(), n.getLastRawLevel());
        n.init(0, 100, 0, 100, 8, 0, 100, 8, 2000, 4, true);
        for (int i = 0; i < 2500; ++i)
            n.addValue(float(i % 50), i);
        QCOMPARE(n.getHistoryOfValues().size(), 2000);
        QCOMPARE(n.getHistoryOfLow().size(), 2000);
    }
};

QTEST_GUILESS_MAIN(TestRhythmNormalizer)
#include "tst_rhythmnormalizer.moc"
