#include "dsp/Montage.h"
#include "formats/EDFWriter.h"
#include "formats/EdfFileReader.h"

#include <QDateTime>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// Integers in ±400 µV: exact in the default one-to-one range, within half a step otherwise.
float sampleValue(int channel, int i)
{
    return static_cast<float>((i * 37 + channel * 101) % 801 - 400);
}

} // namespace

class TestEdfWriter : public QObject
{
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void annotationsOnRecordingTime();
    void patientInfo();
    void refusals();
    void labelsFromMontage();

private:
    QTemporaryDir m_dir;
};

void TestEdfWriter::roundTrip_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("rate");
    QTest::addColumn<QList<int>>("blocks");
    QTest::addColumn<double>("range");
    QTest::addColumn<bool>("flush");
    QTest::addColumn<bool>("bdf");

    QTest::newRow("edf, 25-sample blocks at 125 Hz") << "a.edf" << 125 << QList<int>(12, 25) << 0.0 << true << false;
    QTest::newRow("BDF in capitals, uneven blocks, range 500")
        << "sub/b.BDF" << 100 << QList<int>{7, 93, 50, 99, 1, 13} << 500.0 << true << true;
    QTest::newRow("edf, tail lost without clearShift") << "c.edf" << 125 << QList<int>{100, 85} << 0.0 << false << false;
    QTest::newRow("bdf, record completed by one sample")
        << "d.bdf" << 256 << QList<int>{200, 55, 1, 255, 3} << 0.0 << true << true;
}

void TestEdfWriter::roundTrip()
{
    QFETCH(QString, name);
    QFETCH(int, rate);
    QFETCH(QList<int>, blocks);
    QFETCH(double, range);
    QFETCH(bool, flush);
    QFETCH(bool, bdf);

    const QString path = m_dir.filePath(name);
    const QList<QString> labels{"Fp1", "ABCDEFGHIJKLMN\u00f6", "Cz-R\u00e9f\u00e9rence-long"};
    const QList<double> ranges = range > 0 ? QList<double>(3, range) : QList<double>();
    EDFWriter writer(path, labels, rate, QMap<QString, float>{{"LP", 30.0f}, {"HP", 0.5f}}, ranges);
    QVERIFY(writer.isFileOpen());
    QSignalSpy durations(&writer, &EDFWriter::recordDurationChanged);
    QSignalSpy stopped(&writer, &EDFWriter::recordStopped);

    int total = 0;
    for (int n : blocks) {
        QList<QList<float>> block(3);
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < n; ++i)
                block[k].append(sampleValue(k, total + i));
        writer.writeData(block);
        total += n;
    }
    const int records = total / rate;
    QCOMPARE(writer.getDurationSeconds(), float(records));
    QCOMPARE(durations.size(), records);
    for (int r = 0; r < records; ++r)
        QCOMPARE(durations[r].first().toInt(), r + 1);
    if (flush)
        writer.clearShift();
    QVERIFY(writer.close());
    QCOMPARE(stopped.size(), 1);
    QCOMPARE(stopped.first().first().toString(), path);

    EdfFileReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    QCOMPARE(reader.isBdf(), bdf);
    QCOMPARE(reader.header().reserved.trimmed(), bdf ? QString("BDF+C") : QString("EDF+C"));
    QCOMPARE(reader.recordCount(), qint64(flush && total % rate ? records + 1 : records));
    const QList<QString> expectedLabels{"Fp1", "ABCDEFGHIJKLMN", "Cz-Reference-"};
    QCOMPARE(reader.dataSignals(), (QList<int>{0, 1, 2}));
    for (int k = 0; k < 3; ++k) {
        const EdfSignalHeader& s = reader.signalHeaders()[k];
        QCOMPARE(s.label.trimmed(), expectedLabels[k]);
        QCOMPARE(s.physicalDimension.trimmed(), QString("uV"));
        QCOMPARE(s.prefiltering.trimmed(), QString("HP:0.5Hz LP:30.0Hz"));
        QCOMPARE(s.samplesPerRecord, rate);
        QCOMPARE(s.digitalMin, -32768);
        QCOMPARE(s.digitalMax, 32767);
        QCOMPARE(s.physicalMin, range > 0 ? -range : -32768.0);
        QCOMPARE(s.physicalMax, range > 0 ? range : 32767.0);
        const QList<float> values = reader.readSignal(k);
        QCOMPARE(values.size(), qsizetype(reader.recordCount() * rate));
        const double tolerance = s.gain() * 0.51;
        for (int i = 0; i < values.size(); ++i) {
            const double expected = i < total ? -sampleValue(k, i) : 0.0; // stored with opposite polarity
            if (std::abs(values[i] - expected) > tolerance)
                QFAIL(qPrintable(QString("channel %1 sample %2: %3 != %4").arg(k).arg(i).arg(values[i]).arg(expected)));
        }
    }
}

void TestEdfWriter::annotationsOnRecordingTime()
{
    const QString path = m_dir.filePath("notes.edf");
    EDFWriter writer(path, 1, 100, {}, {});
    QVERIFY(writer.isFileOpen());
    writer.takeStartTime(QDateTime::currentMSecsSinceEpoch() - 1000); // 1 s recorded
    writer.pauseRecord();
    writer.pauseRecord(); // a second pause adds nothing
    QTest::qWait(300);    // the pause is not recording time
    writer.continueRecord();
    const auto eightBit = writer.addAnnotationR("\u00c4rger");
    QVERIFY(eightBit.first);
    QVERIFY2(eightBit.second >= 1000 && eightBit.second < 1250, qPrintable(QString::number(eightBit.second)));
    QCOMPARE(writer.addAnnotation("\u00dcn\u00efcode \u2713", 2500, -5), 2500);
    const int now = writer.addAnnotation("now", -1, 300);
    QVERIFY(now >= eightBit.second);
    writer.resetStartTime();
    QCOMPARE(writer.addAnnotationR("dropped"), (std::pair<bool, qint64>(false, 0)));
    QList<float> second(100, 1.0f);
    writer.writeData(second);
    QVERIFY(writer.close());

    EdfFileReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    const QList<EdfAnnotation>& notes = reader.annotations();
    QCOMPARE(notes.size(), qsizetype(3));
    const qint64 offset = reader.startOffsetTicks();
    const QList<QString> texts{"\u00c4rger", "\u00dcn\u00efcode \u2713", "now"};
    const QList<qint64> onsetsMs{eightBit.second, 2500, now};
    const QList<qint64> durations{1000, 0, 3000000}; // 100 ns ticks
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(notes[i].text, texts[i]);
        QCOMPARE(notes[i].onsetTicks, onsetsMs[i] * 10000 + offset);
        QCOMPARE(notes[i].durationTicks, durations[i]);
    }
}

void TestEdfWriter::patientInfo()
{
    const QString path = m_dir.filePath("patient.edf");
    EDFWriter writer(path, 2, 10, {}, {});
    PatientInfo info{1, 1951, 8, 2, "J\u00f6ns \u00c5berg", "Headset X", "P-12", "left handed"};
    writer.setPatientInfo(info);
    QCOMPARE(writer.getPatientName(), info.patientName);
    writer.writeData(QList<float>(20, 0.0f));
    QVERIFY(writer.close());

    EdfFileReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    QCOMPARE(reader.header().patient.trimmed(), QString("P-12 M 02-AUG-1951 Jons_Aberg left handed"));
    const QString recording = reader.header().recording.trimmed();
    QVERIFY2(recording.startsWith("Startdate ") && recording.endsWith(" Headset_X"), qPrintable(recording));

    EDFWriter closed; // not open: ignored
    closed.setPatientInfo(info);
    QCOMPARE(closed.getPatientName(), QString());
}

void TestEdfWriter::refusals()
{
    QFile blocker(m_dir.filePath("blocker"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EDFWriter unwritable;
    QSignalSpy started(&unwritable, &EDFWriter::recordStarted);
    unwritable.setPath(m_dir.filePath("blocker/sub/x.edf"));
    unwritable.setInternalBuffSize(10, 1);
    QVERIFY(!unwritable.open());
    QVERIFY(!unwritable.isFileOpen());
    QCOMPARE(started.size(), 0);
    QVERIFY(!unwritable.prepareWriter(m_dir.filePath("m.edf"), {}, 10));
    QList<float> samples(20, 1.0f);
    unwritable.writeData(samples); // buffered, never written: no crash

    EDFWriter writer(m_dir.filePath("bad.edf"), 2, 10, {}, {});
    writer.writeData(QList<QList<float>>{{1, 2, 3}});                  // one list for two channels
    writer.writeData(QList<QList<float>>{QList<float>(10, 1.0f), {1}}); // lengths differ
    writer.writeData(0, nullptr);
    QCOMPARE(writer.getDurationSeconds(), 0.0f);
    writer.writeData(QList<float>(45, 1.0f)); // 22 per channel: two records, odd sample ignored
    QCOMPARE(writer.getDurationSeconds(), 2.0f);
}

void TestEdfWriter::labelsFromMontage()
{
    auto montage = QSharedPointer<Montage>::create("m");
    montage->resize(2);
    EDFWriter writer;
    QSignalSpy started(&writer, &EDFWriter::recordStarted);
    const QString path = m_dir.filePath("montage.edf");
    QVERIFY(writer.prepareWriter(path, montage, 50));
    QCOMPARE(started.size(), 2); // once for the plain file, once for the opened record
    writer.writeData(QList<float>(100, 0.0f));
    QVERIFY(writer.close());

    EdfFileReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    QCOMPARE(reader.dataSignals().size(), qsizetype(2));
    for (int k = 0; k < 2; ++k)
        QCOMPARE(reader.signalHeaders()[k].label.trimmed(), montage->getChannelNames()[k].left(15));
}

QTEST_GUILESS_MAIN(TestEdfWriter)
#include "tst_edfwriter.moc"
