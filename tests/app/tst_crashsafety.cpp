#include "formats/EDFReader.h"
#include "formats/EDFWriter.h"
#include "formats/OxdReader.h"
#include "support/ProgramUnderTest.h"
#include "support/ReferenceRun.h"
#include "support/StrictEdfRead.h"

#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

// A recording process killed without warning (SIGKILL: no handler, no close) leaves files that
// open in our reader and in MNE, missing at most the last 2 s. A disk that fills up during a
// recording stops it with a clear line and exit code 1, leaving whole files.
class TestCrashSafety : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    QProcessEnvironment environment() const { return ProgramUnderTest::isolatedEnvironment(m_home); }

    // Data records in the file by its size, against the count its header gives.
    static bool recordCountMatchesSize(const QString& path, qint64& records)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray fixed = file.read(256);
        const int signals_ = fixed.mid(252, 4).trimmed().toInt();
        const qint64 headerBytes = fixed.mid(184, 8).trimmed().toLongLong();
        records = fixed.mid(236, 8).trimmed().toLongLong();
        const QByteArray signalHeaders = file.read(256 * signals_);
        qint64 recordBytes = 0;
        for (int i = 0; i < signals_; ++i)
            recordBytes += signalHeaders.mid(216 * signals_ + 8 * i, 8).trimmed().toLongLong() * 2;
        return records > 0 && file.size() == headerBytes + records * recordBytes;
    }

private Q_SLOTS:
    // biosig's reading of the file: its record count, or -1 when it refuses it (-2: no biosig).
    static int biosigRecords(const QString& path)
    {
        const QString save2gdf = QStandardPaths::findExecutable(QStringLiteral("save2gdf"));
        if (save2gdf.isEmpty())
            return -2;
        const ReferenceRun run = ReferenceRun::program(save2gdf, { "-JSON", path });
        const QJsonObject header = QJsonDocument::fromJson(run.out.mid(run.out.indexOf('{'))).object();
        return run.ok ? header.value("NumberOfRecords").toInt(-1) : -1;
    }

    // Five minutes of six channels at 250 Hz, to play as fast as possible into a small disk.
    QString sourceRecording()
    {
        const QString path = m_home.filePath(QStringLiteral("source.edf"));
        if (QFileInfo::exists(path))
            return path;
        EDFWriter writer(path, QList<QString> { "O1", "O2", "T3", "T4", "Fp1", "Fp2" }, 250, {}, {});
        QList<QList<float>> second(6, QList<float>(250));
        for (int s = 0; s < 300; ++s) {
            for (int c = 0; c < 6; ++c)
                for (int i = 0; i < 250; ++i)
                    second[c][i] = float(50 * std::sin(2 * M_PI * 10 * (s + i / 250.0)));
            writer.writeData(second);
        }
        writer.close();
        return path;
    }

    void fullDisk_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("stderrStart");
        // One minute of this recording needs about 1.3 MB.
        QTest::newRow("refused at start") << "300k" << "orvexpro: cannot record: not enough free space in ";
        QTest::newRow("full during the recording") << "1600k" << "orvexpro: the recording stopped: writing ";
    }

    // A disk too small is refused at the start; one that fills up stops the recording cleanly.
    void fullDisk()
    {
        QFETCH(QString, size);
        QFETCH(QString, stderrStart);
        const QString disk = m_home.filePath(QStringLiteral("small-disk-") + size);
        QDir().mkpath(disk);
        QProcess mount;
        mount.start(QStringLiteral("mount"), { "-t", "tmpfs", "-o", "size=" + size, "tmpfs", disk });
        if (!mount.waitForFinished() || mount.exitCode() != 0)
            QSKIP("a small tmpfs cannot be mounted here (needs root): the full-disk cases are not run");
        const auto unmount = qScopeGuard([&disk] { QProcess::execute(QStringLiteral("umount"), { disk }); });

        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), { "--headless", "--no-api", "--device", sourceRecording(),
                                                      "--speed", "0", "--record", disk + "/full" });
        QVERIFY(process.waitForFinished(60000));
        const QString err = QString::fromUtf8(process.readAllStandardError());
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(err.count(QLatin1Char('\n')), 1);
        QVERIFY2(err.startsWith(stderrStart), qPrintable(err));
        if (size == QLatin1String("300k")) {
            QVERIFY(QDir(disk).entryList(QDir::Files).isEmpty());
            return;
        }

        qint64 records = 0;
        QVERIFY(recordCountMatchesSize(disk + "/full.edf", records));
        EDFReader reader(disk + "/full.edf");
        QVERIFY(reader.open());
        QCOMPARE(qint64(reader.lengthSamples()), records * 250);
        QVERIFY(records > 60);
        QString error;
        const QJsonObject seen = ReferenceRun::mne({ disk + "/full.edf" }, false, &error).first().toObject();
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(qint64(seen.value("n_times").toDouble()), records * 250);
        const StrictEdfRead strict = StrictEdfRead::of(disk + "/full.edf");
        QVERIFY2(strict.ok, qPrintable(strict.refusal));
        QCOMPARE(strict.records, records);
        QVERIFY(QList<int>({ -2, int(records) }).contains(biosigRecords(disk + "/full.edf")));
        OxdReader oxd;
        QVERIFY2(oxd.read(disk + "/full.oxd"), qPrintable(oxd.errorString()));
        QVERIFY(!oxd.blocks().isEmpty());
        QFile log(disk + "/full.log");
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().endsWith("\r\n"));
    }

    void killedRecordingStaysReadable()
    {
        const QString stem = m_home.filePath(QStringLiteral("rec/x"));
        QProcess process;
        process.setProcessEnvironment(environment());
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
        const StrictEdfRead strict = StrictEdfRead::of(stem + ".edf");
        QVERIFY2(strict.ok, qPrintable(strict.refusal));
        QCOMPARE(strict.signalList.size(), reader.getChannelCount());
        QVERIFY(QList<int>({ -2, int(strict.records) }).contains(biosigRecords(stem + ".edf")));

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
