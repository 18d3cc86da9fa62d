#include "dsp/FIRfilter.h"
#include "dsp/NotchFilter.h"

#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>
#include <memory>
#include <vector>

// Checks the engine's filters against scipy: time-domain output on a chirp plus noise and the
// frequency response measured from our impulse response.
namespace {

constexpr int SignalLength = 20000;
constexpr int ImpulseLength = 16384;

struct Case
{
    QString id;
    bool notch;
    int type;    // AbstractFilter::LowPass / HighPass
    int order;   // order passed to our filter
    int sciOrder; // order scipy designs (ours rounds odd orders up)
    float fc, fs, bw;
};

const std::vector<Case>& cases()
{
    static const std::vector<Case> list = {
        {"hp2_o4_250", false, 1, 4, 4, 2, 250, 0},   {"lp40_o4_250", false, 0, 4, 4, 40, 250, 0},
        {"hp2_o2_250", false, 1, 2, 2, 2, 250, 0},   {"lp40_o8_250", false, 0, 8, 8, 40, 250, 0},
        {"hp1_o8_125", false, 1, 8, 8, 1, 125, 0},   {"lp30_o4_125", false, 0, 4, 4, 30, 125, 0},
        {"hp1_o8_500", false, 1, 8, 8, 1, 500, 0},   {"lp30_o3_500", false, 0, 3, 4, 30, 500, 0},
        {"notch50_250", true, 0, 0, 0, 50, 250, 2},  {"notch60_500", true, 0, 0, 0, 60, 500, 1},
    };
    return list;
}

std::unique_ptr<AbstractFilter> makeFilter(const Case& c)
{
    if (c.notch)
        return std::make_unique<NotchFilter>(c.fs, c.fc, c.bw);
    return std::make_unique<FIRfilter>(AbstractFilter::FilterTypeEnum(c.type),
                                       AbstractFilter::Hamming, c.order, c.fs, c.fc);
}

std::vector<float> makeInput()
{
    std::vector<float> x(SignalLength);
    quint32 state = 12345;
    for (int i = 0; i < SignalLength; ++i) {
        state = state * 1664525u + 1013904223u;
        const double noise = (state >> 8) / double(1 << 24) - 0.5;
        // Chirp sweeping 0.0002 .. 0.45 cycles per sample, plus a DC offset and noise.
        const double phase = 2 * M_PI * (0.0002 * i + (0.45 - 0.0002) * i * double(i) / (2.0 * SignalLength));
        x[i] = float(50 * std::sin(phase) + 20 + 10 * noise);
    }
    return x;
}

bool writeFloats(const QString& path, const void* data, qint64 bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(static_cast<const char*>(data), bytes) == bytes;
}

std::vector<double> readDoubles(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    std::vector<double> values(bytes.size() / sizeof(double));
    memcpy(values.data(), bytes.constData(), values.size() * sizeof(double));
    return values;
}

} // namespace

class TestFiltersScipy : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    std::vector<float> m_input;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_input = makeInput();
        QVERIFY(writeFloats(m_dir.filePath("input.f32"), m_input.data(), qint64(m_input.size() * sizeof(float))));
        QJsonArray jobs;
        for (const Case& c : cases()) {
            QJsonObject job{{"id", c.id}, {"fs", c.fs}};
            if (c.notch) {
                job.insert("kind", "notch");
                job.insert("f0", c.fc);
                job.insert("bw", c.bw);
            } else {
                job.insert("kind", "butter");
                job.insert("btype", c.type == AbstractFilter::HighPass ? "high" : "low");
                job.insert("order", c.sciOrder);
                job.insert("fc", c.fc);
                std::vector<float> impulse(ImpulseLength, 0.0f);
                impulse[0] = 1.0f;
                makeFilter(c)->Process(impulse.data(), ImpulseLength);
                QVERIFY(writeFloats(m_dir.filePath(c.id + ".impulse.f32"), impulse.data(), ImpulseLength * sizeof(float)));
            }
            jobs.append(job);
        }

        QProcess python;
        python.start(ORVEX_REFERENCE_PYTHON, {QString(ORVEX_TEST_DIR) + "/filters_reference.py"});
        QVERIFY2(python.waitForStarted(), "cannot start the reference python " ORVEX_REFERENCE_PYTHON);
        python.write(QJsonDocument(QJsonObject{{"dir", m_dir.path()}, {"cases", jobs}}).toJson());
        python.closeWriteChannel();
        QVERIFY2(python.waitForFinished(120000), "the scipy reference did not finish");
        const QByteArray errors = python.readAllStandardError();
        QVERIFY2(python.exitStatus() == QProcess::NormalExit && python.exitCode() == 0,
                 qPrintable("the scipy reference failed (needs python3-numpy and python3-scipy):\n" + errors));
    }

    void timeDomain_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < int(cases().size()); ++i)
            QTest::newRow(qPrintable(cases()[i].id)) << i;
    }
    void timeDomain()
    {
        QFETCH(int, index);
        const Case& c = cases()[index];
        const std::vector<double> reference = readDoubles(m_dir.filePath(c.id + ".output.f64"));
        QCOMPARE(int(reference.size()), SignalLength);
        std::vector<float> ours = m_input;
        makeFilter(c)->Process(ours.data(), SignalLength);
        double peak = 0, worst = 0;
        for (int i = 0; i < SignalLength; ++i) {
            peak = std::max(peak, std::fabs(reference[i]));
            worst = std::max(worst, std::fabs(ours[i] - reference[i]));
        }
        QVERIFY(peak > 1);
        QVERIFY2(worst <= 1e-5 * peak, qPrintable(QString("max error %1 of peak %2").arg(worst).arg(peak)));
    }

    void frequencyResponse_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < int(cases().size()); ++i)
            if (!cases()[i].notch)
                QTest::newRow(qPrintable(cases()[i].id)) << i;
    }
    void frequencyResponse()
    {
        QFETCH(int, index);
        const Case& c = cases()[index];
        const std::vector<double> values = readDoubles(m_dir.filePath(c.id + ".freqz.f64"));
        const size_t bins = ImpulseLength / 2 + 1;
        QCOMPARE(values.size(), 2 * bins);
        double worst = 0;
        for (size_t k = 0; k < bins; ++k)
            worst = std::max(worst, std::fabs(values[k] - values[bins + k]));
        QVERIFY2(worst < 1e-6, qPrintable(QString("max |H| difference %1").arg(worst)));
        // The response has the expected shape: -3 dB at the cut-off bin nearest fc.
        const size_t cutoffBin = size_t(std::lround(c.fc * ImpulseLength / c.fs));
        const double atCutoff = values[bins + cutoffBin];
        QVERIFY(std::fabs(atCutoff - M_SQRT1_2) < 0.05);
    }
};

QTEST_GUILESS_MAIN(TestFiltersScipy)
#include "tst_filters_scipy.moc"
