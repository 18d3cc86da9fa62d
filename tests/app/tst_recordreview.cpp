// The review window after any sequence of moves holds exactly what a fresh read of the file
// gives: the moved part of the last window must line up with the newly read part.
#include "app/ui/RecordFolder.h"
#include "app/ui/RecordReviewController.h"
#include "formats/EDFReader.h"
#include "formats/EDFWriter.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

class RecordReviewTest : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_path;

private Q_SLOTS:
    void initTestCase()
    {
        m_path = m_dir.filePath(QStringLiteral("ramp.edf"));
        EDFWriter writer(m_path, QList<QString> { "A", "B" }, 100, {}, QList<double>());
        QList<QList<float>> block(2, QList<float>(10));
        for (int b = 0; b < 95; ++b) { // 9.5 s: the last record is padded
            for (int k = 0; k < 10; ++k) {
                block[0][k] = float(b * 10 + k);
                block[1][k] = -float(b * 10 + k) / 2;
            }
            writer.writeData(block);
        }
        writer.clearShift();
        QVERIFY(writer.close());
    }

    // Deleting a record takes its own files only, never those of a record whose name extends it.
    void recordsKeepTheirOwnFiles()
    {
        QTemporaryDir folder;
        const QStringList names { "session.edf", "session.log", "session.oxd",
                                  "session.2.edf", "session.2.log", "session.2.raw.bdf" };
        for (const QString& name : names)
            QFile::copy(m_path, folder.filePath(name));
        QMap<QString, QStringList> files;
        for (const RecordEntry& record : RecordFolder::scan(folder.path()))
            files.insert(record.name, record.files);
        QCOMPARE(files.value("session"), (QStringList { "session.edf", "session.log", "session.oxd" }));
        QCOMPARE(files.value("session.2"), (QStringList { "session.2.edf", "session.2.log", "session.2.raw.bdf" }));
        QString error;
        QVERIFY(RecordFolder::remove(RecordFolder::scan(folder.path()).constLast(), error));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 3);
    }

    void windowMatchesAFreshRead_data()
    {
        QTest::addColumn<QList<double>>("starts"); // window starts in turn, seconds
        QTest::addColumn<double>("length");
        QTest::newRow("forward a tenth") << QList<double> { 1, 1.1, 1.2 } << 2.0;
        QTest::newRow("back a tenth") << QList<double> { 5, 4.8, 4.7 } << 2.0;
        QTest::newRow("forward more than a window") << QList<double> { 0, 2.5 } << 2.0;
        QTest::newRow("back more than a window") << QList<double> { 6, 1 } << 2.0;
        QTest::newRow("up to the end") << QList<double> { 3, 8, 9 } << 1.0;
        QTest::newRow("back and forth") << QList<double> { 2, 2.01, 1.99, 3.5, 2 } << 5.0;
    }

    void windowMatchesAFreshRead()
    {
        QFETCH(QList<double>, starts);
        QFETCH(double, length);
        RecordReviewController review;
        review.setWindowLength(length);
        QVERIFY(review.openFile(m_path));
        EDFReader reader(m_path);
        QVERIFY(reader.open());
        for (double start : starts)
            review.setWindowStart(start);
        const qint64 first = std::llround(review.windowStart() * 100);
        const TraceBuffer* traces = review.traces();
        const int span = traces->capacity();
        for (int c = 0; c < 2; ++c) {
            const QList<float> expected = reader.getChannelDataFloat(unsigned(c), unsigned(first), unsigned(span));
            QList<float> shown(span);
            traces->copy(c, traces->written() - span, span, shown.data());
            for (int i = 0; i < span; ++i) {
                if (i < expected.size())
                    QCOMPARE(shown[i], expected[i]);
                else
                    QVERIFY(std::isnan(shown[i]));
            }
        }
    }
};

QTEST_GUILESS_MAIN(RecordReviewTest)
#include "tst_recordreview.moc"
