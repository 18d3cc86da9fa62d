#include "formats/NumericTableCSV.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using Table = NumericTableCSV;

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Big-endian bytes made by reversing the machine's own, independent of the writer's stream.
template <typename T>
QByteArray bigEndian(T value)
{
    QByteArray bytes(reinterpret_cast<const char*>(&value), sizeof(T));
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

} // namespace

class TestNumericTableCSV : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private Q_SLOTS:
    void bothFormsByteForByte()
    {
        Table table;
        table.setHeaders({"a", "b"});
        table.setValue(0, 0, 1.5);
        table.setValue(0, "b", 2);
        QVERIFY(table.save(path("text/sub/t.csv"), true)); // folders are created
        QCOMPARE(readAll(path("text/sub/t.csv")), QByteArray("a;b;\n1.5;2;\n"));
        QVERIFY(table.save(path("b.bin"), false));
        QCOMPARE(readAll(path("b.bin")), QByteArray("[Binary]\na;b;\ndouble;double;\n8;8;\n")
                                             + QByteArray::fromHex("3ff8000000000000" "4000000000000000"));
    }

    void setValueGrowsRowsAndIgnoresOutOfRange()
    {
        Table table;
        table.setHeaders({"x", "y"});
        table.setValue(3, 0, 7.25);
        QCOMPARE(table.doubleValuesAt(0), QList<double>({0.0, 0.0, 0.0, 7.25}));
        QCOMPARE(table.valuesAt("y", 1, 3), QList<QVariant>({0.0, 0.0}));
        for (const auto& [row, column] : QList<QPair<int, int>>{{-1, 0}, {5, 2}, {5, -1}})
            table.setValue(row, column, 1);
        table.setValue(5, "z", 1);
        QCOMPARE(table.count(), 4);
    }

    void formatOfEveryEnumerator_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("binary"); // type and size lines, then the record
        const double v = -12.34567;
        // By value; the enumerator names do not describe values 4 to 8.
        QTest::newRow("0 general") << 0 << QByteArray("-12.3457") << "double;\n8;\n" + bigEndian(v);
        QTest::newRow("1 int8") << 1 << QByteArray("-12") << "int8;\n1;\n" + bigEndian<qint8>(-12);
        QTest::newRow("2 int16") << 2 << QByteArray("-12") << "int16;\n2;\n" + bigEndian<qint16>(-12);
        QTest::newRow("3 int32") << 3 << QByteArray("-12") << "int32;\n4;\n" + bigEndian<qint32>(-12);
        QTest::newRow("4 int64") << 4 << QByteArray("-12") << "int64;\n8;\n" + bigEndian<qint64>(-12);
        QTest::newRow("5 1 decimal") << 5 << QByteArray("-12.3") << "float;\n4;\n" + bigEndian(float(v));
        QTest::newRow("6 2 decimals") << 6 << QByteArray("-12.35") << "float;\n4;\n" + bigEndian(float(v));
        QTest::newRow("7 3 decimals") << 7 << QByteArray("-12.346") << "double;\n8;\n" + bigEndian(v);
        QTest::newRow("8 as unknown") << 8 << QByteArray("-12.3457") << "double;\n8;\n" + bigEndian(v);
        QTest::newRow("unknown") << 42 << QByteArray("-12.3457") << "double;\n8;\n" + bigEndian(v);
    }

    void formatOfEveryEnumerator()
    {
        QFETCH(int, format);
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, binary);
        Table table;
        table.setHeaders({"v"});
        table.setCellFormat("v", static_cast<Table::CellNumberFormat>(format));
        table.setValue(0, 0, -12.34567);
        QVERIFY(table.save(path("f.csv"), true));
        QCOMPARE(readAll(path("f.csv")), "v;\n" + text + ";\n");
        QVERIFY(table.save(path("f.bin"), false));
        QCOMPARE(readAll(path("f.bin")), "[Binary]\nv;\n" + binary);
    }

    void roundTripAllFormats()
    {
        // Column c is in format c, its two rows values that the format holds exactly, in text and binary.
        const QList<QList<double>> columns = {{1.5, -1e-5}, {-128, 127}, {-32768, 32767}, {2147483647, -5},
            {-2147483647, 0}, {1099511627776.0, -3}, {2.5, -0.5}, {2.25, -0.75}, {2.125, 1024.5}};
        // What the binary type line gives back: the plainest format of each storage.
        const QList<int> loadedFormats = {0, 1, 2, 3, 4, 5, 5, 0, 0};
        const QList<QString> headers = QStringLiteral("c0 µV;c1;c2;c3;c4;c5;c6;c7;c8").split(';');
        Table table;
        table.setHeaders(headers);
        for (int column = 0; column < 9; ++column) {
            table.setCellFormat(column, static_cast<Table::CellNumberFormat>(column));
            for (int row = 0; row < 2; ++row)
                table.setValue(row, column, columns[column][row]);
        }
        for (bool simple : {true, false}) {
            const QString file = path(simple ? "rt.csv" : "rt.bin");
            QVERIFY(table.save(file, simple));
            Table back;
            QVERIFY(back.load(file));
            QCOMPARE(back.headers(), headers);
            for (int column = 0; column < headers.size(); ++column) {
                QCOMPARE(back.doubleValuesAt(column), columns[column]);
                QCOMPARE(int(back.cellFormat(column)), simple ? 0 : loadedFormats[column]);
            }
        }
        QCOMPARE(readAll(path("rt.csv")).split('\n').at(2), QByteArray("-1e-05;127;32767;-5;0;-3.0;-0.50;-0.750;1024.5;"));
    }

    void continuousRecordReadableWhileOpen()
    {
        for (bool simple : {true, false}) {
            const QString file = path(simple ? "rec/live.csv" : "rec/live.bin");
            Table table;
            table.setHeaders({"t", "n"});
            table.setCellFormat(1, Table::CellNumberFormat_Int16);
            QVERIFY(!table.writeLastLine());
            QVERIFY(table.startContinuousRecord(file, simple));
            QVERIFY(!table.writeLastLine()); // no row yet
            for (int row = 0; row < 3; ++row) {
                table.setValue(row, 0, row * 0.5);
                table.setValue(row, 1, row - 1);
                QVERIFY(table.writeLastLine() && table.flush());
                Table reader;
                QVERIFY2(reader.load(file), qPrintable(reader.errorString()));
                QCOMPARE(reader.doubleValuesAt("t"), table.doubleValuesAt("t"));
                QCOMPARE(reader.doubleValuesAt("n"), table.doubleValuesAt("n"));
            }
            if (simple)
                QCOMPARE(readAll(file), QByteArray("t;n;\n0;-1;\n0.5;0;\n1;1;\n"));
            QVERIFY(table.stopWriting());
            QVERIFY(!table.flush() && !table.writeLastLine());
            QCOMPARE(table.currentFilePath(), file);
        }
    }

    void refusals()
    {
        QVERIFY(writeAll(path("plain"), "x"));
        const QString unwritable = path("plain/below/t.csv"); // a folder that is a file
        Table table;
        QVERIFY(!table.save(path("none.csv"), true)); // no columns
        table.setHeaders({"a"});
        QVERIFY(!table.save(path("none.csv"), true) && !QFile::exists(path("none.csv"))); // no rows
        table.setValue(0, 0, 1);
        QVERIFY(!table.save(unwritable, true) && !table.save(unwritable, false));
        QVERIFY(!table.load(path("missing")));

        // A failed start leaves nothing open, not even the earlier file.
        QVERIFY(table.startContinuousRecord(path("first.csv"), true));
        QVERIFY(!table.startContinuousRecord(unwritable, true));
        QVERIFY(!table.isRecording() && table.currentFilePath().isEmpty());
        QVERIFY(!table.writeLastLine() && !table.stopWriting());
    }

    void damagedFilesAreRejected_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray header("[Binary]\na;b;\nint16;double;\n2;8;\n");
        const QByteArray record = bigEndian<qint16>(3) + bigEndian(1.5);
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("record cut") << header + record + record.left(9);
        QTest::newRow("header cut") << header.chopped(1);
        QTest::newRow("unknown type") << QByteArray("[Binary]\na;b;\nint16;long;\n2;8;\n") + record;
        QTest::newRow("wrong size") << QByteArray("[Binary]\na;b;\nint16;double;\n4;8;\n") + record;
        QTest::newRow("type count") << QByteArray("[Binary]\na;b;\nint16;\n2;\n") + record;
        QTest::newRow("text not a number") << QByteArray("a;b;\n1;2;\n3;x;\n");
        QTest::newRow("text missing value") << QByteArray("a;b;\n1;2;\n3;\n");
        QTest::newRow("text extra value") << QByteArray("a;b;\n1;2;3;\n");
        QTest::newRow("no columns") << QByteArray("\n1;\n");
        QTest::newRow("binary garbage") << QByteArray("\x00\x01\xff\n\x7f", 5);
    }

    void damagedFilesAreRejected()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(writeAll(path("bad"), bytes));
        Table table;
        table.setHeaders({"keep"});
        table.setValue(0, 0, 9);
        QVERIFY(!table.load(path("bad")));
        QVERIFY(!table.errorString().isEmpty());
        QCOMPARE(table.headers(), QList<QString>({"keep"}));
        QCOMPARE(table.doubleValueAt(0, 0), 9.0);
    }
};

QTEST_GUILESS_MAIN(TestNumericTableCSV)
#include "tst_numerictablecsv.moc"
