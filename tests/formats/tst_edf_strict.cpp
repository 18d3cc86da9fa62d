// Our EDF+/BDF+ files in a strict outside reader (libedf), in MNE and in biosig: a recording
// with a pause, a burst of 200 annotations in one second and non-ASCII texts opens without
// complaint, with our samples (stored with the opposite polarity, by design) and every
// annotation.
#include "formats/EDFReader.h"
#include "formats/EDFWriter.h"
#include "support/ReferenceRun.h"
#include "support/StrictEdfRead.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

class TestEdfStrict : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void strictReaderOpensOurFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("fileType");
        QTest::newRow("EDF+") << "paused.edf" << 1;
        QTest::newRow("BDF+") << "paused.bdf" << 3;
    }

    void strictReaderOpensOurFiles()
    {
        QFETCH(QString, name);
        QFETCH(int, fileType);
        const QString path = m_dir.filePath(name);
        const QStringList texts = { QStringLiteral("Augen geschlossen — 目を閉じて"), QStringLiteral("naïve électrode") };
        {
            EDFWriter writer(path, QList<QString> { "O1", "O2", "Fp1" }, 250, { { "HP", 1.0f } }, {});
            QVERIFY(writer.isFileOpen());
            QList<QList<float>> block(3, QList<float>(50));
            for (int b = 0; b < 25; ++b) {
                for (int c = 0; c < 3; ++c)
                    for (int i = 0; i < 50; ++i)
                        block[c][i] = float(100 * (c + 1) + 40 * std::sin(0.3 * (b * 50 + i)));
                writer.writeData(block);
                if (b == 10)
                    writer.pauseRecord();
                if (b == 12) {
                    writer.continueRecord();
                    writer.addAnnotation(texts[0], -1, 0);
                    for (int n = 0; n < 200; ++n)
                        writer.addAnnotation(QStringLiteral("burst %1 with forty bytes of text....").arg(n, 3), -1, 0);
                    writer.addAnnotation(texts[1], -1, 500);
                }
            }
            writer.clearShift();
            QVERIFY(writer.close());
        }

        const StrictEdfRead strict = StrictEdfRead::of(path);
        QVERIFY2(strict.ok, qPrintable(strict.refusal));
        QCOMPARE(strict.fileType, fileType);
        QCOMPARE(strict.records, qint64(5)); // 25 blocks of 0.2 s: no record added for annotations
        QCOMPARE(strict.annotations.size(), 202);
        QStringList read;
        for (const auto& annotation : strict.annotations)
            read.append(annotation.second);
        QVERIFY(read.contains(texts[0]) && read.contains(texts[1]));

        // The same in MNE and biosig.
        QString error;
        const QJsonObject mne = ReferenceRun::mne({ path }, false, &error).first().toObject();
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(mne.value("n_times").toInt(), 5 * 250);
        QCOMPARE(mne.value("annotations").toArray().size(), 202);
        const QString save2gdf = QStandardPaths::findExecutable(QStringLiteral("save2gdf"));
        if (!save2gdf.isEmpty()) {
            const ReferenceRun biosig = ReferenceRun::program(save2gdf, { "-JSON", path });
            QVERIFY2(biosig.ok, qPrintable(biosig.error));
            const QJsonObject header = QJsonDocument::fromJson(biosig.out.mid(biosig.out.indexOf('{'))).object();
            QCOMPARE(header.value("NumberOfRecords").toInt(), 5);
            QCOMPARE(header.value("EVENT").toArray().size(), 202);
        }

        EDFReader ours(path);
        QVERIFY(ours.open());
        QCOMPARE(strict.signalList.size(), 3);
        for (int c = 0; c < 3; ++c) {
            const QList<double> samples = ours.getChannelData(unsigned(c), 0, ours.lengthSamples());
            double sum = 0;
            for (double value : samples)
                sum += value;
            QCOMPARE(strict.signalList[c].samples, qint64(samples.size()));
            // Stored with the opposite polarity; half a quantisation step per sample at most.
            QVERIFY2(std::abs(strict.signalList[c].sum + sum) <= 0.5 * samples.size(),
                     qPrintable(QStringLiteral("%1 vs %2").arg(strict.signalList[c].sum).arg(sum)));
        }
    }
};

QTEST_GUILESS_MAIN(TestEdfStrict)
#include "tst_edf_strict.moc"
