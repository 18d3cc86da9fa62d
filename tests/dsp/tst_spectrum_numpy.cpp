#include "dsp/SpectrumAnalyzer.h"

#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cmath>

// Checks the analyzer's sliding spectra and rhythm shares against numpy's FFT of the same
// streams (tests/dsp/amplitude_spectrum_reference.py), over sample rates, windows and taper percents.
namespace {

const QList<SpectrumRhythm> rhythms = {
    {"alpha", 8, 14}, {"beta", 14, 35}, {"theta", 4, 8}, {"delta", 0.5f, 4}, {"gamma", 35, 50}};

struct Case
{
    float window, step, percent;
};
const Case shapes[] = {{4, 0.5f, 10}, {2, 0.25f, 50}, {1, 0.1f, 0}, {3, 0.3f, 25}};
const float rates[] = {125, 250, 500};

QString caseId(float rate, const Case& c)
{
    return QString("%1Hz_%2s_%3pct").arg(rate).arg(c.window).arg(c.percent);
}

} // namespace

class TestSpectrumNumpy : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QJsonObject m_reference;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QJsonArray cases, bands;
        int seed = 1;
        for (float rate : rates)
            for (const Case& c : shapes)
                cases.append(QJsonObject{{"id", caseId(rate, c)}, {"rate", rate}, {"window", c.window},
                                         {"step", c.step}, {"percent", c.percent}, {"seed", seed++}});
        for (const SpectrumRhythm& r : rhythms)
            bands.append(QJsonArray{r.name, r.from, r.to});
        QProcess python;
        python.start(ORVEX_REFERENCE_PYTHON, {QString(ORVEX_TEST_DIR) + "/amplitude_spectrum_reference.py"});
        QVERIFY2(python.waitForStarted(), "cannot start the reference python " ORVEX_REFERENCE_PYTHON);
        python.write(QJsonDocument(QJsonObject{{"dir", m_dir.path()}, {"rhythms", bands}, {"cases", cases}}).toJson());
        python.closeWriteChannel();
        QVERIFY2(python.waitForFinished(120000), "the numpy reference did not finish");
        QVERIFY2(python.exitStatus() == QProcess::NormalExit && python.exitCode() == 0,
                 qPrintable("the numpy reference failed (needs python3-numpy):\n" + python.readAllStandardError()));
        m_reference = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
        QCOMPARE(m_reference.size(), cases.size());
    }

    void matchesNumpy_data()
    {
        QTest::addColumn<float>("rate");
        QTest::addColumn<int>("shape");
        for (float rate : rates)
            for (int s = 0; s < int(std::size(shapes)); ++s)
                QTest::newRow(qPrintable(caseId(rate, shapes[s]))) << rate << s;
    }
    void matchesNumpy()
    {
        QFETCH(float, rate);
        QFETCH(int, shape);
        const Case& c = shapes[shape];
        const QString id = caseId(rate, c);
        const QJsonObject ref = m_reference.value(id).toObject();

        SpectrumAnalyzer a; // configured as the engine does it
        for (const SpectrumRhythm& r : rhythms)
            a.addRhythm(r);
        a.setDataFrequency(rate);
        a.setSmoothingWindowPercent(c.percent);
        a.setWindowSize(c.window);
        a.setWindowStep(c.step);
        QCOMPARE(a.getWindowSamples(), ref.value("N").toInt());
        QCOMPARE(a.getStepSamples(), ref.value("step").toInt());
        QCOMPARE(a.getNFFT(), ref.value("nfft").toInt());

        QFile file(m_dir.filePath(id + ".input.f32"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const float* stream = reinterpret_cast<const float*>(bytes.constData());
        QSignalSpy spectra(&a, &SpectrumAnalyzer::spectrumCalculated);
        QSignalSpy shares(&a, &SpectrumAnalyzer::spectrumRhythmsCalculated);
        const int count = int(bytes.size() / sizeof(float));
        for (int i = 0; i < count; i += 5) // device-sized blocks, smaller than any step
            a.addDataSample(stream + i, std::min(5, count - i));
        QCOMPARE(spectra.count(), 3);
        QCOMPARE(shares.count(), 3);

        for (int k = 0; k < 3; ++k) {
            const QList<float> ours = spectra.at(k).at(0).value<QList<float>>();
            const QJsonArray expected = ref.value("spectra").toArray().at(k).toArray();
            QCOMPARE(ours.size(), expected.size());
            double peak = 0, worst = 0;
            for (int i = 0; i < ours.size(); ++i) {
                peak = std::max(peak, expected.at(i).toDouble());
                worst = std::max(worst, std::fabs(ours[i] - expected.at(i).toDouble()));
            }
            QVERIFY2(worst <= 1e-4 * peak, qPrintable(QString("spectrum %1: error %2 of peak %3").arg(k).arg(worst).arg(peak)));

            const QMap<QString, float> ourShares = shares.at(k).at(0).value<QMap<QString, float>>();
            const QJsonObject expectedShares = ref.value("rhythms").toArray().at(k).toObject();
            QCOMPARE(ourShares.keys(), expectedShares.keys());
            QVERIFY(std::fabs(ourShares["sum"] - expectedShares.value("sum").toDouble()) < 1e-5 * ourShares["sum"]);
            for (const SpectrumRhythm& r : rhythms) {
                const double error = std::fabs(ourShares[r.name] - expectedShares.value(r.name).toDouble());
                QVERIFY2(error < 1e-3, qPrintable(QString("%1 in spectrum %2 off by %3 points").arg(r.name).arg(k).arg(error)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestSpectrumNumpy)
#include "tst_spectrum_numpy.moc"
