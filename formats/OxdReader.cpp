#include "formats/OxdReader.h"

#include "formats/Crc32.h"
#include "formats/OxdFormat.h"

#include <QFile>
#include <QJsonDocument>
#include <QtEndian>

#include <cstring>

void OxdReader::clear()
{
    m_header = QJsonObject();
    m_blocks.clear();
    m_annotations.clear();
    m_complete = false;
    m_error.clear();
}

bool OxdReader::read(const QString& path)
{
    clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    const qint64 size = file.size();
    if (size == 0) {
        m_error = QStringLiteral("%1 is empty").arg(path);
        return false;
    }
    if (const uchar* mapped = file.map(0, size))
        return parse(reinterpret_cast<const char*>(mapped), size);
    const QByteArray bytes = file.readAll();
    return parse(bytes.constData(), bytes.size());
}

bool OxdReader::parse(const char* data, qsizetype size)
{
    if (size < OxdFormat::FileHeaderSize || std::memcmp(data, OxdFormat::Magic, sizeof(OxdFormat::Magic)) != 0) {
        m_error = QStringLiteral("not a side file (no OXD signature)");
        return false;
    }
    const quint16 version = qFromLittleEndian<quint16>(data + 8);
    if (version != OxdFormat::Version) {
        m_error = QStringLiteral("side file version %1 is not supported (this program reads version %2)")
                      .arg(version)
                      .arg(OxdFormat::Version);
        return false;
    }
    qsizetype at = OxdFormat::FileHeaderSize;
    bool first = true;
    while (at < size && !m_complete) {
        const qsizetype left = size - at;
        if (left < OxdFormat::ChunkHeaderSize) {
            m_error = QStringLiteral("incomplete chunk at byte %1").arg(at);
            break;
        }
        const quint32 tag = qFromLittleEndian<quint32>(data + at);
        const quint32 length = qFromLittleEndian<quint32>(data + at + 4);
        if (length > OxdFormat::MaxPayload
            || qsizetype(length) > left - OxdFormat::ChunkHeaderSize - OxdFormat::ChunkTrailerSize) {
            m_error = QStringLiteral("incomplete chunk at byte %1").arg(at);
            break;
        }
        const char* payload = data + at + OxdFormat::ChunkHeaderSize;
        const quint32 crc = qFromLittleEndian<quint32>(payload + length);
        if (crc != Crc32::compute(payload, length)) {
            m_error = QStringLiteral("damaged chunk at byte %1 (checksum)").arg(at);
            break;
        }
        if (first && tag != OxdFormat::HeaderTag) {
            m_error = QStringLiteral("the side file does not start with its header");
            return false;
        }
        first = false;
        if (!takeChunk(tag, payload, length)) {
            m_error = QStringLiteral("malformed chunk at byte %1").arg(at);
            break;
        }
        at += OxdFormat::ChunkHeaderSize + length + OxdFormat::ChunkTrailerSize;
    }
    if (first) {
        m_error = QStringLiteral("the side file has no readable header");
        return false;
    }
    return true;
}

bool OxdReader::takeChunk(quint32 tag, const char* payload, quint32 length)
{
    switch (tag) {
    case OxdFormat::HeaderTag: {
        QJsonParseError error {};
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray(payload, length), &error);
        if (error.error != QJsonParseError::NoError || !document.isObject())
            return false;
        m_header = document.object();
        return true;
    }
    case OxdFormat::DataTag: {
        if (length < 16)
            return false;
        Block block;
        block.arrivalMs = qFromLittleEndian<qint64>(payload);
        const quint32 channels = qFromLittleEndian<quint32>(payload + 8);
        const quint32 samples = qFromLittleEndian<quint32>(payload + 12);
        if (quint64(channels) * samples * sizeof(float) != quint64(length) - 16)
            return false;
        const char* values = payload + 16;
        for (quint32 c = 0; c < channels; ++c) {
            QList<float> channel(samples);
            if (samples > 0)
                qFromLittleEndian<quint32>(values, samples, channel.data());
            values += samples * sizeof(float);
            block.channels.append(std::move(channel));
        }
        m_blocks.append(std::move(block));
        return true;
    }
    case OxdFormat::NoteTag: {
        if (length < 16)
            return false;
        Annotation note;
        note.recordingMs = qFromLittleEndian<qint64>(payload);
        note.wallMs = qFromLittleEndian<qint64>(payload + 8);
        note.text = QString::fromUtf8(payload + 16, length - 16);
        m_annotations.append(note);
        return true;
    }
    case OxdFormat::EndTag:
        m_complete = true;
        return true;
    default:
        return true; // chunks of later versions are skipped
    }
}
