#include "formats/NumericTableCSV.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <cstring>

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

// Big-endian bytes built by hand, independent of the stream used by the writer.
template <typename T>
QByteArray bigEndian(T value)
{
    QByteArray bytes(sizeof(T), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray bigEndianFloat(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bigEndian(bits);
}

QByteArray bigEndianDouble(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bigEndian(bits);
}

const QList<Table::CellNumberFormat> kAllFormats = {
    Table::CellNumberFormat_Double, Table::CellNumberFormat_Int8, Table::CellNumberFormat_Int16,
    Table::CellNumberFormat_Int, Table::CellNumberFormat_Int32, Table::CellNumberFormat_Int64,
    Table::CellNumberFormat_Double_1precision, Table::CellNumberFormat_Double_2precision,
    Table::CellNumberFormat_Double_3precision};

} // namespace

class TestNumericTableCSV : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }
    void textFormBytes();
    void binaryFormBytes();
    void setValueGrowsRows();
    void formatOfEveryEnumerator_data();
    void formatOfEveryEnumerator();
    void roundTripAllFormats();
    void continuousRecordReadableWhileOpen();
    void refusals();
    void damagedFilesAreRejected_data();
    void damagedFilesAreRejected();

private:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

void TestNumericTableCSV::textFormBytes()
{
    Table table;
    table.setHeaders({"a", "b"});
    table.setValue(0, 0, 1.5);
    table.setValue(0, "b", 2);
    QVERIFY(table.save(path("text/sub/t.csv"), true)); // folders are created
    QCOMPARE(readAll(path("text/sub/t.csv")), QByteArray("a;b;\n1.5;2;\n"));
}

void TestNumericTableCSV::binaryFormBytes()
{
    Table table;
    table.setHeaders({"a", "b"});
    table.setValue(0, 0, 1.5);
    table.setValue(0, 1, 2);
    QVERIFY(table.save(path("b.bin"), false));
    QCOMPARE(readAll(path("b.bin")),
             QByteArray("[Binary]\na;b;\ndouble;double;\n8;8;\n")
                 + QByteArray::fromHex("3ff8000000000000" "4000000000000000"));
}

void TestNumericTableCSV::setValueGrowsRows()
{
    Table table;
    table.setHeaders({"x", "y"});
    table.setValue(3, 0, 7.25);
    QCOMPARE(table.count(), 4);
    QCOMPARE(table.doubleValuesAt(0), QList<double>({0.0, 0.0, 0.0, 7.25}));
    QCOMPARE(table.valuesAt("y", 1, 3), QList<QVariant>({0.0, 0.0}));
    table.setValue(-1, 0, 1);
    table.setValue(5, 2, 1);
    table.setValue(5, -1, 1);
    table.setValue(5, "z", 1);
    QCOMPARE(table.count(), 4);
    QVERIFY(!table.valueAt(4, 0).isValid());
    QCOMPARE(table.columnIndex("y"), 1);
    table.resetValues();
    QCOMPARE(table.count(), 0);
    QCOMPARE(table.headerCount(), 2);
}

void TestNumericTableCSV::formatOfEveryEnumerator_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("record");
    const double v = -12.34567;
    QTest::newRow("Double") << 0 << QByteArray("-12.3457") << QByteArray("double;\n8;") << bigEndianDouble(v);
    QTest::newRow("Int8") << 1 << QByteArray("-12") << QByteArray("int8;\n1;") << bigEndian<qint8>(-12);
    QTest::newRow("Int16") << 2 << QByteArray("-12") << QByteArray("int16;\n2;") << bigEndian<qint16>(-12);
    QTest::newRow("Int") << 3 << QByteArray("-12") << QByteArray("int32;\n4;") << bigEndian<qint32>(-12);
    QTest::newRow("Int32") << 4 << QByteArray("-12") << QByteArray("int32;\n4;") << bigEndian<qint32>(-12);
    QTest::newRow("Int64") << 5 << QByteArray("-12") << QByteArray("int64;\n8;") << bigEndian<qint64>(-12);
    QTest::newRow("1 decimal") << 6 << QByteArray("-12.3") << QByteArray("float;\n4;") << bigEndianFloat(float(v));
    QTest::newRow("2 decimals") << 7 << QByteArray("-12.35") << QByteArray("float;\n4;") << bigEndianFloat(float(v));
    QTest::newRow("3 decimals") << 8 << QByteArray("-12.346") << QByteArray("double;\n8;") << bigEndianDouble(v);
    QTest::newRow("unknown") << 42 << QByteArray("-12.3457") << QByteArray("double;\n8;") << bigEndianDouble(v);
}

void TestNumericTableCSV::formatOfEveryEnumerator()
{
    QFETCH(int, format);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, record);
    Table table;
    table.setHeaders({"v"});
    table.setCellFormat("v", static_cast<Table::CellNumberFormat>(format));
    table.setValue(0, 0, -12.34567);
    QVERIFY(table.save(path("f.csv"), true));
    QCOMPARE(readAll(path("f.csv")), "v;\n" + text + ";\n");
    QVERIFY(table.save(path("f.bin"), false));
    QCOMPARE(readAll(path("f.bin")), "[Binary]\nv;\n" + type + "\n" + record);
}

void TestNumericTableCSV::roundTripAllFormats()
{
    Table table;
    QList<QString> headers;
    for (Table::CellNumberFormat format : kAllFormats)
        headers << QStringLiteral("c%1 µV").arg(int(format));
    table.setHeaders(headers);
    for (int column = 0; column < kAllFormats.size(); ++column)
        table.setCellFormat(column, kAllFormats.at(column));
    // Values that every format holds exactly, in text and in binary.
    const QList<QList<double>> rows = {
        {1.5, -128, -32768, 2147483647, -2147483647, 1099511627776.0, 2.5, 2.25, 2.125},
        {-1e-5, 127, 32767, -5, 0, -3, -0.5, -0.75, 1024.875},
    };
    for (int row = 0; row < rows.size(); ++row)
        for (int column = 0; column < rows.at(row).size(); ++column)
            table.setValue(row, column, rows.at(row).at(column));

    for (bool simple : {true, false}) {
        const QString file = path(simple ? "rt.csv" : "rt.bin");
        QVERIFY(table.save(file, simple));
        Table back;
        QVERIFY(back.load(file));
        QCOMPARE(back.headers(), headers);
        QCOMPARE(back.count(), rows.size());
        for (int row = 0; row < rows.size(); ++row)
            for (int column = 0; column < headers.size(); ++column)
                QCOMPARE(back.doubleValueAt(row, column), rows.at(row).at(column));
        if (simple) {
            QVERIFY(back.cellFormats().isEmpty());
            QCOMPARE(back.cellFormat(3), Table::CellNumberFormat_Double);
        } else {
            QCOMPARE(back.cellFormat(1), Table::CellNumberFormat_Int8);
            QCOMPARE(back.cellFormat(3), Table::CellNumberFormat_Int32);
            QCOMPARE(back.cellFormat(5), Table::CellNumberFormat_Int64);
            QCOMPARE(back.cellFormat(7), Table::CellNumberFormat_Double_1precision);
            QCOMPARE(back.cellFormat(8), Table::CellNumberFormat_Double);
        }
        // Saving what was loaded gives the same file again.
        QVERIFY(back.save(file + ".again", simple));
        if (!simple)
            QCOMPARE(readAll(file + ".again"), readAll(file));
    }
    QCOMPARE(readAll(path("rt.csv")).split('\n').at(2),
             QByteArray("-1e-05;127;32767;-5;0;-3;-0.5;-0.75;1024.875;"));
}

void TestNumericTableCSV::continuousRecordReadableWhileOpen()
{
    for (bool simple : {true, false}) {
        const QString file = path(simple ? "rec/live.csv" : "rec/live.bin");
        Table table;
        table.setHeaders({"t", "n"});
        table.setCellFormat(1, Table::CellNumberFormat_Int16);
        QVERIFY(!table.writeLastLine());
        QVERIFY(table.startContinuousRecord(file, simple));
        QCOMPARE(table.currentFilePath(), file);
        QVERIFY(!table.writeLastLine()); // no row yet
        for (int row = 0; row < 3; ++row) {
            table.setValue(row, 0, row * 0.5);
            table.setValue(row, 1, row - 1);
            QVERIFY(table.writeLastLine());
            QVERIFY(table.flush());
            Table reader;
            QVERIFY2(reader.load(file), qPrintable(reader.errorString()));
            QCOMPARE(reader.count(), row + 1);
            QCOMPARE(reader.doubleValueAt(row, 0), row * 0.5);
            QCOMPARE(reader.doubleValueAt(row, "n"), row - 1.0);
        }
        if (simple)
            QCOMPARE(readAll(file), QByteArray("t;n;\n0;-1;\n0.5;0;\n1;1;\n"));
        QVERIFY(table.stopWriting());
        QVERIFY(!table.flush());
        QVERIFY(!table.writeLastLine());
        QCOMPARE(table.currentFilePath(), file);
    }
}

void TestNumericTableCSV::refusals()
{
    QVERIFY(writeAll(path("plain"), "x"));
    const QString unwritable = path("plain/below/t.csv"); // a folder that is a file

    Table table;
    QVERIFY(!table.save(path("none.csv"), true));
    table.setHeaders({"a"});
    QVERIFY(!table.save(path("none.csv"), true));
    QVERIFY(!QFile::exists(path("none.csv")));
    table.setValue(0, 0, 1);
    QVERIFY(!table.save(unwritable, true));
    QVERIFY(!table.save(unwritable, false));
    QVERIFY(!table.errorString().isEmpty());

    QVERIFY(table.startContinuousRecord(path("first.csv"), true));
    QVERIFY(!table.startContinuousRecord(unwritable, true));
    QVERIFY(!table.isRecording());
    QVERIFY(table.currentFilePath().isEmpty());
    QVERIFY(!table.writeLastLine());
    QVERIFY(!table.stopWriting());
}

void TestNumericTableCSV::damagedFilesAreRejected_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray header("[Binary]\na;b;\nint16;double;\n2;8;\n");
    const QByteArray record = bigEndian<qint16>(3) + bigEndianDouble(1.5);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("record cut") << header + record + record.left(9);
    QTest::newRow("header cut") << QByteArray("[Binary]\na;b;\nint16;double;\n2;8;");
    QTest::newRow("only mark") << QByteArray("[Binary]\n");
    QTest::newRow("unknown type") << QByteArray("[Binary]\na;b;\nint16;long;\n2;8;\n") + record;
    QTest::newRow("wrong size") << QByteArray("[Binary]\na;b;\nint16;double;\n4;8;\n") + record;
    QTest::newRow("type count") << QByteArray("[Binary]\na;b;\nint16;\n2;\n") + record;
    QTest::newRow("text not a number") << QByteArray("a;b;\n1;2;\n3;x;\n");
    QTest::newRow("text missing value") << QByteArray("a;b;\n1;2;\n3;\n");
    QTest::newRow("text extra value") << QByteArray("a;b;\n1;2;3;\n");
    QTest::newRow("no columns") << QByteArray("\n1;\n");
    QTest::newRow("binary garbage") << QByteArray("\x00\x01\xff\n\x7f", 5);
}

void TestNumericTableCSV::damagedFilesAreRejected()
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
    QVERIFY(!table.load(path("missing")));
}

QTEST_GUILESS_MAIN(TestNumericTableCSV)
#include "tst_numerictablecsv.moc"
