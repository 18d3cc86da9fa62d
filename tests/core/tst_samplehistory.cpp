#include "core/SampleHistory.h"

#include <QtTest>

#include <deque>
#include <random>

// The bounded channel history against a plain model: a deque that keeps the newest values.
class TestSampleHistory : public QObject
{
    Q_OBJECT

    static QList<float> listOf(const std::deque<float>& model) { return QList<float>(model.begin(), model.end()); }

private Q_SLOTS:
    // Random appends (some longer than the bound), bound changes both ways and grabs: the
    // history always holds exactly the model's newest values, in order.
    void keepsTheNewestValues()
    {
        std::mt19937 random(5);
        SampleHistory history;
        std::deque<float> model;
        int max = 50;
        history.setMaxSamples(max);
        float next = 0;
        for (int step = 0; step < 4000; ++step) {
            const unsigned kind = random() % 25;
            if (kind == 0) {
                max = int(random() % 300);
                history.setMaxSamples(max);
                while (model.size() > size_t(max))
                    model.pop_front();
            } else if (kind == 1) {
                QCOMPARE(history.take(), listOf(model));
                model.clear();
            } else {
                QList<float> values(int(random() % (kind == 2 ? 400 : 40)));
                for (float& value : values) {
                    value = next++;
                    model.push_back(value);
                }
                while (model.size() > size_t(max))
                    model.pop_front();
                history.append(values.constData(), int(values.size()));
            }
            QCOMPARE(history.size(), int(model.size()));
            if (step % 5 == 0)
                QCOMPARE(history.toList(), listOf(model));
        }
    }

    void degenerateInput()
    {
        SampleHistory history;
        const float values[] = {1, 2, 3};
        history.append(values, 3); // no bound set: keeps nothing
        QCOMPARE(history.size(), 0);
        history.setMaxSamples(-4);
        QCOMPARE(history.maxSamples(), 0);
        history.setMaxSamples(2);
        history.append(values, -1);
        history.append(values, 3);
        QCOMPARE(history.toList(), (QList<float>{2, 3}));
        history.setMaxSamples(0);
        QVERIFY(history.toList().isEmpty());
        QVERIFY(history.take().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSampleHistory)
#include "tst_samplehistory.moc"
