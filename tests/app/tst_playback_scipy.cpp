#include "formats/EDFWriter.h"
#include "support/ReferenceRun.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

// A recording played back as fast as possible through the default filters (high-pass 2 Hz,
// low-pass 40 Hz, notch 50 Hz) gives what scipy computes from the same stored samples.
class TestPlaybackScipy : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    static constexpr int Rate = 250;
    static constexpr int Seconds = 20;
    static constexpr double Range = 500.0; // µV: one step is 1000 / 65535 µV

    // Drift, alpha, beta, mains and a little deterministic noise, different per channel.
    static float sample(int channel, int i)
    {
        const double t = double(i) / Rate;
        const double noise = double((i * 7919 + channel * 104729) % 1001 - 500) / 50.0;
        return float(40.0 * channel + 80.0 * std::sin(2 * M_PI * 0.3 * t) + 60.0 * std::sin(2 * M_PI * (9.5 + channel) * t)
                     + 25.0 * std::sin(2 * M_PI * 22.0 * t + channel) + 100.0 * std::sin(2 * M_PI * 50.0 * t) + noise);
    }

    static QList<QList<double>> readCsv(const QString& path, QStringList& header)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        header = QString::fromUtf8(file.readLine().trimmed()).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        QList<QList<double>> columns(header.size());
        while (!file.atEnd()) {
            const QList<QByteArray> cells = file.readLine().trimmed().split(';');
            for (int c = 0; c < columns.size() && c < cells.size(); ++c)
                columns[c].append(cells[c].toDouble());
        }
        return columns;
    }

private Q_SLOTS:
    void filteredPlaybackEqualsScipy()
    {
        const QStringList labels{ "Fp1", "Fp2", "C3", "C4" };
        const QString edf = m_home.filePath("source.edf");
        {
            EDFWriter writer(edf, QList<QString>(labels.begin(), labels.end()), Rate, {},
                             QList<double>(labels.size(), Range));
            QVERIFY(writer.isFileOpen());
            QList<float> block(labels.size() * 10);
            for (int first = 0; first < Seconds * Rate; first += 10) {
                for (int c = 0; c < labels.size(); ++c)
                    for (int k = 0; k < 10; ++k)
                        block[c * 10 + k] = sample(c, first + k);
                writer.writeData(10, block.data());
            }
            QVERIFY(writer.close());
        }

        const QString csv = m_home.filePath("out.csv");
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", m_home.path());
        env.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(ORVEX_BINARY), { "--headless", "--no-api", "--device", edf, "--speed", "0", "--csv", csv });
        QVERIFY(process.waitForFinished(120000));
        QCOMPARE(process.exitCode(), 0);

        const QString reference = m_home.filePath("reference.f64");
        const ReferenceRun python = ReferenceRun::python(QStringLiteral(ORVEX_TEST_DIR "/playback_reference.py"),
                                                         { edf, reference, "2", "40", "50" });
        QVERIFY2(python.ok, qPrintable(python.error));
        const QJsonObject info = QJsonDocument::fromJson(python.out).object();
        QCOMPARE(info.value("n_times").toInt(), Seconds * Rate);
        QFile file(reference);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QCOMPARE(bytes.size(), qsizetype(labels.size() * Seconds * Rate * sizeof(double)));
        const auto* expected = reinterpret_cast<const double*>(bytes.constData());

        QStringList header;
        const QList<QList<double>> columns = readCsv(csv, header);
        QCOMPARE(header, QStringList{ "t" } + labels);
        const double step = 2 * Range / 65535.0;
        for (int c = 0; c < labels.size(); ++c) {
            const QList<double>& ours = columns[c + 1];
            QCOMPARE(ours.size(), Seconds * Rate);
            double worst = 0, energy = 0;
            for (int i = 0; i < ours.size(); ++i) {
                const double want = expected[c * Seconds * Rate + i];
                worst = std::max(worst, std::abs(ours[i] - want));
                energy += want * want;
            }
            // The output must carry signal (not a chain that passes nothing) and match to
            // within one step of the stored samples.
            qInfo("%s: largest difference %.2g µV (step %.2g µV)", qPrintable(labels[c]), worst, step);
            QVERIFY(std::sqrt(energy / ours.size()) > 20.0);
            QVERIFY2(worst <= step, qPrintable(QString("%1: %2 µV").arg(labels[c]).arg(worst)));
        }
    }
};

QTEST_GUILESS_MAIN(TestPlaybackScipy)
#include "tst_playback_scipy.moc"
