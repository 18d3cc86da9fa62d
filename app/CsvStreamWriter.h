#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>

class NumericTableCSV;

// Streams rows into a CSV file whose first column "t" is seconds since streaming started.
// The file is flushed at least twice a second so it can be read while it grows.
class CsvStreamWriter
{
public:
    CsvStreamWriter();
    ~CsvStreamWriter();

    // `columns` are the names after "t".
    bool open(const QString& path, const QStringList& columns, QString& error);
    // One row per sample of a channel block; sample k is at firstSample + k of the stream.
    bool writeBlock(const QList<QList<float>>& block, qint64 firstSample, float samplingRate);
    bool writeRow(double seconds, const QList<double>& values);
    void close();

private:
    void flushNow(bool force);

    NumericTableCSV* m_table;
    QElapsedTimer m_sinceFlush;
    static constexpr int FlushIntervalMs = 500;
};
