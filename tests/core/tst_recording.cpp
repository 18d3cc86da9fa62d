#include "core/CortexCore.h"
#include "core/RecordingSpaceWatch.h"
#include "formats/EDFReader.h"
#include "formats/OxdReader.h"
#include "support/FakeDevices.h"

#include <QSignalSpy>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

// Recording control on a streaming test headset: the files written, their contents read back
// with the project's readers, and the log.
class TestRecording : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    CortexCore* m_engine = nullptr;
    QList<QList<QList<float>>> m_sent;

    void stream(int blocks)
    {
        for (int b = 0; b < blocks; ++b) {
            QList<QList<float>> block(8);
            for (int c = 0; c < 8; ++c) {
                for (int k = 0; k < 25; ++k)
                    block[c].append(float(std::round(100 * std::sin(0.05 * (25 * m_sent.size() + k) + c))));
            }
            m_sent.append(block);
            m_engine->addDataChannelWise(block);
        }
    }

    static QStringList logKeys(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList keys;
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (!line.trimmed().isEmpty())
                keys.append(QString::fromUtf8(line.split('\t').value(1)));
        }
        return keys;
    }

private Q_SLOTS:
    // The space watch against the real free space of the test's folder: a recording that needs
    // more than a tenth of it per minute warns at once, one that needs more than all of it is
    // refused, a small one neither.
    void spaceWatch_data()
    {
        QTest::addColumn<double>("minutesThatFit");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<bool>("warned");
        QTest::newRow("hours fit") << 1000.0 << false << false;
        QTest::newRow("five minutes fit") << 5.0 << false << true;
        QTest::newRow("half a minute fits") << 0.5 << true << true;
    }

    void spaceWatch()
    {
        QFETCH(double, minutesThatFit);
        QFETCH(bool, refused);
        QFETCH(bool, warned);
        const QString folder = m_folder.path();
        const qint64 available = QStorageInfo(folder).bytesAvailable();
        const qint64 bytesPerSecond = qint64(double(available) / (minutesThatFit * 60));
        QCOMPARE(!RecordingSpaceWatch::refusal(folder, bytesPerSecond).isEmpty(), refused);
        RecordingSpaceWatch watch;
        QSignalSpy low(&watch, &RecordingSpaceWatch::spaceLow);
        watch.start(folder, bytesPerSecond);
        QCOMPARE(low.size(), warned ? 1 : 0);
        watch.stop();
    }

    void init()
    {
        m_engine = engineFindingHeadset(this);
        QVERIFY(m_engine->startDevice(m_engine->getFoundDevices().first(), {}, -1));
        m_engine->setFilters(0, 0, 0, 0);
        m_engine->setDataFolder(m_folder.filePath(QStringLiteral("records")));
        m_sent.clear();
    }

    void cleanup()
    {
        delete m_engine;
    }

    void recordingWritesReadableFiles()
    {
        // An annotation made 3 s before the start belongs to the recording; one 6 s before not.
        const QDateTime now = QDateTime::currentDateTime();
        m_engine->addLogItem(QStringLiteral("early"), QStringLiteral("Annotation"), now.addMSecs(-3000));
        m_engine->addLogItem(QStringLiteral("too early"), QStringLiteral("Annotation"), now.addMSecs(-6000));

        QSignalSpy started(m_engine, &CortexCore::recordStarted);
        const QString stem = m_folder.filePath(QStringLiteral("records/session"));
        QVERIFY(m_engine->startRecord(stem + QStringLiteral(".EDF")));
        QVERIFY(m_engine->isRecording());
        QCOMPARE(started.count(), 1);
        QCOMPARE(started.first().first().toString(), stem + QStringLiteral(".edf"));

        stream(20); // 4 s at 125 Hz
        m_engine->addAnnotation(QStringLiteral("eyes closed"));
        QVERIFY(m_engine->pauseRecord());
        stream(5); // not recorded
        QVERIFY(m_engine->continueRecord());
        stream(10);

        QSignalSpy stopped(m_engine, &CortexCore::recordStopped);
        const QList<QString> paths = m_engine->stopRecord();
        QCOMPARE(paths, QList<QString>({ stem + ".edf", stem + ".oxd", stem + ".log" }));
        QCOMPARE(stopped.count(), 1);
        QVERIFY(!m_engine->isRecording());

        QCOMPARE(logKeys(stem + ".log"),
                 QStringList({ "Device", "Date", "Timestamp", "Frequency", "Channels", "ChannelCount", "HPF",
                               "LPF", "BSF", "BSF2", "Annotation", "Annotation", "RECORD_PAUSE", "RECORD_CONTINUE",
                               "Annotation", "StopRecord" }));

        // The EDF holds the filtered channels of the recorded blocks (filters off: as sent).
        EDFReader edf(stem + ".edf");
        QVERIFY(edf.open());
        QCOMPARE(edf.getChannelCount(), 8);
        QCOMPARE(edf.samplingRate(), 125);
        const QList<float> channel2 = edf.getChannelDataFloat(2, 0, 750);
        QCOMPARE(channel2.size(), 750); // 30 recorded blocks, whole seconds only
        for (int i = 0; i < 750; ++i) {
            const int block = i / 25 < 20 ? i / 25 : i / 25 + 5; // the paused blocks are left out
            QCOMPARE(channel2[i], m_sent[block][2][i % 25]);
        }
        // Streamed faster than real time, the marks share onsets: read them as a list, not by time.
        QList<edf_annotation_struct> marks;
        edf.getAnnotationList(marks);
        QStringList texts;
        for (const auto& mark : marks)
            texts.append(QString::fromUtf8(mark.annotation));
        QVERIFY(texts.contains(QStringLiteral("early")));
        QVERIFY(!texts.contains(QStringLiteral("too early")));
        QVERIFY(texts.contains(QStringLiteral("eyes closed")));
        QVERIFY(std::any_of(texts.cbegin(), texts.cend(), [](const QString& t) { return t.startsWith("PAUSED "); }));

        // The side file holds every recorded device block bit for bit.
        OxdReader oxd;
        QVERIFY(oxd.read(stem + ".oxd"));
        QVERIFY(oxd.isComplete());
        QCOMPARE(oxd.blocks().size(), 30);
        QCOMPARE(oxd.blocks().first().channels, m_sent.first());
        QCOMPARE(oxd.blocks().last().channels, m_sent.last());
        QCOMPARE(oxd.header().value("device").toString(), QStringLiteral("OX8G (0031)"));
    }

    void rawRecordingAndRestart()
    {
        m_engine->enableRecordRawEDF(true);
        QVERIFY(m_engine->startRecord()); // named after the time, in the data folder
        stream(5);
        QSignalSpy stopped(m_engine, &CortexCore::recordStopped);
        QVERIFY(m_engine->startRecord(m_folder.filePath(QStringLiteral("second"))));
        QCOMPARE(stopped.count(), 1); // the first recording was closed
        QVERIFY(stopped.first().first().value<QList<QString>>().first().endsWith(QStringLiteral(".edf")));
        stream(5);
        const QList<QString> paths = m_engine->stopRecord();
        QVERIFY(paths.contains(m_folder.filePath(QStringLiteral("second.raw.bdf"))));
        EDFReader raw(m_folder.filePath(QStringLiteral("second.raw.bdf")));
        QVERIFY(raw.open());
        QCOMPARE(raw.getChannelNames().size(), 8);
    }

    void refusals()
    {
        QVERIFY(!m_engine->startRecord(QStringLiteral("/proc/no/such/folder/rec")));
        QVERIFY(!m_engine->lastRecordError().isEmpty());
        QVERIFY(!m_engine->isRecording());
        QVERIFY(!m_engine->pauseRecord());
        QVERIFY(!m_engine->addLogItem(1, QStringLiteral("Key")));
        m_engine->stopDevice();
        QVERIFY(!m_engine->startRecord(m_folder.filePath(QStringLiteral("nodevice"))));
    }

    void disconnectionPausesTheRecording()
    {
        QVERIFY(m_engine->startRecord(m_folder.filePath(QStringLiteral("lost"))));
        QSignalSpy paused(m_engine, &CortexCore::recordPaused);
        static_cast<TestHeadset*>(m_engine->currentDevice())->loseConnection();
        QTRY_COMPARE(paused.count(), 1);
        QVERIFY(m_engine->isRecordPaused());
        m_engine->stopRecord();
    }
};

QTEST_GUILESS_MAIN(TestRecording)
#include "tst_recording.moc"
