#pragma once

#include "devices/OrvexPacketEncoder.h"

#include <QElapsedTimer>
#include <QObject>
#include <QRandomGenerator>

#include <functional>
#include <optional>

class KxTimer;
class SimulatedHeadsetPeer;

// The simulated headset's sensor side: once the peer is commanded to stream it sends EEG-like
// packets at the commanded rate, and it injects the faults it was given.
class SimulatedHeadsetStream : public QObject
{
    Q_OBJECT
public:
    struct Faults
    {
        double packetLossPercent = 0;
        double rateFactor = 1; // sent rate / commanded rate
        qint64 silenceAfterMs = -1; // stop sending (link kept) after this much streaming
        qint64 dropLinkAfterMs = -1; // drop the link after this much streaming
    };

    // Lives as a child of `peer`; `onLinkDropped` runs when the link-drop fault fires.
    SimulatedHeadsetStream(SimulatedHeadsetPeer* peer, int channelCount, const Faults& faults,
                           std::function<void()> onLinkDropped = {});

    static constexpr int TickMs = 20;

private:
    void begin(int mode, int rate);
    void end();
    void tick();
    void fillRow(double seconds);
    void send(const QList<QByteArray>& packets);

    SimulatedHeadsetPeer* m_peer;
    int m_channelCount;
    Faults m_faults;
    std::function<void()> m_onLinkDropped;
    KxTimer* m_timer;
    QElapsedTimer m_clock;
    std::optional<OrvexPacketEncoder> m_encoder;
    int m_rate = 0;
    qint64 m_sent = 0; // sample rows so far
    QList<float> m_row;
    QList<float> m_noise; // per channel, slowly wandering background
    QList<QByteArray> m_packets;
    QRandomGenerator m_random;
};
