#include "formats/Crc32.h"

#include <array>

namespace {
std::array<quint32, 256> makeTable()
{
    std::array<quint32, 256> table {};
    for (quint32 n = 0; n < 256; ++n) {
        quint32 c = n;
        for (int k = 0; k < 8; ++k)
            c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}
}

quint32 Crc32::compute(const char* data, qsizetype size, quint32 crc)
{
    static const std::array<quint32, 256> table = makeTable();
    crc = ~crc;
    for (qsizetype i = 0; i < size; ++i)
        crc = table[(crc ^ quint8(data[i])) & 0xFFu] ^ (crc >> 8);
    return ~crc;
}
