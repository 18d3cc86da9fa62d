#pragma once

#include "devices/OrvexDataGrabber.h"

#include <QByteArray>
#include <QList>

// The headset's side of the frame format: sample rows in, 20-byte packets out. Used by the
// simulated headset; the layout mirrors OrvexDataGrabber (positions a channel count leaves
// unused are sent as zero).
class OrvexPacketEncoder
{
public:
    OrvexPacketEncoder(int channelCount, enumOrvexFrameFormat format);

    // Adds one sample per channel (µV, `row` holds channelCount values); appends the packets
    // this completes (one per sample in "6x3", four per frame otherwise) to `packets`.
    void addSample(const float* row, QList<QByteArray>& packets);

    static void encodeSample(float microvolts, char* bytes);

private:
    QByteArray nextPacket(const char* payload);
    void appendFrame(QList<QByteArray>& packets);

    int m_channelCount;
    enumOrvexFrameFormat m_format;
    int m_samplesPerFrame;
    quint8 m_counter = 0;
    QList<float> m_pending; // rows of the frame being filled, row after row
    int m_pendingRows = 0;
};
