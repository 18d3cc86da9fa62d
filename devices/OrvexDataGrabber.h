#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>

enum enumOrvexFrameFormat { OrvexFrameDefault = 0, OrvexFrame6x3 = 18 };

// Turns the headset's 20-byte notifications into channel-wise sample blocks. A packet is an
// 8-bit counter, one unused byte and six 24-bit big-endian samples. The "6x3" format carries
// one sample of six channels per packet; the default format spreads three groups of eight
// values over four packets, distributed by the channel count. Packets missing from the
// counter sequence are counted and, in the default format, stood in for (see addLostPackets).
class OrvexDataGrabber
{
public:
    static constexpr int PacketSize = 20;
    static constexpr int PayloadSize = 18;
    static constexpr int PacketsPerFrame = 4;
    static constexpr int ValuesPerGroup = 8;
    static constexpr int GroupsPerFrame = 3;
    // µV per unit of the sample read as a 32-bit value (the 24 bits shifted up by 8).
    static constexpr float Scale = 0.00018626451492309568f;
    // Volts per 24-bit step, for callers that want the raw step size.
    static constexpr double VoltsPerStep = 4.7683715820312496e-08;

    OrvexDataGrabber(int channelCount, enumOrvexFrameFormat format);

    // The block completed by `packet`; empty while a frame is incomplete or the packet is
    // not 20 bytes. `lost`, when given, receives the number of packets found missing.
    QList<QList<float>> addData(const QByteArray& packet, int* lost = nullptr);
    // Stand-in samples for `count` lost default-format packets: each packet is worth a
    // quarter of a frame's samples (fractions carried over), every channel holding its last
    // decoded value (0 before the first). Adds `count` to the lost total.
    QList<QList<float>> addLostPackets(int count);

    int channelCount() const { return m_channelCount; }
    enumOrvexFrameFormat format() const { return m_format; }
    int lostPackets() const { return m_lostPackets; }
    QString deviceName() const { return m_deviceName; }
    void setDeviceName(const QString& name) { m_deviceName = name; }
    // Samples per channel in one default four-packet frame; 0 for an unsupported count.
    int samplesPerFrame() const;

    static float decodeSample(const char* bytes);

private:
    using Packet = std::array<char, PacketSize>;

    QList<QList<float>> addPacket6x3(const QByteArray& packet, int* lost);
    QList<QList<float>> addPacketDefault(const QByteArray& packet, int* lost);
    QList<QList<float>> doFrameAsDefault();
    void appendFrame(QList<QList<float>>& block);
    void appendGroup(const float* values, QList<QList<float>>& block);
    QList<QList<float>> emptyBlock(int reserve) const;
    int firstBreakInQueue() const;
    void reportQueuedLoss() const;

    int m_channelCount;
    enumOrvexFrameFormat m_format;
    int m_lostPackets = 0;
    QString m_deviceName;
    bool m_firstPacket = true;
    quint8 m_lastCounter = 0;
    std::array<Packet, PacketsPerFrame> m_queue {};
    int m_queueLength = 0;
    QList<float> m_row; // last decoded value per channel
    int m_lostRemainder = 0; // quarter-frame sample fractions owed by earlier losses
};
