#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>

class NumericTableCSV;

// Streams channel blocks into a CSV file: a column "t" (seconds since the first sample), then
// one column per channel; one row per sample. The file is flushed at least twice a second
// so it can be read while it grows.
class CsvStreamWriter
{
public:
    CsvStreamWriter();
    ~CsvStreamWriter();

    bool open(const QString& path, const QStringList& channelNames, float samplingRate, QString& error);
    bool write(const QList<QList<float>>& block);
    void close();
    qint64 rowsWritten() const { return m_rows; }

private:
    NumericTableCSV* m_table;
    float m_samplingRate = 0;
    qint64 m_rows = 0;
    QElapsedTimer m_sinceFlush;
    static constexpr int FlushIntervalMs = 500;
};
