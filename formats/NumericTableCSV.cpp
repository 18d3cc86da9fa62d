#include "formats/NumericTableCSV.h"

#include "services/GlobalConsole.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

const QByteArray kBinaryMark = QByteArrayLiteral("[Binary]");

// How a cell is stored in a binary record; the header's type and size lines name it.
enum class Storage { Double, Int8, Int16, Int32, Int64, Float };

// What a format does, by its numeric value. The values do not line up with the enumerator
// names (value 4, named "Int32", writes 64-bit integers): files and clients already depend on
// the values, so the names are only labels.
struct FormatEffect
{
    Storage storage;
    const char* type;
    int size;
    int decimals; // -1: integer; -2: general format, 6 significant digits
};

constexpr int Integer = -1;
constexpr int General = -2;

const FormatEffect kEffects[] = {
    {Storage::Double, "double", 8, General}, // 0, and any value not listed
    {Storage::Int8, "int8", 1, Integer},     // 1
    {Storage::Int16, "int16", 2, Integer},   // 2
    {Storage::Int32, "int32", 4, Integer},   // 3
    {Storage::Int64, "int64", 8, Integer},   // 4
    {Storage::Float, "float", 4, 1},         // 5
    {Storage::Float, "float", 4, 2},         // 6
    {Storage::Double, "double", 8, 3},       // 7: three decimals declared as a double
};
constexpr int kEffectCount = int(sizeof(kEffects) / sizeof(kEffects[0]));

const FormatEffect& effectOf(NumericTableCSV::CellNumberFormat format)
{
    const int value = int(format);
    return kEffects[value >= 0 && value < kEffectCount ? value : 0];
}

// The plainest format stored as `type`: what a loaded column gets back.
const FormatEffect* effectNamed(const QByteArray& type, NumericTableCSV::CellNumberFormat* format)
{
    for (int value = 0; value < kEffectCount; ++value) {
        if (type == kEffects[value].type) {
            *format = NumericTableCSV::CellNumberFormat(value);
            return &kEffects[value];
        }
    }
    return nullptr;
}

QString cellText(const QVariant& value, NumericTableCSV::CellNumberFormat format)
{
    const FormatEffect& effect = effectOf(format);
    if (effect.decimals == Integer)
        return effect.storage == Storage::Int64 ? QString::number(value.toLongLong()) : QString::number(value.toInt());
    if (effect.decimals == General)
        return QString::number(value.toDouble(), 'g', 6);
    return QString::number(value.toDouble(), 'f', effect.decimals);
}

void writeCell(QDataStream& stream, const QVariant& value, Storage storage)
{
    switch (storage) {
    case Storage::Int8: stream << static_cast<qint8>(value.toInt()); break;
    case Storage::Int16: stream << static_cast<qint16>(value.toInt()); break;
    case Storage::Int32: stream << static_cast<qint32>(value.toInt()); break;
    case Storage::Int64: stream << static_cast<qint64>(value.toLongLong()); break;
    case Storage::Float:
        // The stream writes every floating value as a double unless told otherwise.
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        stream << static_cast<float>(value.toDouble());
        stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
        break;
    case Storage::Double: stream << value.toDouble(); break;
    }
}

QVariant readCell(QDataStream& stream, Storage storage)
{
    switch (storage) {
    case Storage::Int8: { qint8 v = 0; stream >> v; return int(v); }
    case Storage::Int16: { qint16 v = 0; stream >> v; return int(v); }
    case Storage::Int32: { qint32 v = 0; stream >> v; return int(v); }
    case Storage::Int64: { qint64 v = 0; stream >> v; return qlonglong(v); }
    case Storage::Float: {
        float v = 0.0f;
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        stream >> v;
        stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
        return double(v);
    }
    case Storage::Double: { double v = 0.0; stream >> v; return v; }
    }
    return QVariant();
}

// Splits one header or text line into its items. Every item is written followed by the
// separator, so the empty piece after the last one is not an item.
QList<QByteArray> lineItems(QByteArray line, char separator)
{
    if (line.endsWith('\r'))
        line.chop(1);
    QList<QByteArray> items = line.split(separator);
    if (!items.isEmpty() && items.last().isEmpty())
        items.removeLast();
    return items;
}

// Takes the next "\n"-terminated line from `bytes` starting at `position`; false at the end.
bool nextLine(const QByteArray& bytes, qsizetype& position, QByteArray& line)
{
    if (position >= bytes.size())
        return false;
    qsizetype end = bytes.indexOf('\n', position);
    if (end < 0)
        end = bytes.size();
    line = bytes.mid(position, end - position);
    position = end + 1;
    return true;
}

bool ensureFolder(const QString& path)
{
    return QFileInfo(path).absoluteDir().mkpath(QStringLiteral("."));
}

} // namespace

NumericTableCSV::NumericTableCSV(QObject* parent)
    : QObject(parent)
    , m_separator(QStringLiteral(";"))
{
}

NumericTableCSV::~NumericTableCSV()
{
    stopWriting();
}

void NumericTableCSV::setHeaders(const QList<QString>& headers)
{
    m_headers = headers;
    for (QList<QVariant>& row : m_rows)
        row.resize(m_headers.size(), QVariant(0.0));
}

void NumericTableCSV::setCellFormat(int column, CellNumberFormat format)
{
    if (column >= 0)
        m_cellFormats.insert(column, format);
}

void NumericTableCSV::setCellFormat(const QString& column, CellNumberFormat format)
{
    setCellFormat(columnIndex(column), format);
}

NumericTableCSV::CellNumberFormat NumericTableCSV::cellFormat(int column) const
{
    return m_cellFormats.value(column, CellNumberFormat_Double);
}

void NumericTableCSV::setValue(int row, int column, const QVariant& value)
{
    if (row < 0 || column < 0 || column >= headerCount())
        return;
    while (m_rows.size() <= row)
        m_rows.append(QList<QVariant>(m_headers.size(), QVariant(0.0)));
    QList<QVariant>& cells = m_rows[row];
    if (cells.size() <= column)
        cells.resize(m_headers.size(), QVariant(0.0));
    cells[column] = value;
}

void NumericTableCSV::setValue(int row, const QString& column, const QVariant& value)
{
    setValue(row, columnIndex(column), value);
}

QVariant NumericTableCSV::valueAt(int row, int column) const
{
    if (row < 0 || row >= count() || column < 0 || column >= m_rows.at(row).size())
        return QVariant();
    return m_rows.at(row).at(column);
}

QVariant NumericTableCSV::valueAt(int row, const QString& column) const
{
    return valueAt(row, columnIndex(column));
}

double NumericTableCSV::doubleValueAt(int row, int column) const
{
    return valueAt(row, column).toDouble();
}

double NumericTableCSV::doubleValueAt(int row, const QString& column) const
{
    return doubleValueAt(row, columnIndex(column));
}

QList<QVariant> NumericTableCSV::valuesAt(int column, int from, int to) const
{
    QList<QVariant> values;
    if (column < 0 || column >= headerCount())
        return values;
    const int end = (to < 0 || to > count()) ? count() : to;
    for (int row = std::max(from, 0); row < end; ++row)
        values.append(cell(row, column));
    return values;
}

QList<QVariant> NumericTableCSV::valuesAt(const QString& column, int from, int to) const
{
    return valuesAt(columnIndex(column), from, to);
}

QList<double> NumericTableCSV::doubleValuesAt(int column, int from, int to) const
{
    QList<double> values;
    const QList<QVariant> cells = valuesAt(column, from, to);
    values.reserve(cells.size());
    for (const QVariant& value : cells)
        values.append(value.toDouble());
    return values;
}

QList<double> NumericTableCSV::doubleValuesAt(const QString& column, int from, int to) const
{
    return doubleValuesAt(columnIndex(column), from, to);
}

// Rows shorter than the header (from an older header) read as 0.0 past their end.
QVariant NumericTableCSV::cell(int row, int column) const
{
    const QList<QVariant>& cells = m_rows.at(row);
    return column < cells.size() ? cells.at(column) : QVariant(0.0);
}

bool NumericTableCSV::writeHeaders(QIODevice& file, bool simple) const
{
    QString text;
    if (!simple)
        text += QString::fromLatin1(kBinaryMark) + QLatin1Char('\n');
    for (const QString& header : m_headers)
        text += header + m_separator;
    text += QLatin1Char('\n');
    if (!simple) {
        QString types;
        QString sizes;
        for (int column = 0; column < headerCount(); ++column) {
            const FormatEffect& info = effectOf(cellFormat(column));
            types += QString::fromLatin1(info.type) + m_separator;
            sizes += QString::number(info.size) + m_separator;
        }
        text += types + QLatin1Char('\n') + sizes + QLatin1Char('\n');
    }
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size();
}

bool NumericTableCSV::writeDataLine(QIODevice& file, int row, bool simple) const
{
    if (simple) {
        QString text;
        for (int column = 0; column < headerCount(); ++column)
            text += cellText(cell(row, column), cellFormat(column)) + m_separator;
        text += QLatin1Char('\n');
        const QByteArray bytes = text.toUtf8();
        return file.write(bytes) == bytes.size();
    }
    QDataStream stream(&file);
    for (int column = 0; column < headerCount(); ++column)
        writeCell(stream, cell(row, column), effectOf(cellFormat(column)).storage);
    return stream.status() == QDataStream::Ok;
}

bool NumericTableCSV::save(const QString& path, bool simple)
{
    m_errorString.clear();
    if (m_headers.isEmpty() || m_rows.isEmpty()) {
        m_errorString = QStringLiteral("the table has no columns or no rows");
        return false;
    }
    ensureFolder(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        m_errorString = file.errorString();
        return false;
    }
    bool ok = writeHeaders(file, simple);
    for (int row = 0; ok && row < count(); ++row)
        ok = writeDataLine(file, row, simple);
    file.close();
    if (!ok || file.error() != QFileDevice::NoError) {
        m_errorString = file.errorString();
        return false;
    }
    return true;
}

bool NumericTableCSV::fail(const QString& path, const QString& reason)
{
    m_errorString = reason;
    GlobalConsole::writeLine(QStringLiteral("Table %1: %2").arg(path, reason));
    return false;
}

bool NumericTableCSV::load(const QString& path)
{
    m_errorString.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(path, file.errorString());
    const QByteArray bytes = file.readAll();
    QByteArray first;
    qsizetype position = 0;
    if (!nextLine(bytes, position, first))
        return fail(path, QStringLiteral("the file is empty"));
    if (first.endsWith('\r'))
        first.chop(1);
    const bool ok = first == kBinaryMark ? loadBinary(bytes.mid(position)) : loadText(bytes);
    if (!ok)
        return fail(path, m_errorString);
    return true;
}

bool NumericTableCSV::loadText(const QByteArray& bytes)
{
    const char separator = m_separator.at(0).toLatin1();
    QByteArray line;
    qsizetype position = 0;
    nextLine(bytes, position, line);
    QList<QString> headers;
    for (const QByteArray& item : lineItems(line, separator))
        headers.append(QString::fromUtf8(item));
    if (headers.isEmpty()) {
        m_errorString = QStringLiteral("no column names");
        return false;
    }
    QList<QList<QVariant>> rows;
    int lineNumber = 1;
    while (nextLine(bytes, position, line)) {
        ++lineNumber;
        const QList<QByteArray> items = lineItems(line, separator);
        if (items.isEmpty())
            continue;
        if (items.size() != headers.size()) {
            m_errorString = QStringLiteral("line %1 has %2 values for %3 columns")
                                .arg(lineNumber).arg(items.size()).arg(headers.size());
            return false;
        }
        QList<QVariant> row;
        row.reserve(items.size());
        for (const QByteArray& item : items) {
            bool ok = false;
            const double value = item.trimmed().toDouble(&ok);
            if (!ok) {
                m_errorString = QStringLiteral("line %1: \"%2\" is not a number")
                                    .arg(lineNumber).arg(QString::fromUtf8(item));
                return false;
            }
            row.append(value);
        }
        rows.append(row);
    }
    m_headers = headers;
    m_rows = rows;
    m_cellFormats.clear();
    return true;
}

bool NumericTableCSV::loadBinary(const QByteArray& bytes)
{
    const char separator = m_separator.at(0).toLatin1();
    QByteArray names, types, sizes;
    qsizetype position = 0;
    if (!nextLine(bytes, position, names) || !nextLine(bytes, position, types)
        || !nextLine(bytes, position, sizes) || position > bytes.size()) {
        m_errorString = QStringLiteral("the binary header is incomplete");
        return false;
    }
    const QList<QByteArray> nameItems = lineItems(names, separator);
    const QList<QByteArray> typeItems = lineItems(types, separator);
    const QList<QByteArray> sizeItems = lineItems(sizes, separator);
    if (nameItems.isEmpty() || typeItems.size() != nameItems.size() || sizeItems.size() != nameItems.size()) {
        m_errorString = QStringLiteral("the header lines disagree in their column count");
        return false;
    }
    QList<QString> headers;
    QList<Storage> storages;
    QMap<int, CellNumberFormat> formats;
    int recordSize = 0;
    for (int column = 0; column < nameItems.size(); ++column) {
        CellNumberFormat format = CellNumberFormat_Double;
        const FormatEffect* info = effectNamed(typeItems.at(column), &format);
        if (!info || sizeItems.at(column).toInt() != info->size) {
            m_errorString = QStringLiteral("column %1 has the unknown type %2/%3")
                                .arg(column)
                                .arg(QString::fromUtf8(typeItems.at(column)), QString::fromUtf8(sizeItems.at(column)));
            return false;
        }
        headers.append(QString::fromUtf8(nameItems.at(column)));
        storages.append(info->storage);
        formats.insert(column, format);
        recordSize += info->size;
    }
    const QByteArray records = bytes.mid(position);
    if (records.size() % recordSize != 0) {
        m_errorString = QStringLiteral("the records are truncated (%1 bytes for records of %2)")
                            .arg(records.size()).arg(recordSize);
        return false;
    }
    QDataStream stream(records);
    QList<QList<QVariant>> rows;
    rows.reserve(records.size() / recordSize);
    while (!stream.atEnd()) {
        QList<QVariant> row;
        row.reserve(storages.size());
        for (Storage storage : storages)
            row.append(readCell(stream, storage));
        rows.append(row);
    }
    if (stream.status() != QDataStream::Ok) {
        m_errorString = QStringLiteral("the records cannot be read");
        return false;
    }
    m_headers = headers;
    m_rows = rows;
    m_cellFormats = formats;
    return true;
}

bool NumericTableCSV::startContinuousRecord(const QString& path, bool simple)
{
    m_errorString.clear();
    if (m_file)
        m_file->close();
    m_recording = false;
    ensureFolder(path);
    m_file = std::make_unique<QFile>(path);
    if (!m_file->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        m_errorString = m_file->errorString();
        m_file.reset();
        return m_recording;
    }
    m_simple = simple;
    m_recording = true;
    m_firstLinePending = true;
    writeHeaders(*m_file, simple);
    return m_recording;
}

bool NumericTableCSV::writeLastLine()
{
    if (!m_recording || !m_file || m_rows.isEmpty())
        return false;
    m_firstLinePending = false;
    return writeDataLine(*m_file, count() - 1, m_simple);
}

bool NumericTableCSV::flush()
{
    if (!m_recording || !m_file)
        return false;
    return m_file->flush();
}

bool NumericTableCSV::stopWriting()
{
    if (!m_file || !m_file->isOpen())
        return false;
    m_file->close();
    m_recording = false;
    return m_file->error() == QFileDevice::NoError;
}

QString NumericTableCSV::currentFilePath() const
{
    return m_file ? m_file->fileName() : QString();
}
