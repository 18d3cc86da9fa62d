#include <algorithm>
#include "formats/EdfFieldText.h"
#include "formats/EdfFileReader.h"
#include "formats/EdfFileWriter.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

constexpr qint64 Second = 10000000;

EdfSignalHeader signal(const QString& label, int samples, double pmin, double pmax, int dmin, int dmax)
{
    EdfSignalHeader s;
    s.label = label;
    s.transducer = QStringLiteral("AgCl cup");
    s.physicalDimension = QStringLiteral("uV");
    s.physicalMin = pmin;
    s.physicalMax = pmax;
    s.digitalMin = dmin;
    s.digitalMax = dmax;
    s.prefiltering = QStringLiteral("HP:0.5Hz LP:30.0Hz");
    s.samplesPerRecord = samples;
    return s;
}

EdfFileHeader identity(int msec, qint64 durationTicks)
{
    EdfFileHeader h;
    h.patient = EdfFileHeader::formatPatientField(QStringLiteral("P 12"), QLatin1Char('f'), QDate(1951, 8, 2),
                                                  QStringLiteral("Jöns Åberg"));
    h.startDateTime = QDateTime(QDate(2024, 3, 9), QTime(13, 5, 7, msec));
    h.recordDurationTicks = durationTicks;
    return h;
}

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

// One 10-sample signal, two 1 s records; the annotation area of record 0 starts at 768 + 20.
QByteArray smallEdf(const QString& path)
{
    EdfFileWriter w;
    const QList<float> zeros(10, 0.0f);
    if (!w.open(path, EdfFileWriter::Format::Edf, identity(0, Second), {signal("C3", 10, -100, 100, -2048, 2047)}))
        return {};
    w.writeRecord(QList<const float*>{zeros.data()});
    w.writeRecord(QList<const float*>{zeros.data()});
    w.close();
    return readAll(path);
}

} // namespace

class TestEdfCodec : public QObject
{
    Q_OBJECT
private slots:
    void headerHelpers();
    void roundTrip_data();
    void roundTrip();
    void manyAnnotations();
    void unclosedAndTruncated();
    void badFiles_data();
    void badFiles();
    void talVariants();
    void foreignHeader();
    void writerRefuses();
    void garbageNeverCrashes();

private:
    QTemporaryDir m_dir;
};

void TestEdfCodec::headerHelpers()
{
    QCOMPARE(EdfFileHeader::formatPatientField("MCH-0234567", 'F', QDate(1951, 5, 2), "Haagse Harry"),
             QStringLiteral("MCH-0234567 F 02-MAY-1951 Haagse_Harry"));
    QCOMPARE(EdfFileHeader::formatPatientField({}, '?', {}, {}), QStringLiteral("X X X X"));
    QCOMPARE(EdfFileHeader::formatRecordingField({}, {}, {}, {}), QStringLiteral("Startdate X X X X"));
    QCOMPARE(EdfFileHeader::formatRecordingField(QDate(2002, 12, 31), "EMR 4", "", "Orvex"),
             QStringLiteral("Startdate 31-DEC-2002 EMR_4 X Orvex"));
    // Limits that do not fit 8 characters are rounded outward.
    QByteArray t;
    QVERIFY(EdfFieldText::formatNumber(-123.456789, -1, &t));
    QCOMPARE(t, QByteArray("-123.457"));
    QVERIFY(EdfFieldText::formatNumber(123.456789, +1, &t));
    QCOMPARE(t, QByteArray("123.4568"));
    QVERIFY(EdfFieldText::formatNumber(0.1, +1, &t));
    QCOMPARE(t, QByteArray("0.1"));
    QVERIFY(!EdfFieldText::formatNumber(1e9, 0, &t));
    QCOMPARE(EdfFieldText::formatTicks(-15000001, true), QByteArray("-1.5000001"));
    qint64 ticks = 0;
    QVERIFY(EdfFieldText::parseTicks("+432000.0000001", true, &ticks));
    QCOMPARE(ticks, 432000 * Second + 1);
    QVERIFY(!EdfFieldText::parseTicks("1.", true, &ticks));
    QVERIFY(!EdfFieldText::parseTicks("1e3", true, &ticks));
}

void TestEdfCodec::roundTrip_data()
{
    QTest::addColumn<bool>("bdf");
    QTest::addColumn<int>("msec");
    QTest::addColumn<qint64>("duration");
    QTest::newRow("edf") << false << 0 << Second;
    QTest::newRow("edf offset half-second records") << false << 250 << Second / 2;
    QTest::newRow("bdf") << true << 999 << Second;
    QTest::newRow("bdf 0.1 s records") << true << 10 << Second / 10;
}

void TestEdfCodec::roundTrip()
{
    QFETCH(bool, bdf);
    QFETCH(int, msec);
    QFETCH(qint64, duration);
    const int dmax = bdf ? 8388607 : 32767;
    const QList<EdfSignalHeader> sigs{signal("Fp1-very-long-label-cut", 25, -500, 500, -dmax - 1, dmax),
                                         signal("EKG", 10, -3.21234567, 7.91234567, -1000, 1000)};
    const QString path = m_dir.filePath(QStringLiteral("rt.%1").arg(bdf ? "bdf" : "edf"));
    EdfFileWriter w;
    QVERIFY(w.open(path, bdf ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf, identity(msec, duration), sigs));
    const int records = 7;
    QList<float> a(25), b(10);
    QList<float> allA, allB;
    for (int r = 0; r < records; ++r)
    {
        for (int k = 0; k < 25; ++k)
            a[k] = float(480 * std::sin(0.37 * (r * 25 + k)));
        for (int k = 0; k < 10; ++k)
            b[k] = float(-3.2 + 0.11 * (r * 10 + k));
        if (r == 3)
        {
            a[0] = 1e6f;  // clipped to the digital limits
            a[1] = -1e6f;
            b[0] = 100.0f;
        }
        allA += a;
        allB += b;
        QVERIFY(w.writeRecord(QList<const float*>{a.data(), b.data()}));
    }
    QVERIFY(w.close());

    EdfFileReader r;
    QVERIFY2(r.open(path), qPrintable(r.errorString()));
    QCOMPARE(r.isBdf(), bdf);
    QVERIFY(r.isPlus());
    QCOMPARE(r.header().reserved, bdf ? QStringLiteral("BDF+C") : QStringLiteral("EDF+C"));
    QCOMPARE(r.header().patient, QStringLiteral("P_12 F 02-AUG-1951 Jons_Aberg"));
    QCOMPARE(r.header().recording, QStringLiteral("Startdate 09-MAR-2024 X X X"));
    QCOMPARE(r.header().startDateTime, QDateTime(QDate(2024, 3, 9), QTime(13, 5, 7)));
    QCOMPARE(r.header().recordDurationTicks, duration);
    QCOMPARE(r.recordCount(), qint64(records));
    QCOMPARE(r.signalHeaders().size(), 3);
    QCOMPARE(r.signalHeaders()[2].label, bdf ? QStringLiteral("BDF Annotations") : QStringLiteral("EDF Annotations"));
    QCOMPARE(r.dataSignals(), (QList<int>{0, 1}));
    QCOMPARE(r.signalHeaders()[0].label, QStringLiteral("Fp1-very-long-la"));
    QCOMPARE(r.signalHeaders()[1].samplesPerRecord, 10);
    QCOMPARE(r.signalHeaders()[1].physicalMin, -3.21235); // rounded outward to 8 characters
    QCOMPARE(r.signalHeaders()[1].physicalMax, 7.912346);
    QCOMPARE(r.signalHeaders()[1].prefiltering, QStringLiteral("HP:0.5Hz LP:30.0Hz"));
    QCOMPARE(r.startOffsetTicks(), qint64(msec) * 10000);
    for (int k = 0; k < records; ++k)
        QCOMPARE(r.recordStartTicks().value(k), qint64(msec) * 10000 + k * duration);

    const QList<QList<float>> expected{allA, allB};
    for (int s = 0; s < 2; ++s)
    {
        const EdfSignalHeader& h = sigs[s];
        const QList<float> got = r.readSignal(s);
        QCOMPARE(got.size(), expected[s].size());
        for (int k = 0; k < got.size(); ++k)
        {
            const double want = std::clamp<double>(expected[s][k], h.physicalMin, h.physicalMax);
            QVERIFY2(std::fabs(got[k] - want) <= h.gain() * 0.5 + 1e-4 * std::fabs(want) + 1e-6,
                     qPrintable(QStringLiteral("signal %1 sample %2: %3 vs %4").arg(s).arg(k).arg(got[k]).arg(want)));
        }
    }
    // A range inside the file, crossing record borders.
    QList<double> part(12);
    QCOMPARE(r.readSamples(1, 15, 12, part.data()), qint64(12));
    QVERIFY(std::fabs(part[0] - allB[15]) <= sigs[1].gain());
    QCOMPARE(r.readSamples(1, 65, 12, part.data()), qint64(5));
}

void TestEdfCodec::manyAnnotations()
{
    const QString path = m_dir.filePath(QStringLiteral("ann.edf"));
    EdfFileWriter w;
    QVERIFY(w.open(path, EdfFileWriter::Format::Edf, identity(125, Second), {signal("O1", 4, -1, 1, -32768, 32767)}));
    QList<qint64> onsets;
    QStringList texts;
    for (int i = 0; i < 50; ++i)
    {
        onsets << i * 200001 + 7; // within the first second, odd tick values
        texts << QStringLiteral("mark %1 ÄÖ 日本 \u00e9").arg(i);
        QVERIFY(w.addAnnotation(onsets.last(), i % 3 == 0 ? 5000 * i : -1, texts.last()));
    }
    QVERIFY(w.addAnnotation(Second, -1, QString(300, QChar(0x00e9)))); // 600 bytes, cut to 256
    const QList<float> zeros(4, 0.0f);
    QVERIFY(w.writeRecord(QList<const float*>{zeros.data()}));
    QVERIFY(w.writeRecord(QList<const float*>{zeros.data()}));
    // A burst after the last record: more than one record's annotation space holds.
    for (int i = 0; i < 250; ++i)
        QVERIFY(w.addAnnotation(2 * Second, -1, QStringLiteral("burst %1 of forty bytes, more or less....").arg(i, 3)));
    QVERIFY(w.close()); // into the free space of the records written: no record without signal

    EdfFileReader r;
    QVERIFY2(r.open(path), qPrintable(r.errorString()));
    QCOMPARE(r.recordCount(), qint64(2));
    QList<EdfAnnotation> list = r.annotations();
    QCOMPARE(list.size(), 301);
    std::stable_sort(list.begin(), list.end(), [](const EdfAnnotation& a, const EdfAnnotation& b) { return a.onsetTicks < b.onsetTicks; });
    for (int i = 0; i < 50; ++i)
    {
        QCOMPARE(list[i].onsetTicks, onsets[i] + 1250000);
        QCOMPARE(list[i].durationTicks, i % 3 == 0 ? 5000LL * i : -1LL);
        QCOMPARE(list[i].text, texts[i]);
    }
    QCOMPARE(list[50].text, QString(128, QChar(0x00e9)));
    for (qint64 k = 0; k < r.recordCount(); ++k)
        QCOMPARE(r.recordStartTicks()[k], 1250000 + k * Second);
}

void TestEdfCodec::unclosedAndTruncated()
{
    const QString path = m_dir.filePath(QStringLiteral("open.bdf"));
    const QList<float> values(8, 1.0f);
    {
        EdfFileWriter w;
        QVERIFY(w.open(path, EdfFileWriter::Format::Bdf, identity(0, Second), {signal("Cz", 8, -10, 10, -100, 100)}));
        QCOMPARE(readAll(path).mid(236, 8), QByteArray("-1      ")); // nothing recorded yet
        for (int k = 0; k < 6; ++k)
        {
            QVERIFY(w.writeRecord(QList<const float*>{values.data()}));
            // Rewritten after every second, so a killed recorder loses at most one.
            QCOMPARE(readAll(path).mid(236, 8), EdfFieldText::fixed(QString::number(k + 1), 8));
        }
        // The state of a crashed writer: count -1, every record on disk.
        QByteArray bytes = readAll(path);
        bytes.replace(236, 8, "-1      ");
        writeAll(m_dir.filePath("crashed.bdf"), bytes);
        const qint64 recordBytes = 8 * 3 + EdfFileWriter::AnnotationBytesBdf;
        writeAll(m_dir.filePath("cut.bdf"), bytes.left(bytes.size() - recordBytes / 2));
        bytes.replace(236, 8, "9       ");
        writeAll(m_dir.filePath("lying.bdf"), bytes);
    }
    const QList<std::pair<QString, qint64>> cases{{"crashed.bdf", 6}, {"cut.bdf", 5}, {"lying.bdf", 6}};
    for (const auto& [name, records] : cases)
    {
        EdfFileReader r;
        QVERIFY2(r.open(m_dir.filePath(name)), qPrintable(r.errorString()));
        QCOMPARE(r.recordCount(), records);
        QCOMPARE(r.readSignal(0).size(), records * 8);
        QCOMPARE(r.recordStartTicks().size(), records);
        QVERIFY(std::fabs(r.readSignal(0).last() - 1.0f) < 0.11f);
    }
}

void TestEdfCodec::badFiles_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const int ns = 2;
    const int base = 256;
    QTest::newRow("version") << 0 << QByteArray("1       ") << "invalid version";
    QTest::newRow("date") << 168 << QByteArray("32.01.20") << "invalid start date";
    QTest::newRow("date form") << 168 << QByteArray("1.1.2020") << "invalid start date";
    QTest::newRow("time") << 176 << QByteArray("25.00.00") << "invalid start time";
    QTest::newRow("header bytes") << 184 << QByteArray("1024    ") << "header bytes";
    QTest::newRow("EDF+D") << 192 << QByteArray("EDF+D") << "discontinuous";
    QTest::newRow("negative count") << 236 << QByteArray("-5      ") << "number of data records";
    QTest::newRow("zero count") << 236 << QByteArray("0       ") << "number of data records";
    QTest::newRow("text count") << 236 << QByteArray("many    ") << "number of data records";
    QTest::newRow("duration") << 244 << QByteArray("0       ") << "record duration";
    QTest::newRow("duration text") << 244 << QByteArray("1s      ") << "record duration";
    QTest::newRow("no signals") << 252 << QByteArray("0   ") << "number of signals";
    QTest::newRow("huge ns") << 252 << QByteArray("9999") << "number of signals";
    QTest::newRow("ns text") << 252 << QByteArray("two ") << "number of signals";
    QTest::newRow("physical text") << base + 104 * ns << QByteArray("abc     ") << "not a number";
    QTest::newRow("physical equal") << base + 112 * ns << QByteArray("-100    ") << "physical maximum equals";
    QTest::newRow("digital text") << base + 120 * ns << QByteArray("1.5     ") << "not an integer";
    QTest::newRow("digital order") << base + 128 * ns << QByteArray("-2048   ") << "digital maximum not above";
    QTest::newRow("digital range") << base + 120 * ns << QByteArray("-40000  ") << "outside the format";
    QTest::newRow("no samples") << base + 216 * ns << QByteArray("0       ") << "invalid samples";
    QTest::newRow("huge record") << base + 216 * ns << QByteArray("9000000 ") << "10 MiB";
    QTest::newRow("unsigned onset") << 768 + 20 << QByteArray("0\x14\x14") << "invalid onset";
    QTest::newRow("no time-keeping") << 768 + 20 << QByteArray("+0\x14x\x14") << "time-keeping";
    QTest::newRow("bad duration") << 768 + 20 + 5 << QByteArray("+1\x15-2\x14x\x14") << "invalid duration";
    QTest::newRow("unterminated") << 768 + 20 + 5 << QByteArray("+1\x14x") << "unterminated";
    QTest::newRow("truncated header") << -100 << QByteArray() << "too short for a header";
    QTest::newRow("truncated signals") << -300 << QByteArray() << "too short for its signal headers";
}

void TestEdfCodec::badFiles()
{
    QFETCH(int, offset);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const QString path = m_dir.filePath(QStringLiteral("bad.edf"));
    QByteArray file = smallEdf(path);
    QVERIFY(!file.isEmpty());
    {
        EdfFileReader good;
        QVERIFY2(good.open(path), qPrintable(good.errorString())); // the base file is valid
    }
    if (offset < 0)
        file.truncate(-offset);
    else
        file.replace(offset, bytes.size(), bytes);
    writeAll(path, file);
    EdfFileReader r;
    QVERIFY(!r.open(path));
    QVERIFY2(r.errorString().contains(error), qPrintable(r.errorString()));
    QVERIFY(!r.isOpen());
    QVERIFY(r.readSignal(0).isEmpty());
}

void TestEdfCodec::talVariants()
{
    const QString path = m_dir.filePath(QStringLiteral("tal.edf"));
    QByteArray file = smallEdf(path);
    QVERIFY(!file.isEmpty());
    static const char raw[] = "+0\x14\x14\0-1.5\x14" "a\x14" "b\x14\0\0\0+2.25\x15" "0.5\x14\xff\xfeX\x14\0+3\x15" "1\x14\x14";
    const QByteArray tals(raw, sizeof(raw)); // the literal's own NUL ends the last TAL
    file.replace(768 + 20, tals.size(), tals);
    writeAll(path, file);
    EdfFileReader r;
    QVERIFY2(r.open(path), qPrintable(r.errorString()));
    const QList<EdfAnnotation>& list = r.annotations();
    QCOMPARE(list.size(), 3);
    QCOMPARE(list[0].onsetTicks, -15000000LL);
    QCOMPARE(list[0].durationTicks, -1LL);
    QCOMPARE(list[0].text, QStringLiteral("a"));
    QCOMPARE(list[1].text, QStringLiteral("b"));
    QCOMPARE(list[2].onsetTicks, 22500000LL);
    QCOMPARE(list[2].durationTicks, 5000000LL);
    QCOMPARE(list[2].text.right(1), QStringLiteral("X"));
    QVERIFY(list[2].text.contains(QChar(QChar::ReplacementCharacter)));
    QCOMPARE(r.recordStartTicks(), (QList<qint64>{0, Second}));
}

// Other writers' headers: a Latin-1 byte, NUL padding, a leap day of 2000 as "00".
void TestEdfCodec::foreignHeader()
{
    const QString path = m_dir.filePath(QStringLiteral("foreign.edf"));
    QByteArray file = smallEdf(path);
    QVERIFY(!file.isEmpty());
    file.replace(8, 3, "J\xe9n");
    file.replace(88 + 70, 2, QByteArray(2, '\0'));
    file.replace(168, 8, "29.02.00");
    writeAll(path, file);
    EdfFileReader r;
    QVERIFY2(r.open(path), qPrintable(r.errorString()));
    QVERIFY(r.header().patient.startsWith(QStringLiteral("J\u00e9n")));
    QCOMPARE(r.header().startDateTime.date(), QDate(2000, 2, 29));

    // "EDF+C" without an annotation signal (as some converters write): read as plain EDF.
    file.replace(256 + 16, 15, "Other          ");
    writeAll(path, file);
    QVERIFY2(r.open(path), qPrintable(r.errorString()));
    QVERIFY(!r.isPlus());
    QCOMPARE(r.dataSignals(), (QList<int>{0, 1}));
    QCOMPARE(r.readSignal(0).size(), 20);
    QVERIFY(r.annotations().isEmpty());
}

void TestEdfCodec::writerRefuses()
{
    const QString path = m_dir.filePath(QStringLiteral("refused.edf"));
    EdfFileHeader old = identity(0, Second);
    old.startDateTime = QDateTime(QDate(1984, 12, 31), QTime(23, 59));
    const EdfSignalHeader ok = signal("A", 10, -1, 1, -10, 10);
    const QList<std::pair<EdfFileHeader, QList<EdfSignalHeader>>> cases{
        {old, {ok}},
        {identity(0, 1), {ok}}, // 100 ns records do not fit the duration field
        {identity(0, Second), {signal("A", 10, -1, 1, 10, 10)}},
        {identity(0, Second), {signal("A", 10, -1, 1, -40000, 10)}},
        {identity(0, Second), {signal("A", 10, 2, 2, -10, 10)}},
        {identity(0, Second), {signal("A", 10, -1e9, 1, -10, 10)}},
        {identity(0, Second), {signal("A", 0, -1, 1, -10, 10)}},
        {identity(0, Second), {signal("A", 6000000, -1, 1, -10, 10)}}};
    for (const auto& [header, sigs] : cases)
    {
        EdfFileWriter w;
        QVERIFY(!w.open(path, EdfFileWriter::Format::Edf, header, sigs));
        QVERIFY(!w.isOpen());
        QVERIFY(!w.addAnnotation(0, -1, "x"));
    }
    EdfFileWriter w;
    QVERIFY(!w.open(QStringLiteral("/proc/orvex-no-such-dir/x.edf"), EdfFileWriter::Format::Edf,
                    identity(0, Second), {ok}));
    QVERIFY(w.open(path, EdfFileWriter::Format::Edf, identity(0, Second), {ok}));
    const QList<float> v(10, 0.0f);
    QVERIFY(!w.writeRecord(QList<const float*>{v.data(), v.data()})); // one signal too many
}

// Every prefix of a valid file, and files with random bytes overwritten, either open or are
// refused; reading whatever opened stays inside the file.
void TestEdfCodec::garbageNeverCrashes()
{
    const QString path = m_dir.filePath(QStringLiteral("fuzz.edf"));
    const QByteArray valid = smallEdf(path);
    QVERIFY(!valid.isEmpty());
    QRandomGenerator random(12345);
    int opened = 0;
    for (int round = 0; round < 600; ++round)
    {
        QByteArray bytes = valid;
        if (round < valid.size() / 8)
            bytes.truncate(round * 8);
        else
            for (int k = 0; k < 4; ++k)
                bytes[random.bounded(int(bytes.size()))] = char(random.bounded(256));
        writeAll(path, bytes);
        EdfFileReader r;
        if (!r.open(path))
        {
            QVERIFY(!r.errorString().isEmpty());
            continue;
        }
        ++opened;
        for (int s : r.dataSignals())
            QCOMPARE(r.readSignal(s).size(), r.samplesInSignal(s));
    }
    QVERIFY(opened > 0);
}

QTEST_GUILESS_MAIN(TestEdfCodec)
#include "tst_edfcodec.moc"
