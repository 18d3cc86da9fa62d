#include "formats/OxdReader.h"
#include "formats/OxdWriter.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <limits>

class TestOxd : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    // Blocks of arbitrary bit patterns: NaNs with payloads, infinities, -0 and denormals too.
    static QList<QList<QList<float>>> makeBlocks(int count)
    {
        QRandomGenerator random(42);
        QList<QList<QList<float>>> blocks;
        for (int b = 0; b < count; ++b) {
            const int samples = b == 3 ? 0 : int(random.bounded(1, 40));
            QList<QList<float>> block(6);
            for (QList<float>& channel : block) {
                for (int k = 0; k < samples; ++k) {
                    const quint32 bits = random.generate();
                    float value = 0;
                    std::memcpy(&value, &bits, sizeof(value));
                    channel.append(value);
                }
            }
            if (samples > 2) {
                block[0][0] = -0.0f;
                block[0][1] = std::numeric_limits<float>::infinity();
                block[0][2] = std::numeric_limits<float>::denorm_min();
            }
            blocks.append(block);
        }
        return blocks;
    }

    static bool sameBits(const QList<QList<float>>& a, const QList<QList<float>>& b)
    {
        if (a.size() != b.size())
            return false;
        for (qsizetype c = 0; c < a.size(); ++c) {
            if (a[c].size() != b[c].size())
                return false;
            if (!a[c].isEmpty()
                && std::memcmp(a[c].constData(), b[c].constData(), size_t(a[c].size()) * sizeof(float)) != 0)
                return false;
        }
        return true;
    }

    QString writeRecording(const QString& name, const QList<QList<QList<float>>>& blocks, bool close)
    {
        const QString path = m_folder.filePath(name);
        OxdWriter writer;
        if (!writer.open(path, QJsonObject { { "device", "GeneratorDevice" }, { "rate", 250 } }))
            return QString();
        for (qsizetype b = 0; b < blocks.size(); ++b) {
            writer.writeBlock(1000 + 40 * b, blocks[b]);
            if (b == 5)
                writer.addAnnotation(200, 1234, QStringLiteral("eyes closed ✓"));
        }
        if (close)
            writer.close();
        else
            QFile::copy(path, path + QStringLiteral(".copy")); // the file as a crash leaves it
        return close ? path : path + QStringLiteral(".copy");
    }

private Q_SLOTS:
    void samplesComeBackBitExact()
    {
        const auto blocks = makeBlocks(20);
        const QString path = writeRecording(QStringLiteral("rec.oxd"), blocks, true);
        OxdReader reader;
        QVERIFY2(reader.read(path), qPrintable(reader.errorString()));
        QVERIFY(reader.isComplete());
        QCOMPARE(reader.header().value("device").toString(), QStringLiteral("GeneratorDevice"));
        QCOMPARE(reader.blocks().size(), blocks.size());
        for (qsizetype b = 0; b < blocks.size(); ++b) {
            QCOMPARE(reader.blocks()[b].arrivalMs, 1000 + 40 * b);
            QVERIFY2(sameBits(reader.blocks()[b].channels, blocks[b]), qPrintable(QString::number(b)));
        }
        QCOMPARE(reader.annotations().size(), 1);
        QCOMPARE(reader.annotations().first().recordingMs, 200);
        QCOMPARE(reader.annotations().first().wallMs, 1234);
        QCOMPARE(reader.annotations().first().text, QStringLiteral("eyes closed ✓"));
    }

    void aCutFileKeepsEveryCompleteChunk()
    {
        const auto blocks = makeBlocks(12);
        const QString whole = writeRecording(QStringLiteral("cut.oxd"), blocks, false);
        QFile file(whole);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QString cutPath = m_folder.filePath(QStringLiteral("cut-copy.oxd"));
        qsizetype previousBlocks = 0;
        QList<qsizetype> sizes;
        for (qsizetype size = 12 + 8; size < bytes.size(); size += 7)
            sizes.append(size);
        sizes.append(bytes.size());
        for (qsizetype size : sizes) {
            QFile cut(cutPath);
            QVERIFY(cut.open(QIODevice::WriteOnly | QIODevice::Truncate));
            cut.write(bytes.left(size));
            cut.close();
            OxdReader reader;
            if (!reader.read(cutPath))
                continue; // cut inside the header chunk
            QVERIFY(!reader.isComplete());
            QVERIFY(reader.blocks().size() >= previousBlocks);
            previousBlocks = reader.blocks().size();
            for (qsizetype b = 0; b < reader.blocks().size(); ++b)
                QVERIFY(sameBits(reader.blocks()[b].channels, blocks[b]));
        }
        QCOMPARE(previousBlocks, blocks.size());
    }

    void damageStopsReadingThere()
    {
        const auto blocks = makeBlocks(8);
        const QString path = writeRecording(QStringLiteral("damaged.oxd"), blocks, true);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        // Flip one sample bit of the fifth block.
        OxdReader clean;
        QVERIFY(clean.read(path));
        qsizetype at = bytes.indexOf(QByteArray("DATA"));
        for (int b = 0; b < 4; ++b)
            at = bytes.indexOf(QByteArray("DATA"), at + 1);
        bytes[at + 8 + 20] = char(bytes[at + 8 + 20] ^ 0x10);
        file.seek(0);
        file.write(bytes);
        file.close();
        OxdReader reader;
        QVERIFY(reader.read(path));
        QCOMPARE(reader.blocks().size(), 4);
        QVERIFY(reader.errorString().contains(QStringLiteral("checksum")));
        QVERIFY(!reader.isComplete());
    }

    void foreignFilesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray() << "empty";
        QTest::newRow("text") << QByteArray("0       patient X") << "no OXD signature";
        QTest::newRow("later version") << QByteArray("ORVEXOXD\x02\x00\x00\x00", 12) << "version 2";
        QTest::newRow("no header chunk") << QByteArray("ORVEXOXD\x01\x00\x00\x00", 12) << "no readable header";
        QTest::newRow("huge length") << QByteArray("ORVEXOXD\x01\x00\x00\x00HEAD\xff\xff\xff\x7f", 20)
                                     << "no readable header";
    }

    void foreignFilesAreRefused()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, error);
        const QString path = m_folder.filePath(QStringLiteral("foreign.oxd"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();
        OxdReader reader;
        QVERIFY(!reader.read(path));
        QVERIFY2(reader.errorString().contains(error), qPrintable(reader.errorString()));
    }

    void unwritablePlaceIsReported()
    {
        OxdWriter writer;
        QVERIFY(!writer.open(QStringLiteral("/proc/no/such/place/rec.oxd"), {}));
        QVERIFY(!writer.errorString().isEmpty());
        QVERIFY(!writer.writeBlock(0, { { 1.0f } }));
    }
};

QTEST_GUILESS_MAIN(TestOxd)
#include "tst_oxd.moc"
