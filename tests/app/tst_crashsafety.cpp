#include "formats/EDFReader.h"
#include "formats/OxdReader.h"
#include "support/ReferenceRun.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// A recording process killed without warning (SIGKILL: no handler, no close) leaves files that
// open in our reader and in MNE, missing at most the last 2 s.
class TestCrashSafety : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

private Q_SLOTS:
    void killedRecordingStaysReadable()
    {
        const QString stem = m_home.filePath(QStringLiteral("rec/x"));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), m_home.path());
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(ORVEX_BINARY),
                      { "--headless", "--no-api", "--device", "generator", "--record", stem + ".edf" });
        QVERIFY(process.waitForStarted());

        // Recording time counts from the moment the file appears.
        QElapsedTimer sinceFile;
        for (int i = 0; i < 300 && !QFileInfo::exists(stem + ".edf"); ++i)
            QTest::qWait(50);
        sinceFile.start();
        QVERIFY2(QFileInfo::exists(stem + ".edf"), process.readAllStandardError().constData());
        QTest::qWait(10000);
        QCOMPARE(process.state(), QProcess::Running);
        process.kill(); // SIGKILL
        const double recorded = double(sinceFile.elapsed()) / 1000.0;
        QVERIFY(process.waitForFinished());

        EDFReader reader(stem + ".edf");
        QVERIFY(reader.open());
        const double ours = double(reader.lengthSamples()) / double(reader.samplingRate());
        QVERIFY2(ours >= recorded - 2.0, qPrintable(QString("%1 s of %2 s").arg(ours).arg(recorded)));
        QVERIFY(reader.getChannelCount() > 0);

        QString error;
        const QJsonArray mne = ReferenceRun::mne({ stem + ".edf" }, false, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QJsonObject seen = mne.first().toObject();
        const double theirs = seen.value("n_times").toDouble() / seen.value("sfreq").toDouble();
        qInfo("recorded %.2f s; readable: ours %.2f s, MNE %.2f s", recorded, ours, theirs);
        QVERIFY2(theirs >= recorded - 2.0, qPrintable(QString("MNE: %1 s of %2 s").arg(theirs).arg(recorded)));
        QCOMPARE(seen.value("ch_names").toArray().size(), reader.getChannelCount());

        // The side file: every complete chunk, reported as unfinished.
        OxdReader oxd;
        QVERIFY2(oxd.read(stem + ".oxd"), qPrintable(oxd.errorString()));
        QVERIFY(!oxd.isComplete());
        QVERIFY(!oxd.blocks().isEmpty());
        qint64 samples = 0;
        for (const OxdReader::Block& block : oxd.blocks())
            samples += block.channels.isEmpty() ? 0 : block.channels.first().size();
        const double rate = oxd.header().value("samplingRate").toDouble(reader.samplingRate());
        QVERIFY2(double(samples) / rate >= recorded - 2.0, qPrintable(QString("oxd: %1 samples").arg(samples)));
        QVERIFY(oxd.blocks().last().arrivalMs - oxd.blocks().first().arrivalMs >= qint64((recorded - 2.0) * 1000));
    }
};

QTEST_GUILESS_MAIN(TestCrashSafety)
#include "tst_crashsafety.moc"
