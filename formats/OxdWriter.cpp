#include "formats/OxdWriter.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "formats/Crc32.h"
#include "formats/OxdFormat.h"
#include "services/GlobalConsoleWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {
template<typename T>
void append(QByteArray& bytes, T value)
{
    const T little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof(T));
}
}

OxdWriter::~OxdWriter()
{
    if (isOpen())
        close();
}

bool OxdWriter::fail(const QString& reason)
{
    m_error = reason;
    kxDebug() << QStringLiteral("OXD %1: %2").arg(m_file.fileName(), reason);
    return false;
}

bool OxdWriter::open(const QString& path, const QJsonObject& header)
{
    if (isOpen())
        close();
    m_error.clear();
    m_failed = false;
    m_wholeSize = 0;
    m_file.setFileName(path);
    QDir().mkpath(QFileInfo(path).absolutePath());
    // Unbuffered: a chunk is flushed at once anyway, and a failed write leaves nothing behind
    // in a buffer that closing would try again.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return fail(QStringLiteral("cannot create: %1").arg(m_file.errorString()));
    QByteArray start(OxdFormat::Magic, sizeof(OxdFormat::Magic));
    append<quint16>(start, OxdFormat::Version);
    append<quint16>(start, 0);
    if (m_file.write(start) != start.size())
        return fail(QStringLiteral("cannot write: %1").arg(m_file.errorString()));
    m_wholeSize = start.size();
    return writeChunk(OxdFormat::HeaderTag, QJsonDocument(header).toJson(QJsonDocument::Compact));
}

bool OxdWriter::writeBlock(qint64 arrivalMs, const QList<QList<float>>& channels)
{
    if (!isOpen())
        return false;
    const quint32 count = quint32(channels.size());
    const quint32 samples = channels.isEmpty() ? 0 : quint32(channels.first().size());
    m_payload.resize(qsizetype(16 + size_t(count) * samples * sizeof(float)));
    char* out = m_payload.data();
    qToLittleEndian<qint64>(arrivalMs, out);
    qToLittleEndian<quint32>(count, out + 8);
    qToLittleEndian<quint32>(samples, out + 12);
    out += 16;
    for (const QList<float>& channel : channels) {
        // Bit patterns are stored as they are, so NaN payloads survive too; a short channel
        // is padded with zeros.
        const quint32 given = std::min(samples, quint32(channel.size()));
        if (given > 0)
            qToLittleEndian<quint32>(channel.constData(), given, out);
        if (samples > given)
            std::memset(out + given * sizeof(float), 0, (samples - given) * sizeof(float));
        out += samples * sizeof(float);
    }
    return writeChunk(OxdFormat::DataTag, m_payload);
}

bool OxdWriter::addAnnotation(qint64 recordingMs, qint64 wallMs, const QString& text)
{
    if (!isOpen())
        return false;
    QByteArray payload;
    append<qint64>(payload, recordingMs);
    append<qint64>(payload, wallMs);
    payload.append(text.toUtf8());
    return writeChunk(OxdFormat::NoteTag, payload);
}

bool OxdWriter::close()
{
    if (!isOpen())
        return false;
    const bool ended = !m_failed && writeChunk(OxdFormat::EndTag, QByteArray());
    m_file.close();
    return ended;
}

bool OxdWriter::writeChunk(quint32 tag, const QByteArray& payload)
{
    if (m_failed)
        return false;
    m_chunk.clear();
    append<quint32>(m_chunk, tag);
    append<quint32>(m_chunk, quint32(payload.size()));
    m_chunk.append(payload);
    append<quint32>(m_chunk, Crc32::compute(payload.constData(), payload.size()));
    errno = 0;
    if (m_file.write(m_chunk) != m_chunk.size() || !m_file.flush()) {
        // A short write sets no error: the file could not grow.
        const QString reason = errno ? QString::fromLocal8Bit(std::strerror(errno)) : QStringLiteral("no space left");
        m_failed = true;
        // What the failed write left of the chunk goes: the file ends with a whole one.
        if (m_file.handle() >= 0 && ::ftruncate(m_file.handle(), m_wholeSize) == 0)
            m_file.seek(m_wholeSize);
        return fail(QStringLiteral("cannot write: %1").arg(reason));
    }
    m_wholeSize += m_chunk.size();
    return true;
}
