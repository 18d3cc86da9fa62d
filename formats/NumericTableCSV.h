#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

class QFile;
class QIODevice;

// A small table of numbers with named columns, written to and read from a ";"-separated text
// file or a "[Binary]" file (text header, then big-endian binary records). Each column has a
// number format that decides how its cells are written. A table is saved whole, or recorded
// continuously: header first, then one line per completed row.
class NumericTableCSV : public QObject
{
    Q_OBJECT
public:
    // Stored in files by name ("int8", "float", ...) through the header's type line.
    enum CellNumberFormat : int
    {
        CellNumberFormat_Double,
        CellNumberFormat_Int8,
        CellNumberFormat_Int16,
        CellNumberFormat_Int,
        CellNumberFormat_Int32,
        CellNumberFormat_Int64,
        CellNumberFormat_Double_1precision,
        CellNumberFormat_Double_2precision,
        CellNumberFormat_Double_3precision
    };
    Q_ENUM(CellNumberFormat)

    explicit NumericTableCSV(QObject* parent = nullptr);
    ~NumericTableCSV() override;

    // Existing rows are padded with 0.0 or cut to the new column count.
    void setHeaders(const QList<QString>& headers);
    QList<QString> headers() const { return m_headers; }
    int headerCount() const { return static_cast<int>(m_headers.size()); }
    int columnIndex(const QString& column) const { return static_cast<int>(m_headers.indexOf(column)); }
    int count() const { return static_cast<int>(m_rows.size()); }

    void setCellFormat(int column, CellNumberFormat format);
    void setCellFormat(const QString& column, CellNumberFormat format);
    QMap<int, CellNumberFormat> cellFormats() const { return m_cellFormats; }
    CellNumberFormat cellFormat(int column) const;

    // Out-of-range columns and negative rows are ignored; missing rows are added, filled
    // with 0.0.
    void setValue(int row, int column, const QVariant& value);
    void setValue(int row, const QString& column, const QVariant& value);
    // Invalid QVariant / 0.0 when out of range.
    QVariant valueAt(int row, int column) const;
    QVariant valueAt(int row, const QString& column) const;
    double doubleValueAt(int row, int column) const;
    double doubleValueAt(int row, const QString& column) const;
    // Rows from `from` up to, not including, `to` (a negative `to` means to the last row).
    QList<QVariant> valuesAt(int column, int from = 0, int to = -1) const;
    QList<QVariant> valuesAt(const QString& column, int from = 0, int to = -1) const;
    QList<double> doubleValuesAt(int column, int from = 0, int to = -1) const;
    QList<double> doubleValuesAt(const QString& column, int from = 0, int to = -1) const;
    // Drops every row; headers and formats stay.
    void resetValues() { m_rows.clear(); }

    // `simple` true: text form; false: "[Binary]" form. Refuses a table without columns or
    // rows. Creates the folder when missing.
    bool save(const QString& path, bool simple);
    // Reads either form back (headers, formats from the type line, rows); the text form has
    // no type line, so its columns read as CellNumberFormat_Double. The table is unchanged
    // when the file is damaged.
    bool load(const QString& path);

    // Opens the file and writes the header; then writeLastLine() appends the last row.
    bool startContinuousRecord(const QString& path, bool simple);
    bool writeLastLine();
    // Pushes written rows to the file so that readers see them while recording goes on.
    bool flush();
    bool stopWriting();
    bool isRecording() const { return m_recording; }
    // The continuous-record file, also after stopWriting(); empty before the first start.
    QString currentFilePath() const;

    // What went wrong in the last failed save, load or start; empty after a success.
    QString errorString() const { return m_errorString; }

private:
    QVariant cell(int row, int column) const;
    bool writeHeaders(QIODevice& file, bool simple) const;
    bool writeDataLine(QIODevice& file, int row, bool simple) const;
    bool loadText(const QByteArray& bytes);
    bool loadBinary(const QByteArray& bytes);
    bool fail(const QString& path, const QString& reason);

    QList<QString> m_headers;
    QList<QList<QVariant>> m_rows;
    QMap<int, CellNumberFormat> m_cellFormats;
    QString m_separator;
    QString m_errorString;
    std::unique_ptr<QFile> m_file;
    bool m_simple = true;
    bool m_recording = false;
    bool m_firstLinePending = true; // no data line written since the record started
};
