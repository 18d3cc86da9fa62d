#pragma once

#include <QByteArray>
#include <QFile>
#include <QJsonObject>
#include <QList>
#include <QString>

// Writes a recording's lossless side file: the raw device samples as 32-bit floats with their
// arrival times, and the annotations, after a JSON header. Every chunk is handed to the system
// as soon as it is written, so a crash loses at most the chunk being written.
class OxdWriter
{
public:
    OxdWriter() = default;
    ~OxdWriter();
    OxdWriter(const OxdWriter&) = delete;
    OxdWriter& operator=(const OxdWriter&) = delete;

    // Creates the file and writes the header (device, channels, rate, filters, start time...).
    bool open(const QString& path, const QJsonObject& header);
    // One block as it arrived: one list per channel, all of the same length.
    bool writeBlock(qint64 arrivalMs, const QList<QList<float>>& channels);
    // `recordingMs` is recording time (pauses excluded), `wallMs` the moment it was added.
    bool addAnnotation(qint64 recordingMs, qint64 wallMs, const QString& text);
    // Marks the file complete and closes it.
    bool close();

    bool isOpen() const { return m_file.isOpen(); }
    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_error; }
    // A write failed (a full disk): the file ends with its last whole chunk and takes no more.
    bool hasFailed() const { return m_failed; }

private:
    bool writeChunk(quint32 tag, const QByteArray& payload);
    bool fail(const QString& reason);

    QFile m_file;
    QByteArray m_payload; // reused for every block
    QByteArray m_chunk;
    QString m_error;
    qint64 m_wholeSize = 0; // bytes up to the end of the last complete chunk
    bool m_failed = false;
};
