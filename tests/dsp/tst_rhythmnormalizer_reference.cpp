#include "dsp/RhythmNormalizer.h"

#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

// Checks the normalizer step by step against normalizer_reference.py, an independent float32
// implementation of the same formulas in numpy that also chooses the cases and inputs.
class TestRhythmNormalizerReference : public QObject
{
    Q_OBJECT
    QJsonArray m_cases;

private Q_SLOTS:
    void initTestCase()
    {
        QProcess python;
        python.start(ORVEX_REFERENCE_PYTHON, {QString(ORVEX_TEST_DIR) + "/normalizer_reference.py"});
        QVERIFY2(python.waitForFinished(120000), "the numpy reference did not finish");
        QVERIFY2(python.exitStatus() == QProcess::NormalExit && python.exitCode() == 0,
                 qPrintable("the numpy reference failed (needs python3-numpy):\n"
                            + python.readAllStandardError()));
        m_cases = QJsonDocument::fromJson(python.readAllStandardOutput()).array();
        QVERIFY(m_cases.size() >= 6);
    }

    void sameSequence_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < m_cases.size(); ++i)
            QTest::newRow(qPrintable(m_cases[i].toObject()["id"].toString())) << i;
    }
    void sameSequence()
    {
        QFETCH(int, index);
        const QJsonObject c = m_cases[index].toObject();
        const QJsonArray p = c["params"].toArray();
        RhythmNormalizer n(p[0].toDouble(), p[1].toDouble(), p[2].toDouble(), p[3].toDouble(),
                           p[4].toInt(), p[5].toDouble(), p[6].toDouble(), p[7].toInt(),
                           p[8].toInt(), p[9].toInt(), p[10].toBool());
        const QJsonArray input = c["input"].toArray();
        const char* names[4] = {"low", "top", "raw", "level"};
        QJsonArray expected[4];
        for (int k = 0; k < 4; ++k) {
            expected[k] = c[QString(names[k])].toArray();
            QCOMPARE(expected[k].size(), input.size());
        }
        for (int i = 0; i < input.size(); ++i) {
            const float level = n.addValue(float(input[i].toDouble()), i);
            const float ours[4] = {n.getLow(), n.getTop(), n.getLastRawLevel(), level};
            for (int k = 0; k < 4; ++k) {
                const float want = float(expected[k][i].toDouble());
                // The same float32 operations in the same order give identical results.
                QVERIFY2(ours[k] == want, qPrintable(QString("step %1, %2: %3 instead of %4")
                                                        .arg(i).arg(names[k])
                                                        .arg(double(ours[k]), 0, 'g', 9)
                                                        .arg(double(want), 0, 'g', 9)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestRhythmNormalizerReference)
#include "tst_rhythmnormalizer_reference.moc"
