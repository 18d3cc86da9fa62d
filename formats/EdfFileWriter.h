#pragma once

#include "formats/EdfFileHeader.h"
#include "formats/EdfSignalHeader.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QQueue>

// Writes one continuous EDF+ (16-bit) or BDF+ (24-bit) file: header, data records from
// physical values, and an annotation signal appended after the given signals. Failures
// return false with a console line; nothing throws.
//
// Crash safety: every record is flushed to the OS; the header's record count is -1 after
// open and rewritten after each second of recording time (readers that trust the count lose
// at most that), and exactly on close().
//
// A failed write (a full disk) cuts the partial record and sets the count to the whole
// records, so the file stays valid; the writer then refuses further records.
class EdfFileWriter
{
public:
    enum class Format { Edf, Bdf };

    // Annotation signal bytes per record: a burst of 200 annotations with 40-byte texts within
    // one record (about 58 bytes each with onset and duration) fits without waiting for later
    // records. What still does not fit is queued for the next records.
    static constexpr int AnnotationBytesEdf = 12000; // 6000 samples of 2 bytes
    static constexpr int AnnotationBytesBdf = 12000; // 4000 samples of 3 bytes
    // Longer UTF-8 texts are cut (at a character boundary).
    static constexpr int MaxAnnotationTextBytes = 256;
    static constexpr qint64 MaxRecordBytes = 10 * 1024 * 1024;
    static constexpr int MaxSignals = 4095; // plus the annotation signal
    static constexpr qint64 CountUpdateTicks = 10000000LL;

    EdfFileWriter() = default;
    ~EdfFileWriter();
    EdfFileWriter(const EdfFileWriter&) = delete;
    EdfFileWriter& operator=(const EdfFileWriter&) = delete;

    // Uses `identity`'s patient, recording, startDateTime (with milliseconds) and
    // recordDurationTicks; the other fixed fields are derived. An empty recording field
    // becomes "Startdate <start date> X X X". `dataSignals` excludes the annotation signal.
    bool open(const QString& path, Format format, const EdfFileHeader& identity,
              const QList<EdfSignalHeader>& dataSignals);
    bool isOpen() const { return m_file.isOpen(); }

    // One record: one pointer per data signal to samplesPerRecord physical values.
    bool writeRecord(const QList<const float*>& physicalPerSignal);
    bool writeRecord(const QList<const double*>& physicalPerSignal);

    // Onset in ticks from the start moment given to open(); durationTicks < 0: none.
    // Goes into the next record written, or a later one when that record is full.
    bool addAnnotation(qint64 onsetTicks, qint64 durationTicks, const QString& text);

    // Rewrite the 80-byte identification fields of the open file.
    bool updatePatientField(const QString& patient);
    bool updateRecordingField(const QString& recording);

    // Places annotations still queued into the free annotation space of records already
    // written (never adds records without signal), then writes the final record count.
    // False when not open or after a write error (the file is still left valid).
    bool close();
    bool hasFailed() const { return m_failed; }
    // Why the last operation failed.
    QString errorString() const { return m_error; }

    qint64 recordsWritten() const { return m_records; }
    qint64 startOffsetTicks() const { return m_startOffsetTicks; }
    int pendingAnnotations() const { return static_cast<int>(m_pending.size()); }
    const QList<EdfSignalHeader>& signalHeaders() const { return m_signals; }

private:
    bool validate(const EdfFileHeader& identity, const QList<EdfSignalHeader>& dataSignals);
    QByteArray buildHeader() const;
    template <typename T>
    bool writeRecordT(const QList<const T*>& physicalPerSignal);
    void putSample(int offset, int digital);
    void fillAnnotations();
    bool finishRecord();
    void cutPartialRecord();
    void placePendingInWrittenRecords();
    bool writeAt(qint64 position, const QByteArray& bytes);
    bool fail(const QString& what);

    QFile m_file;
    bool m_bdf = false;
    EdfFileHeader m_header;
    QList<EdfSignalHeader> m_signals; // data signals, then the annotation signal
    QList<int> m_offsets;             // byte offset of each signal in a record
    QList<int> m_zeroDigital;         // digital value of physical 0, per data signal
    QByteArray m_record;
    QQueue<QByteArray> m_pending;     // encoded TALs waiting for room
    qint64 m_records = 0;
    qint64 m_startOffsetTicks = 0;
    qint64 m_ticksSinceCount = 0;
    bool m_failed = false;
    QString m_error;
};
