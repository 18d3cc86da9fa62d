#include "formats/EDFWriter.h"
#include "formats/EdfFileWriter.h"
#include "support/ReferenceRun.h"

#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr qint64 Second = 10000000;

struct Mark
{
    double onset;    // seconds from the first sample
    double duration; // 0 when none
    QString text;
};

// What a correct reader must find in a file we wrote.
struct Expected
{
    QString path;
    QStringList labels;
    double rate = 0;
    QList<QList<double>> values; // per channel, physical
    QList<double> steps;         // quantisation step per channel
    QList<Mark> marks;
};

EdfSignalHeader signal(const QString& label, int samples, double pmin, double pmax, int dmin, int dmax)
{
    EdfSignalHeader s;
    s.label = label;
    s.physicalDimension = QStringLiteral("uV");
    s.physicalMin = pmin;
    s.physicalMax = pmax;
    s.digitalMin = dmin;
    s.digitalMax = dmax;
    s.prefiltering = QStringLiteral("HP:0.5Hz");
    s.samplesPerRecord = samples;
    return s;
}

// Mixed sines sized to the channel's range, with a few samples beyond it (clipped on writing).
double testValue(int channel, qint64 i, double rate, double amplitude)
{
    const double t = double(i) / rate;
    double v = amplitude * (0.6 * std::sin(2 * M_PI * (3.0 + channel) * t) + 0.3 * std::sin(2 * M_PI * 17.3 * t + channel));
    if (i % 97 == 13)
        v = (i % 2 ? 1.3 : -1.3) * amplitude;
    return v;
}

// The low-level writer: `records` records of `recordTicks`, marks added before the first record.
Expected writeLowLevel(const QString& path, bool bdf, qint64 recordTicks, int perRecord, int records,
                       const QList<EdfSignalHeader>& signalList, const QList<Mark>& marks)
{
    Expected e;
    e.path = path;
    e.rate = perRecord * double(Second) / double(recordTicks);
    e.marks = marks;
    EdfFileHeader id;
    id.startDateTime = QDateTime(QDate(2024, 3, 5), QTime(10, 20, 30, 250));
    id.recordDurationTicks = recordTicks;
    id.patient = EdfFileHeader::formatPatientField("P-1", 'F', QDate(1980, 1, 2), "Test Person");
    EdfFileWriter w;
    if (!w.open(path, bdf ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf, id, signalList))
        return {};
    for (const Mark& m : marks)
        w.addAnnotation(qint64(std::llround(m.onset * Second)), m.duration > 0 ? qint64(std::llround(m.duration * Second)) : -1,
                        m.text);
    std::vector<std::vector<float>> record(size_t(signalList.size()), std::vector<float>(size_t(perRecord)));
    QList<const float*> pointers;
    for (const std::vector<float>& r : record)
        pointers.append(r.data());
    e.values.resize(signalList.size());
    for (int s = 0; s < signalList.size(); ++s) {
        e.labels.append(signalList[s].label);
        e.steps.append((signalList[s].physicalMax - signalList[s].physicalMin)
                       / (double(signalList[s].digitalMax) - signalList[s].digitalMin));
    }
    for (int r = 0; r < records; ++r) {
        for (int s = 0; s < signalList.size(); ++s) {
            const double amplitude = std::max(std::abs(signalList[s].physicalMin), std::abs(signalList[s].physicalMax));
            for (int k = 0; k < perRecord; ++k) {
                const float v = float(testValue(s, qint64(r) * perRecord + k, e.rate, amplitude));
                record[size_t(s)][size_t(k)] = v;
                e.values[s].append(std::clamp(double(v), signalList[s].physicalMin, signalList[s].physicalMax));
            }
        }
        if (!w.writeRecord(pointers))
            return {};
    }
    return w.close() ? e : Expected{};
}

// The recorder: blocks of 10 samples for 6.48 s, the partial record kept with clearShift.
Expected writeRecorder(const QString& path)
{
    const QStringList labels{"Fp1", "Fp2", "C3", "A very long channel label"};
    const QList<double> ranges{500, 200, 1000};
    const int rate = 250;
    Expected e;
    e.path = path;
    e.rate = rate;
    for (const QString& l : labels)
        e.labels.append(l.left(15));
    EDFWriter w(path, QList<QString>(labels.begin(), labels.end()), rate, {{"HP", 0.5f}, {"LP", 40.0f}}, ranges);
    if (!w.isFileOpen())
        return {};
    e.values.resize(labels.size());
    QList<std::pair<double, double>> limits; // physical range of each channel in the file
    for (int c = 0; c < labels.size(); ++c) {
        limits.append(c < ranges.size() ? std::pair(-ranges[c], ranges[c]) : std::pair(-32768.0, 32767.0));
        e.steps.append((limits[c].second - limits[c].first) / 65535.0);
    }

    QList<float> block(10 * labels.size());
    for (qint64 first = 0; first < 1620; first += 10) {
        for (int c = 0; c < labels.size(); ++c) {
            for (int k = 0; k < 10; ++k) {
                const double range = c < ranges.size() ? ranges[c] : 32767;
                const float v = float(testValue(c, first + k, rate, 0.9 * range));
                block[c * 10 + k] = v;
                // The file holds the opposite polarity of what the recorder was given.
                e.values[c].append(std::clamp(-double(v), limits[c].first, limits[c].second));
            }
        }
        w.writeData(10, block.data());
        if (first == 500) {
            e.marks.append({w.addAnnotation("Start", 0, 0) / 1000.0, 0, "Start"});
            e.marks.append({w.addAnnotation("Dauer – µV ✓ 眼", 1500, 2000) / 1000.0, 2.0, "Dauer – µV ✓ 眼"});
            w.pauseRecord();
            QThread::msleep(30);
            w.continueRecord();
            e.marks.append({w.addAnnotation("after pause", -1, 0) / 1000.0, 0, "after pause"});
        }
        if (first == 1200) {
            const auto r = w.addAnnotationR("R mark");
            if (r.first)
                e.marks.append({r.second / 1000.0, 0.0001, "R mark"});
        }
    }
    w.clearShift(); // 0.5 s of zeros complete the last record
    for (QList<double>& channel : e.values)
        channel.append(QList<double>(130, 0.0));
    return w.close() ? e : Expected{};
}

QList<Mark> lowLevelMarks()
{
    QList<Mark> marks{{0.0, 0, "Start"}, {1.25, 2.5, "Augen zu – Ω ü 眼"}, {0.75, 0, "early, given late"}};
    for (int k = 0; k < 30; ++k) // more than one record holds: they must spill, not vanish
        marks.append({3.0 + 0.01 * k, 0, QStringLiteral("burst %1").arg(k)});
    return marks;
}

} // namespace

class TestEdfMne : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    static void compare(const Expected& e, const QJsonObject& mne)
    {
        QVERIFY2(!e.path.isEmpty(), "writing the file failed");
        QCOMPARE(mne.value("path").toString(), e.path);
        QStringList names;
        for (const QJsonValue& v : mne.value("ch_names").toArray())
            names.append(v.toString());
        QCOMPARE(names, e.labels);
        QCOMPARE(mne.value("sfreq").toDouble(), e.rate);
        QCOMPARE(mne.value("n_times").toInteger(), qint64(e.values.first().size()));

        const QJsonArray data = mne.value("data").toArray();
        QCOMPARE(data.size(), e.values.size());
        for (int c = 0; c < e.values.size(); ++c) {
            const QJsonArray channel = data[c].toArray();
            QCOMPARE(channel.size(), e.values[c].size());
            double worst = 0;
            for (int i = 0; i < channel.size(); ++i)
                worst = std::max(worst, std::abs(channel[i].toDouble() - e.values[c][i]));
            // Rounding to the nearest step: half a step at most.
            QVERIFY2(worst <= 0.5 * e.steps[c] * (1 + 1e-6), qPrintable(QString("%1 channel %2: error %3, step %4")
                                                                      .arg(e.path).arg(c).arg(worst).arg(e.steps[c])));
        }

        QList<Mark> expected = e.marks;
        std::stable_sort(expected.begin(), expected.end(), [](const Mark& a, const Mark& b) { return a.onset < b.onset; });
        const QJsonArray found = mne.value("annotations").toArray();
        QCOMPARE(found.size(), expected.size());
        for (int i = 0; i < found.size(); ++i) {
            const QJsonObject a = found[i].toObject();
            QCOMPARE(a.value("description").toString(), expected[i].text);
            QVERIFY2(std::abs(a.value("onset").toDouble() - expected[i].onset) < 1e-7,
                     qPrintable(QString("%1: onset %2").arg(expected[i].text).arg(a.value("onset").toDouble())));
            QVERIFY(std::abs(a.value("duration").toDouble() - expected[i].duration) < 1e-7);
        }
    }

private Q_SLOTS:
    // Every kind of file we write, read by MNE in one run.
    void mneReadsOurFiles()
    {
        QList<Expected> files;
        files << writeLowLevel(m_dir.filePath("low.edf"), false, Second / 2, 100, 15,
                               {signal("Fp1", 100, -1000, 1000, -32768, 32767),
                                signal("C3", 100, -500, 800, -2048, 2047),
                                signal("ABCDEFGHIJKLMNOP", 100, -0.25, 0.25, -32768, 32767)},
                               lowLevelMarks());
        files << writeLowLevel(m_dir.filePath("low.bdf"), true, Second, 256, 8,
                               {signal("Fp1", 256, -1000, 1000, -8388608, 8388607),
                                signal("Cz", 256, -3.5, 12.75, -1000, 1000)},
                               lowLevelMarks());
        files << writeRecorder(m_dir.filePath("recorder.edf"));
        files << writeRecorder(m_dir.filePath("recorder.bdf"));
        QCOMPARE(files.last().marks.size(), 4);

        QStringList paths;
        for (const Expected& e : files)
            paths.append(e.path);
        QString error;
        const QJsonArray mne = ReferenceRun::mne(paths, true, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(mne.size(), files.size());
        for (int i = 0; i < files.size(); ++i)
            compare(files[i], mne[i].toObject());
    }
};

QTEST_GUILESS_MAIN(TestEdfMne)
#include "tst_edf_mne.moc"
