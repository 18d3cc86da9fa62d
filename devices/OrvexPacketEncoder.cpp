#include "devices/OrvexPacketEncoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

OrvexPacketEncoder::OrvexPacketEncoder(int channelCount, enumOrvexFrameFormat format)
    : m_channelCount(std::max(0, channelCount))
    , m_format(format)
    , m_samplesPerFrame(OrvexDataGrabber(channelCount, format).samplesPerFrame())
    , m_pending(qsizetype(m_channelCount) * std::max(1, m_samplesPerFrame), 0.0f)
{
}

void OrvexPacketEncoder::encodeSample(float microvolts, char* bytes)
{
    constexpr double MicrovoltsPerStep = 0.0476837158203125;
    const double steps = std::clamp(std::round(double(microvolts) / MicrovoltsPerStep), -8388608.0, 8388607.0);
    const quint32 value = quint32(qint32(steps)) & 0xffffff;
    bytes[0] = char(value >> 16);
    bytes[1] = char(value >> 8);
    bytes[2] = char(value);
}

QByteArray OrvexPacketEncoder::nextPacket(const char* payload)
{
    QByteArray packet(OrvexDataGrabber::PacketSize, '\0');
    packet[0] = char(m_counter++);
    std::memcpy(packet.data() + 2, payload, OrvexDataGrabber::PayloadSize);
    return packet;
}

void OrvexPacketEncoder::addSample(const float* row, QList<QByteArray>& packets)
{
    if (m_format == OrvexFrame6x3) {
        std::array<char, OrvexDataGrabber::PayloadSize> payload {};
        for (int c = 0; c < std::min(6, m_channelCount); ++c)
            encodeSample(row[c], payload.data() + 3 * c);
        packets.append(nextPacket(payload.data()));
        return;
    }
    if (m_samplesPerFrame == 0)
        return;
    std::copy(row, row + m_channelCount, m_pending.begin() + qsizetype(m_pendingRows) * m_channelCount);
    if (++m_pendingRows == m_samplesPerFrame) {
        appendFrame(packets);
        m_pendingRows = 0;
    }
}

// Places each pending value at the frame position the decoder reads it from.
void OrvexPacketEncoder::appendFrame(QList<QByteArray>& packets)
{
    constexpr int Values = OrvexDataGrabber::GroupsPerFrame * OrvexDataGrabber::ValuesPerGroup;
    static constexpr int SixChannelPositions[6] = { 0, 2, 3, 4, 5, 7 };
    std::array<float, Values> values {};
    const auto at = [this](int sample, int channel) { return m_pending[sample * m_channelCount + channel]; };
    for (int g = 0; g < OrvexDataGrabber::GroupsPerFrame; ++g) {
        float* group = values.data() + g * OrvexDataGrabber::ValuesPerGroup;
        for (int p = 0; p < OrvexDataGrabber::ValuesPerGroup; ++p) {
            switch (m_channelCount) {
            case 1: group[p] = at(g * 8 + p, 0); break;
            case 2: group[p] = at(g * 4 + p / 2, p % 2); break;
            case 4: group[p] = p < 4 ? at(g, p) : 0.0f; break;
            case 8: group[p] = at(g, p); break;
            default: break;
            }
        }
        if (m_channelCount == 6) {
            for (int c = 0; c < 6; ++c)
                group[SixChannelPositions[c]] = at(g, c);
        }
    }
    std::array<char, Values * 3> payload;
    for (int v = 0; v < Values; ++v)
        encodeSample(values[v], payload.data() + 3 * v);
    for (int p = 0; p < OrvexDataGrabber::PacketsPerFrame; ++p)
        packets.append(nextPacket(payload.data() + p * OrvexDataGrabber::PayloadSize));
}
