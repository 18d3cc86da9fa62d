#pragma once

#include "formats/EdfAnnotation.h"
#include "formats/EdfFileHeader.h"
#include "formats/EdfSignalHeader.h"

#include <QByteArray>
#include <QFile>
#include <QList>

// Reads EDF, EDF+C, BDF and BDF+C files (EDF+D/BDF+D are refused; an "EDF+C" without an
// annotation signal reads as plain EDF). Every header field is
// checked before anything is sized from it; a file that fails gives false and errorString().
// A record count of -1, or a file shorter than the count says, reads every complete record.
class EdfFileReader
{
public:
    static constexpr int MaxSignals = 4096;
    static constexpr qint64 MaxRecordBytes = 10 * 1024 * 1024;

    EdfFileReader() = default;
    EdfFileReader(const EdfFileReader&) = delete;
    EdfFileReader& operator=(const EdfFileReader&) = delete;

    bool open(const QString& path);
    void close();
    bool isOpen() const { return m_file.isOpen(); }
    QString errorString() const { return m_error; }

    bool isBdf() const { return m_header.bdf; }
    // EDF+C / BDF+C: annotation signal present, record start times known.
    bool isPlus() const { return m_plus; }
    const EdfFileHeader& header() const { return m_header; }
    // Every signal in file order, annotation signals included.
    const QList<EdfSignalHeader>& signalHeaders() const { return m_signals; }
    // Indexes of the signals that are not annotation signals.
    QList<int> dataSignals() const;
    // Complete records that can be read (may be less than the header says).
    qint64 recordCount() const { return m_recordCount; }
    qint64 samplesInSignal(int signal) const;
    // Time-keeping onset of record 0 (sub-second start offset), in 100 ns ticks.
    qint64 startOffsetTicks() const { return m_recordStarts.isEmpty() ? 0 : m_recordStarts.first(); }
    // One entry per record for EDF+/BDF+, from its time-keeping TAL; empty for plain files.
    const QList<qint64>& recordStartTicks() const { return m_recordStarts; }
    // Every annotation text in file order (time-keeping entries excluded).
    const QList<EdfAnnotation>& annotations() const { return m_annotations; }

    // Physical values of `count` samples of `signal` from `firstSample` on; returns the
    // number read (fewer at the end of the file), -1 on a bad signal or a read error.
    qint64 readSamples(int signal, qint64 firstSample, qint64 count, float* out);
    qint64 readSamples(int signal, qint64 firstSample, qint64 count, double* out);
    // All samples of `records` records (-1: to the end) from `firstRecord` on.
    QList<float> readSignal(int signal, qint64 firstRecord = 0, qint64 records = -1);

private:
    bool refuse(const QString& reason);
    bool parseFixedHeader(const QByteArray& fixed, qint64 fileSize);
    bool parseSignalHeaders(const QByteArray& block);
    bool checkSizes(qint64 fileSize);
    bool readAnnotations();
    bool parseTals(const QByteArray& bytes, qint64 record, bool firstSignal);
    template <typename T>
    qint64 readSamplesT(int signal, qint64 firstSample, qint64 count, T* out);

    QFile m_file;
    QString m_error;
    EdfFileHeader m_header;
    QList<EdfSignalHeader> m_signals;
    QList<qint64> m_offsets; // byte offset of each signal within a record
    qint64 m_recordBytes = 0;
    qint64 m_recordCount = 0;
    bool m_plus = false;
    QList<qint64> m_recordStarts;
    QList<EdfAnnotation> m_annotations;
    QByteArray m_buffer;
};
