#include "formats/EDFReader.h"
#include "formats/EDFWriter.h"
#include "formats/EdfFileReader.h"
#include "formats/EdfFileWriter.h"
#include "support/ReferenceRun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>

// Our files against biosig's converter (save2gdf): it reads what we write, and we read what
// it writes.
namespace {

constexpr qint64 Second = 10000000;
const QDateTime Start(QDate(2023, 11, 7), QTime(8, 15, 42, 500));

struct Written
{
    QStringList labels;
    double rate = 0;
    QList<QList<double>> values; // physical, per signal, as stored in the file
    QList<double> steps;
};

double wave(int s, qint64 i) { return 700.0 * std::sin(0.05 * double(i) * (s + 1)) + 37.0 * s; }

// Two 200 Hz signals in 1 s records; annotations given in seconds from the start moment.
Written writeSource(const QString& path, bool bdf, const QList<std::pair<double, QString>>& marks)
{
    Written w;
    w.rate = 200;
    w.labels = QStringList{"Fp1", "O2"};
    QList<EdfSignalHeader> headers;
    for (int s = 0; s < 2; ++s) {
        EdfSignalHeader h;
        h.label = w.labels[s];
        h.physicalDimension = QStringLiteral("uV");
        h.physicalMin = -1000;
        h.physicalMax = 1000;
        h.digitalMin = bdf ? -8388608 : -32768;
        h.digitalMax = bdf ? 8388607 : 32767;
        h.samplesPerRecord = 200;
        headers.append(h);
        w.steps.append(h.gain());
    }
    EdfFileHeader id;
    id.startDateTime = Start;
    EdfFileWriter file;
    if (!file.open(path, bdf ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf, id, headers))
        return {};
    for (const auto& [onset, text] : marks)
        file.addAnnotation(qint64(std::llround(onset * Second)), -1, text);
    w.values.resize(2);
    QList<QList<float>> record(2, QList<float>(200));
    for (int r = 0; r < 6; ++r) {
        for (int s = 0; s < 2; ++s) {
            for (int k = 0; k < 200; ++k) {
                record[s][k] = float(wave(s, r * 200 + k));
                w.values[s].append(record[s][k]);
            }
        }
        if (!file.writeRecord(QList<const float*>{record[0].constData(), record[1].constData()}))
            return {};
    }
    return file.close() ? w : Written{};
}

// save2gdf's CSV: a header row of quoted "label [unit]", then one row of values per sample.
QList<QList<double>> readBiosigCsv(const QString& path, QStringList& header)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    QList<QList<double>> columns;
    bool first = true;
    while (!f.atEnd()) {
        const QList<QByteArray> cells = f.readLine().trimmed().split(',');
        if (first) {
            for (const QByteArray& c : cells)
                header.append(QString::fromUtf8(c).remove('"'));
            columns.resize(cells.size());
            first = false;
            continue;
        }
        for (int c = 0; c < cells.size() && c < columns.size(); ++c)
            columns[c].append(cells[c].toDouble());
    }
    return columns;
}

} // namespace

class TestEdfBiosig : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_save2gdf;

    ReferenceRun save2gdf(const QStringList& arguments)
    {
        return ReferenceRun::program(m_save2gdf, arguments);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_save2gdf = QStandardPaths::findExecutable(QStringLiteral("save2gdf"));
        if (m_save2gdf.isEmpty())
            QSKIP("save2gdf (biosig-tools) is not installed");
    }

    void biosigReadsOurFiles_data()
    {
        QTest::addColumn<bool>("bdf");
        QTest::newRow("EDF+") << false;
        QTest::newRow("BDF+") << true;
    }

    // Header, events and every sample as biosig sees them.
    void biosigReadsOurFiles()
    {
        QFETCH(bool, bdf);
        const QString path = m_dir.filePath(bdf ? "ours.bdf" : "ours.edf");
        const QList<std::pair<double, QString>> marks{{0.0, "Start"}, {1.25, "Blink ü"}, {4.5, "End – 眼"}};
        const Written w = writeSource(path, bdf, marks);
        QVERIFY(!w.labels.isEmpty());

        const ReferenceRun json = save2gdf({"-JSON", path});
        QVERIFY2(json.ok, qPrintable(json.error));
        const QJsonObject header = QJsonDocument::fromJson(json.out.mid(json.out.indexOf('{'))).object();
        QCOMPARE(header.value("TYPE").toString(), QString(bdf ? "BDF" : "EDF"));
        QCOMPARE(header.value("NumberOfRecords").toInt(), 6);
        QCOMPARE(header.value("Samplingrate").toDouble(), 200.0);
        // The header's whole second plus the first record's sub-second start.
        const QDateTime start = QDateTime::fromString(header.value("StartOfRecording").toString().left(23),
                                                      "yyyy-MM-dd hh:mm:ss.zzz");
        QVERIFY2(std::abs(start.msecsTo(Start)) <= 1, qPrintable(header.value("StartOfRecording").toString()));
        QStringList labels;
        for (const QJsonValue& c : header.value("CHANNEL").toArray()) {
            const QString label = c.toObject().value("Label").toString();
            if (!label.endsWith("Annotations"))
                labels.append(label);
        }
        QCOMPARE(labels, w.labels);

        // biosig keeps event positions in samples (so within one sample period), counted from
        // the header's whole second: the file's onsets, which include the sub-second start.
        const QJsonArray events = header.value("EVENT").toArray();
        QCOMPARE(events.size(), marks.size());
        const double subSecond = Start.time().msec() / 1000.0;
        for (int i = 0; i < events.size(); ++i) {
            const QJsonObject e = events[i].toObject();
            QCOMPARE(e.value("Description").toString(), marks[i].second);
            QVERIFY2(std::abs(e.value("POS").toDouble() - (marks[i].first + subSecond)) <= 1.0 / w.rate + 1e-9,
                     qPrintable(QString::number(e.value("POS").toDouble())));
        }

        const QString csv = m_dir.filePath("ours.csv");
        const ReferenceRun dump = save2gdf({"-CSV", path, csv});
        QVERIFY2(dump.ok, qPrintable(dump.error));
        QStringList columns;
        const QList<QList<double>> values = readBiosigCsv(csv, columns);
        QCOMPARE(columns, (QStringList{"Fp1 [uV]", "O2 [uV]"}));
        for (int s = 0; s < 2; ++s) {
            QCOMPARE(values[s].size(), w.values[s].size());
            for (int i = 0; i < values[s].size(); ++i) {
                // Half a step of quantisation plus the CSV's six significant digits.
                const double tolerance = 0.5 * w.steps[s] + 1e-5 * std::abs(w.values[s][i]) + 1e-6;
                if (std::abs(values[s][i] - w.values[s][i]) > tolerance)
                    QFAIL(qPrintable(QString("signal %1 sample %2: %3 vs %4").arg(s).arg(i).arg(values[s][i]).arg(w.values[s][i])));
            }
        }
    }

    void weReadBiosigFiles_data()
    {
        QTest::addColumn<QString>("format");
        QTest::newRow("EDF from EDF+") << "EDF";
        QTest::newRow("BDF from EDF+") << "BDF";
    }

    // biosig writes "EDF+C"/"BDF+C" without an annotation signal; the samples must still read.
    void weReadBiosigFiles()
    {
        QFETCH(QString, format);
        const QString source = m_dir.filePath("source.edf");
        const Written w = writeSource(source, false, {{0.5, "mark"}});
        QVERIFY(!w.labels.isEmpty());
        const QString target = m_dir.filePath("biosig." + format.toLower());
        const ReferenceRun convert = save2gdf({"-f=" + format, source, target});
        QVERIFY2(convert.ok, qPrintable(convert.error));

        QString error;
        const QJsonArray mne = ReferenceRun::mne({target}, true, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QJsonArray theirs = mne.first().toObject().value("data").toArray();
        QCOMPARE(theirs.size(), 2);

        EdfFileReader r;
        QVERIFY2(r.open(target), qPrintable(r.errorString()));
        QCOMPARE(r.isBdf(), format == "BDF");
        const QList<int> data = r.dataSignals();
        QCOMPARE(data.size(), 2);
        for (int s = 0; s < 2; ++s) {
            const EdfSignalHeader& h = r.signalHeaders()[data[s]];
            QCOMPARE(h.label, w.labels[s]);
            QCOMPARE(h.samplesPerRecord / r.header().recordDurationSeconds(), w.rate);
            const QList<float> values = r.readSignal(data[s]);
            const QJsonArray mneValues = theirs[s].toArray();
            QCOMPARE(values.size(), w.values[s].size());
            QCOMPARE(mneValues.size(), values.size());
            for (int i = 0; i < values.size(); ++i) {
                // As MNE reads biosig's file (float precision), and near what we gave biosig:
                // its conversion re-quantises, which costs up to about a step more.
                const double mneValue = mneValues[i].toDouble();
                if (std::abs(values[i] - mneValue) > 1e-6 * std::abs(mneValue) + 1e-5
                    || std::abs(values[i] - w.values[s][i]) > 1.5 * w.steps[s] + h.gain())
                    QFAIL(qPrintable(QString("signal %1 sample %2: ours %3, MNE %4, given %5")
                                         .arg(s).arg(i).arg(values[i]).arg(mneValue).arg(w.values[s][i])));
            }
        }

        // The recorder's reader too: names, rate, and the polarity it restores.
        EDFReader reader(target);
        QVERIFY(reader.open());
        QCOMPARE(reader.getChannelNames(), QList<QString>(w.labels.begin(), w.labels.end()));
        QCOMPARE(reader.samplingRate(), float(w.rate));
        QCOMPARE(reader.lengthSamples(), 1200u);
        const QList<double> first = reader.getChannelData(1, 300, 5);
        QCOMPARE(first.size(), 5);
        for (int i = 0; i < 5; ++i)
            QVERIFY(std::abs(first[i] + theirs[1].toArray()[300 + i].toDouble()) <= 1e-4);
    }
};

QTEST_GUILESS_MAIN(TestEdfBiosig)
#include "tst_edf_biosig.moc"
