#include "devices/OrvexDataGrabber.h"

#include "services/GlobalConsole.h"
#include "services/GlobalConsoleWriter.h"

#include <cstring>

namespace {
quint8 counterOf(const char* packet)
{
    return quint8(packet[0]);
}
}

OrvexDataGrabber::OrvexDataGrabber(int channelCount, enumOrvexFrameFormat format)
    : m_channelCount(channelCount)
    , m_format(format)
    , m_row(std::max(0, channelCount), 0.0f)
{
}

float OrvexDataGrabber::decodeSample(const char* bytes)
{
    const quint32 raw = (quint32(quint8(bytes[0])) << 24) | (quint32(quint8(bytes[1])) << 16)
        | (quint32(quint8(bytes[2])) << 8);
    return float(qint32(raw)) * Scale;
}

int OrvexDataGrabber::samplesPerFrame() const
{
    switch (m_channelCount) {
    case 1: return GroupsPerFrame * ValuesPerGroup;
    case 2: return GroupsPerFrame * ValuesPerGroup / 2;
    case 4:
    case 6:
    case 8: return GroupsPerFrame;
    default: return 0;
    }
}

QList<QList<float>> OrvexDataGrabber::emptyBlock(int reserve) const
{
    QList<QList<float>> block(m_channelCount);
    for (QList<float>& channel : block)
        channel.reserve(reserve);
    return block;
}

QList<QList<float>> OrvexDataGrabber::addData(const QByteArray& packet, int* lost)
{
    if (lost)
        *lost = 0;
    if (packet.size() != PacketSize)
        return {};
    return m_format == OrvexFrame6x3 ? addPacket6x3(packet, lost) : addPacketDefault(packet, lost);
}

QList<QList<float>> OrvexDataGrabber::addPacket6x3(const QByteArray& packet, int* lost)
{
    const quint8 counter = counterOf(packet.constData());
    if (!m_firstPacket && counter != quint8(m_lastCounter + 1)) {
        kxDebug() << QStringLiteral("LOST PACKETS from") << m_deviceName << int(m_lastCounter) << int(counter);
        ++m_lostPackets;
        if (lost)
            *lost = 1;
        GlobalConsole::writeLine(QStringLiteral("Lost packet [6ch] %1 n%2 o%3").arg(m_deviceName).arg(counter).arg(m_lastCounter));
    }
    m_firstPacket = false;
    m_lastCounter = counter;

    constexpr int Channels = 6;
    QList<QList<float>> block(Channels);
    for (int c = 0; c < Channels; ++c)
        block[c].append(decodeSample(packet.constData() + 2 + 3 * c));
    return block;
}

int OrvexDataGrabber::firstBreakInQueue() const
{
    for (int i = 0; i + 1 < m_queueLength; ++i) {
        if (counterOf(m_queue[i + 1].data()) != quint8(counterOf(m_queue[i].data()) + 1))
            return i;
    }
    return -1;
}

void OrvexDataGrabber::reportQueuedLoss() const
{
    // The queued counters alone, without the device name: "Lost packet [6ch]  1:4 2:5 3:7 4:8".
    QString line = QStringLiteral("Lost packet [6ch] ");
    for (int i = 0; i < m_queueLength; ++i)
        line += QStringLiteral(" %1:%2").arg(i + 1).arg(counterOf(m_queue[i].data()));
    GlobalConsole::writeLine(line);
    GlobalConsole::writeLine(QStringLiteral("Data grabber lost packet"));
}

// A break inside the four queued packets leaves the packets before it without a frame: they
// are dropped and counted with the missing ones, and the packets after it start the next
// frame. A gap between the previous frame and this one is counted the same way, and the
// frame itself is still decoded.
QList<QList<float>> OrvexDataGrabber::addPacketDefault(const QByteArray& packet, int* lost)
{
    std::memcpy(m_queue[m_queueLength].data(), packet.constData(), PacketSize);
    if (++m_queueLength < PacketsPerFrame)
        return {};

    const int breakAt = firstBreakInQueue();
    if (breakAt >= 0) {
        reportQueuedLoss();
        const quint8 before = counterOf(m_queue[breakAt].data());
        const quint8 after = counterOf(m_queue[breakAt + 1].data());
        const int missing = quint8(after - before - 1) + breakAt + 1;
        if (lost)
            *lost = missing;
        for (int i = breakAt + 1; i < m_queueLength; ++i)
            m_queue[i - breakAt - 1] = m_queue[i];
        m_queueLength -= breakAt + 1;
        m_firstPacket = false;
        m_lastCounter = quint8(after - 1);
        return addLostPackets(missing);
    }

    const quint8 first = counterOf(m_queue[0].data());
    const int gap = m_firstPacket ? 0 : quint8(first - m_lastCounter - 1);
    m_firstPacket = false;
    m_lastCounter = counterOf(m_queue[PacketsPerFrame - 1].data());
    if (gap == 0)
        return doFrameAsDefault();

    reportQueuedLoss();
    if (lost)
        *lost = gap;
    QList<QList<float>> block = addLostPackets(gap);
    appendFrame(block);
    m_queueLength = 0;
    return block;
}

QList<QList<float>> OrvexDataGrabber::doFrameAsDefault()
{
    QList<QList<float>> block;
    if (samplesPerFrame() > 0) {
        block = emptyBlock(samplesPerFrame());
        appendFrame(block);
    }
    m_queueLength = 0;
    return block;
}

void OrvexDataGrabber::appendFrame(QList<QList<float>>& block)
{
    if (samplesPerFrame() == 0)
        return;
    std::array<char, PacketsPerFrame * PayloadSize> payload;
    for (int p = 0; p < PacketsPerFrame; ++p)
        std::memcpy(payload.data() + p * PayloadSize, m_queue[p].data() + 2, PayloadSize);
    std::array<float, ValuesPerGroup> values;
    for (int g = 0; g < GroupsPerFrame; ++g) {
        for (int v = 0; v < ValuesPerGroup; ++v)
            values[v] = decodeSample(payload.data() + 3 * (g * ValuesPerGroup + v));
        appendGroup(values.data(), block);
    }
}

void OrvexDataGrabber::appendGroup(const float* values, QList<QList<float>>& block)
{
    // Positions 1 and 6 of a six-channel group carry no electrode.
    static constexpr int SixChannelPositions[6] = { 0, 2, 3, 4, 5, 7 };
    switch (m_channelCount) {
    case 1:
        for (int v = 0; v < ValuesPerGroup; ++v)
            block[0].append(values[v]);
        break;
    case 2:
        for (int v = 0; v < ValuesPerGroup; ++v)
            block[v % 2].append(values[v]);
        break;
    case 4:
    case 8:
        for (int c = 0; c < m_channelCount; ++c)
            block[c].append(values[c]);
        break;
    case 6:
        for (int c = 0; c < 6; ++c)
            block[c].append(values[SixChannelPositions[c]]);
        break;
    default: return;
    }
    for (int c = 0; c < m_channelCount; ++c)
        m_row[c] = block[c].last();
}

QList<QList<float>> OrvexDataGrabber::addLostPackets(int count)
{
    if (count <= 0)
        return {};
    m_lostPackets += count;
    const int perFrame = samplesPerFrame();
    if (perFrame == 0)
        return {};
    const qint64 owed = qint64(count) * perFrame + m_lostRemainder;
    const int samples = int(std::min<qint64>(owed / PacketsPerFrame, 256 * perFrame));
    m_lostRemainder = int(owed % PacketsPerFrame);
    QList<QList<float>> block = emptyBlock(samples + perFrame);
    for (int c = 0; c < m_channelCount; ++c)
        block[c].fill(m_row[c], samples);
    return block;
}
