#include "DataGrabberFuzz.h"

#include "devices/OrvexDataGrabber.h"

#include <QByteArray>

#include <cstdlib>

namespace {
// Every block is channel-wise with channels of equal length.
void checkBlock(const QList<QList<float>>& block)
{
    for (const QList<float>& channel : block) {
        if (channel.size() != block.first().size())
            std::abort();
    }
}
}

namespace FuzzEntries {

void datagrabber(const uint8_t* data, size_t size)
{
    if (size < 2)
        return;
    const int channels = data[0] % 10;
    OrvexDataGrabber grabber(channels, data[1] % 2 ? OrvexFrame6x3 : OrvexFrameDefault);
    grabber.setDeviceName(QStringLiteral("fuzz"));
    int lostBefore = 0;
    size_t at = 2;
    while (at < size) {
        const uint8_t length = data[at++];
        QList<QList<float>> block;
        if (length == 255) {
            const int count = at < size ? data[at++] : 0;
            block = grabber.addLostPackets(count);
        } else {
            const size_t take = std::min<size_t>(length % 32, size - at);
            int lost = -1;
            block = grabber.addData(QByteArray(reinterpret_cast<const char*>(data + at), qsizetype(take)), &lost);
            at += take;
            if (lost < 0 || (take != 20 && (lost != 0 || !block.isEmpty())))
                std::abort();
        }
        checkBlock(block);
        if (grabber.lostPackets() < lostBefore)
            std::abort();
        lostBefore = grabber.lostPackets();
    }
}

} // namespace FuzzEntries
