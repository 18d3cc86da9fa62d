#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

// Reads a recording's side file back. A file cut short by a crash yields every chunk that was
// completely written; reading stops at the first damaged or incomplete chunk.
class OxdReader
{
public:
    struct Block
    {
        qint64 arrivalMs = 0;
        QList<QList<float>> channels;
    };
    struct Annotation
    {
        qint64 recordingMs = 0;
        qint64 wallMs = 0;
        QString text;
    };

    // False with errorString() when the file is not a readable side file at all.
    bool read(const QString& path);

    QJsonObject header() const { return m_header; }
    const QList<Block>& blocks() const { return m_blocks; }
    const QList<Annotation>& annotations() const { return m_annotations; }
    // True when the writer closed the file; false after a crash or damage.
    bool isComplete() const { return m_complete; }
    // Why reading failed, or where it stopped early.
    QString errorString() const { return m_error; }

private:
    bool parse(const char* data, qsizetype size);
    bool takeChunk(quint32 tag, const char* payload, quint32 length);
    void clear();

    QJsonObject m_header;
    QList<Block> m_blocks;
    QList<Annotation> m_annotations;
    bool m_complete = false;
    QString m_error;
};
