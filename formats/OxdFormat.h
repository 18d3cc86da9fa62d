#pragma once

#include <QtGlobal>

// The .oxd side file: a lossless, append-only companion of a recording (see docs/oxd-format.md).
namespace OxdFormat {
constexpr char Magic[8] = { 'O', 'R', 'V', 'E', 'X', 'O', 'X', 'D' };
constexpr quint16 Version = 1;
constexpr int FileHeaderSize = 12;       // magic, version, reserved
constexpr int ChunkHeaderSize = 8;       // tag, payload length
constexpr int ChunkTrailerSize = 4;      // CRC-32 of the payload
constexpr quint32 MaxPayload = 64u << 20; // a larger length is damage, not data

constexpr quint32 tag(const char (&name)[5])
{
    return quint32(quint8(name[0])) | quint32(quint8(name[1])) << 8 | quint32(quint8(name[2])) << 16
        | quint32(quint8(name[3])) << 24;
}
constexpr quint32 HeaderTag = tag("HEAD");
constexpr quint32 DataTag = tag("DATA");
constexpr quint32 NoteTag = tag("NOTE");
constexpr quint32 EndTag = tag("END ");
}
