#pragma once

#include <QtGlobal>

// CRC-32 (IEEE 802.3, the zip/PNG polynomial) of a byte range; `crc` continues a running sum.
class Crc32
{
public:
    static quint32 compute(const char* data, qsizetype size, quint32 crc = 0);
};
