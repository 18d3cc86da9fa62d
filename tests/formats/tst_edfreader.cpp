#include "dsp/FIRfilter.h"
#include "dsp/NotchFilter.h"
#include "formats/EDFDataProvider.h"
#include "formats/EDFReader.h"
#include "formats/EdfFileWriter.h"
#include "services/GlobalConsole.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr double Range = 1000.0; // physical +-1000 uV over 16 bits
const double Step = 2 * Range / 65535.0;
const QDateTime Start(QDate(2024, 3, 5), QTime(10, 20, 30, 250));

using Source = std::function<double(int signal, int index)>;

struct Annotation
{
    qint64 onsetTicks;
    qint64 durationTicks;
    QString text;
};

// Writes `records` records of 1 s at `rate` Hz per signal, storing -x as the recorder does.
bool writeFile(const QString& path, bool bdf, int rate, int records, const Source& x,
               const QList<Annotation>& annotations = {}, int signalCount = 2,
               const QString& prefilter = "HP:0.5Hz LP:30.0Hz ", qint64 recordTicks = 10000000)
{
    EdfFileHeader id;
    id.patient = EdfFileHeader::formatPatientField("MCH-0234567", 'F', QDate(1951, 8, 2), "Haagse Harry", "extra");
    id.recording = EdfFileHeader::formatRecordingField(Start.date(), "A1", "Tech", "Orvex 8");
    id.startDateTime = Start;
    id.recordDurationTicks = recordTicks;
    QList<EdfSignalHeader> headers;
    for (int s = 0; s < signalCount; ++s)
    {
        EdfSignalHeader h;
        h.label = QString("Ch%1").arg(s + 1);
        h.physicalDimension = "uV";
        h.physicalMin = -Range;
        h.physicalMax = Range;
        h.prefiltering = prefilter;
        h.samplesPerRecord = rate;
        headers.append(h);
    }
    EdfFileWriter w;
    if (!w.open(path, bdf ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf, id, headers))
        return false;
    for (const Annotation& a : annotations)
        w.addAnnotation(a.onsetTicks, a.durationTicks, a.text);
    std::vector<std::vector<float>> data(size_t(signalCount), std::vector<float>(size_t(rate), 0.0f));
    QList<const float*> pointers;
    for (const auto& d : data)
        pointers.append(d.data());
    for (int r = 0; r < records; ++r)
    {
        for (int s = 0; s < signalCount; ++s)
            for (int i = 0; i < rate; ++i)
                data[size_t(s)][size_t(i)] = float(-x(s, r * rate + i));
        if (!w.writeRecord(pointers))
            return false;
    }
    return w.close();
}

double ramp(int s, int i) { return (s + 1) * 100.0 * std::sin(i * 0.01) + (s == 0 ? 300.0 : -50.0); }

double rms(const QList<float>& v, int from)
{
    double sum = 0;
    for (int i = from; i < v.size(); ++i)
        sum += double(v[i]) * v[i];
    return std::sqrt(sum / (v.size() - from));
}

} // namespace

class TestEdfReader : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString file(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void readsBackValuesAndHeader_data()
    {
        QTest::addColumn<bool>("bdf");
        QTest::newRow("edf") << false;
        QTest::newRow("bdf") << true;
    }
    void readsBackValuesAndHeader()
    {
        QFETCH(bool, bdf);
        const QString path = file(bdf ? "a.bdf" : "a.edf");
        QVERIFY(writeFile(path, bdf, 250, 4, ramp));
        EDFReader r(path);
        QCOMPARE(r.getBuffData(0, 10, nullptr), -2);
        QVERIFY(r.open());
        QCOMPARE(r.startDate(), Start);
        QCOMPARE(r.samplingRate(), 250.0f);
        QCOMPARE(r.lengthSamples(), 1000u);
        QCOMPARE(r.getSeconds(), 4.0);
        QCOMPARE(r.dimension(), QString("uV"));
        QCOMPARE(r.getChannelNames(), (QList<QString>{"Ch1", "Ch2"}));
        const auto montage = r.getFileMontage();
        QCOMPARE(montage->size(), 2);
        QCOMPARE((*montage)[1]->getName(), QString("Ch2"));
        QCOMPARE(montage->getCurrentSampleFreq(), 250.0f);
        QCOMPARE(r.getFilters().value("HP"), 0.5f);

        QList<double> out(2 * 300, 12345.0);
        QCOMPARE(r.getBuffData(800, 300, out.data()), 200); // 200 left per channel
        for (int s = 0; s < 2; ++s)
            for (int i = 0; i < 200; ++i)
                QVERIFY2(std::abs(out[s * 300 + i] - ramp(s, 800 + i)) <= Step, qPrintable(QString("%1 %2 %3").arg(i).arg(out[s * 300 + i]).arg(ramp(s, 800 + i))));
        QCOMPARE(out[299], 12345.0); // not read: untouched
        const QList<float> f = r.getChannelDataFloat(1, 10, 5);
        QCOMPARE(f.size(), 5);
        QVERIFY(std::abs(f[0] - ramp(1, 10)) <= Step);
        QVERIFY(r.getChannelData(2, 0, 5).isEmpty());
        QCOMPARE(r.getChannelData(0, 990, 4000000000u).size(), 10); // sized by the file
        QVERIFY(r.close());
        QVERIFY(!r.close());
        QCOMPARE(montage->size(), 0);
    }

    void durationIsTruncated()
    {
        const QString path = file("short.edf");
        QVERIFY(writeFile(path, false, 25, 599, ramp, {}, 1, "0", 1000000)); // 599 x 0.1 s
        EDFReader r(path);
        QVERIFY(r.open());
        QCOMPARE(r.getSeconds(), 59.0);
        QCOMPARE(r.samplingRate(), 250.0f);
        QVERIFY(r.getFilters().isEmpty());
        QCOMPARE(r.infoShort(), QString("1ch, 250Hz, 00:00:59"));
        QCOMPARE(EDFReader::timeToText(3723.5, true), QString("01:02:03.500"));
        const EDFInfo info = EDFReader::fileInfo(path);
        QVERIFY(info.valid);
        QCOMPARE(info.lengthSamples, 599u * 25);
    }

    void prefilterParsing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QList<float>>("values");
        QTest::newRow("writer form") << "HP:0.5Hz LP:30.0Hz " << QStringList{"HP", "LP"} << QList<float>{0.5f, 30.0f};
        QTest::newRow("long name") << "Notch:50.0Hz" << QStringList{"No"} << QList<float>{50.0f};
        QTest::newRow("extra blanks") << "  HP:1.0Hz   " << QStringList{"HP"} << QList<float>{1.0f};
        QTest::newRow("no filters") << "0" << QStringList{} << QList<float>{};
        QTest::newRow("foreign text") << "HP:DC" << QStringList{} << QList<float>{};
        QTest::newRow("empty") << "" << QStringList{} << QList<float>{};
    }
    void prefilterParsing()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, keys);
        QFETCH(QList<float>, values);
        const QMap<QString, float> map = EDFReader::parsePrefilter(text);
        QCOMPARE(QStringList(map.keys()), keys);
        QCOMPARE(map.values(), values);
    }

    void patientAndAnnotations()
    {
        const QString path = file("ann.edf");
        const QList<Annotation> annotations{{10004000, 5000000, "first"},
                                            {10009000, -1, " second \u00e4 "},
                                            {30000000, -1, "third"}};
        QVERIFY(writeFile(path, false, 100, 4, ramp, annotations));
        EDFReader r(path);
        QVERIFY(r.open());
        PatientInfo p;
        QVERIFY(r.getPatientInfo(p));
        QCOMPARE(p.patientCode, QString("MCH-0234567"));
        QCOMPARE(p.gender, 2);
        QCOMPARE(p.birthYear, 1951);
        QCOMPARE(p.birthMonth, 8);
        QCOMPARE(p.birthDay, 2);
        QCOMPARE(p.patientName, QString("Haagse Harry"));
        QCOMPARE(p.patientAdditional, QString("extra"));
        QCOMPARE(p.equipment, QString("Orvex 8"));

        QList<edf_annotation_struct> list;
        r.getAnnotationList(list);
        QCOMPARE(list.size(), 3);
        QCOMPARE(list[0].onset, 10004000); // from the start moment, sub-second offset removed
        QCOMPARE(QByteArray(list[0].duration), QByteArray("0.5"));
        QCOMPARE(QByteArray(list[1].duration), QByteArray());
        const QMap<qint64, QString> ms = r.getAnnotations();
        QCOMPARE(ms.keys(), (QList<qint64>{1000, 3000}));
        QCOMPARE(ms[1000], QString(" second \u00e4 ")); // the later of equal milliseconds

        EDFDataProvider provider(path);
        const QMap<double, QString> markers = provider.getMarkers();
        // Seconds with their fraction: markers a few milliseconds apart stay apart.
        QCOMPARE(markers.keys(), (QList<double>{1.0004, 1.0009, 3.0}));
        QCOMPARE(markers[1.0009], QString("second \u00e4"));
    }

    void providerSampleRanges()
    {
        const QString path = file("p.edf");
        QVERIFY(writeFile(path, false, 250, 2, ramp));
        EDFDataProvider p(path);
        QVERIFY(p.isValid());
        QCOMPARE(p.getDurationSamples(), 500);
        QCOMPARE(p.getSingleChannelDataSamples(0, 100, -1).size(), 400);
        QCOMPARE(p.getSingleChannelDataSamples(0, 100, 9999).size(), 400);
        QCOMPARE(p.getSingleChannelDataSamples(0, 10, 20).size(), 10);
        QVERIFY(p.getSingleChannelDataSamples(0, 500, -1).isEmpty());
        QVERIFY(p.closeFile());
        QVERIFY(!p.isValid());
        QVERIFY(p.reopenFile());
    }

    void notchAndHighPassAttenuate()
    {
        const QString path = file("mains.edf");
        const double pi = 3.14159265358979;
        // Channel 0: 50 Hz mains; channel 1: 200 uV offset plus a 10 Hz wave.
        QVERIFY(writeFile(path, false, 250, 20, [pi](int s, int i) {
            return s == 0 ? 300.0 * std::sin(2 * pi * 50 * i / 250.0) : 200.0 + 20.0 * std::sin(2 * pi * 10 * i / 250.0);
        }));
        EDFDataProvider p(path);
        QVERIFY(p.applyFilters(1.0, 0, 50, 1.0));
        QVERIFY(p.isFiltered());
        QVERIFY(p.getWorkingCopyPath().contains(".temp."));
        QVERIFY(QFile::exists(p.getWorkingCopyPath()));
        const QList<float> mains = p.getSingleChannelDataSamples(0, 0, -1);
        const QList<float> level = p.getSingleChannelDataSamples(1, 0, -1);
        QCOMPARE(mains.size(), 5000);
        QVERIFY(rms(mains, 2500) < 300.0 / std::sqrt(2.0) * 0.05);
        double mean = 0;
        for (int i = 2500; i < 5000; ++i)
            mean += level[i];
        QVERIFY(std::abs(mean / 2500) < 1.0);
        QVERIFY(rms(level, 2500) > 10.0); // the 10 Hz wave passes
        QVERIFY(p.applyFilters(0, 0, 0, 1.0)); // all off: back to the file itself
        QVERIFY(!p.isFiltered());
        QVERIFY(!QFile::exists(workingCopy(path)));
    }

    void chainEqualsFiltersRunByHand()
    {
        const QString path = file("chain.edf");
        QVERIFY(writeFile(path, false, 250, 6, [](int s, int i) { return ramp(s, i * 7) + 30.0 * std::sin(i * 1.3); }));
        EDFReader original(path);
        QVERIFY(original.open());
        EDFDataProvider p(path);
        QVERIFY(p.applyFilters(0.5, 30, 50, 2.0));
        for (unsigned ch = 0; ch < 2; ++ch)
        {
            QList<float> x = original.getChannelDataFloat(ch, 0, 1500);
            FIRfilter hp(AbstractFilter::HighPass, AbstractFilter::Hamming, 4, 250, 0.5f);
            FIRfilter lp(AbstractFilter::LowPass, AbstractFilter::Hamming, 4, 250, 30.0f);
            NotchFilter notch(250, 50, 2);
            for (float& v : x)
                v = notch.InternalProcess(lp.InternalProcess(hp.InternalProcess(v))) * 2.0f;
            const QList<float> y = p.getSingleChannelDataSamples(ch, 0, -1);
            QCOMPARE(y.size(), 1500);
            for (int i = 0; i < 1500; ++i)
                QVERIFY2(std::abs(y[i] - x[i]) <= Step * 0.5 + 1e-3, qPrintable(QString::number(i)));
        }
    }

    void saveChangesReplacesFile()
    {
        const QString path = file("save.edf");
        const QString other = file("saved-as.edf");
        QVERIFY(writeFile(path, false, 250, 3, ramp, {{5000000, -1, "kept"}}));
        EDFDataProvider p(path);
        QVERIFY(!p.saveChanges(QString())); // nothing filtered
        QVERIFY(p.applyFilters(0, 0, 0, 0.5));
        const QList<float> halved = p.getSingleChannelDataSamples(0, 0, -1);
        QVERIFY(std::abs(halved[7] - ramp(0, 7) / 2) <= Step);
        QVERIFY(p.saveChanges(other));
        QCOMPARE(p.getPath(), other);
        QVERIFY(p.getWorkingCopyPath().isEmpty());
        QVERIFY(p.isValid());
        QCOMPARE(p.getSingleChannelDataSamples(0, 0, -1), halved);
        QCOMPARE(p.getMarkers().value(0.5), QString("kept"));
        QVERIFY(QFile::exists(path)); // saved elsewhere: the original stays

        EDFDataProvider q(path);
        QVERIFY(q.applyFilters(0, 40, 0, 1.0));
        const QList<float> smoothed = q.getSingleChannelDataSamples(1, 0, -1);
        QVERIFY(q.saveChanges(QString()));
        QVERIFY(!QFile::exists(EDFDataProvider::workingCopyPath(path)));
        EDFReader again(path);
        QVERIFY(again.open());
        QCOMPARE(again.getChannelDataFloat(1, 0, 750), smoothed);
    }

    void damagedFileIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("garbage") << QByteArray("not an edf file at all");
        QByteArray header(256, ' ');
        header.replace(0, 1, "7");
        QTest::newRow("bad version") << header;
        QTest::newRow("empty") << QByteArray();
    }
    void damagedFileIsRefused()
    {
        QFETCH(QByteArray, bytes);
        const QString path = file("bad.edf");
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        f.close();
        EDFReader r(path);
        QVERIFY(!r.open());
        QVERIFY(!r.isFileOpened());
        QVERIFY(r.getChannelDataFloat(0, 0, 10).isEmpty());
        PatientInfo info;
        QVERIFY(!r.getPatientInfo(info));
        EDFDataProvider p(path);
        QVERIFY(!p.isValid());
        QVERIFY(p.getSingleChannelDataSamples(0, 0, -1).isEmpty());
        QVERIFY(!p.applyFilters(1, 0, 0, 1));
        QVERIFY(GlobalConsole::currentText().contains("INVALID FILE"));
        QVERIFY(GlobalConsole::currentText().contains("EDFReader: cannot open"));
    }

private:
    static QString workingCopy(const QString& path) { return EDFDataProvider::workingCopyPath(path); }
};

QTEST_GUILESS_MAIN(TestEdfReader)
#include "tst_edfreader.moc"
