#include "devices/SimulatedHeadsetStream.h"

#include "devices/SimulatedHeadsetPeer.h"
#include "services/KxTimer.h"

#include <cmath>

SimulatedHeadsetStream::SimulatedHeadsetStream(SimulatedHeadsetPeer* peer, int channelCount, const Faults& faults,
                                               std::function<void()> onLinkDropped)
    : QObject(peer)
    , m_peer(peer)
    , m_channelCount(channelCount)
    , m_faults(faults)
    , m_onLinkDropped(std::move(onLinkDropped))
    , m_timer(new KxTimer(TickMs, this))
    , m_row(std::max(1, channelCount), 0.0f)
    , m_noise(std::max(1, channelCount), 0.0f)
    , m_random(quint32(channelCount) * 7919u + 17u)
{
    connect(m_timer, &QTimer::timeout, this, &SimulatedHeadsetStream::tick);
    connect(peer, &SimulatedHeadsetPeer::streamRequested, this, &SimulatedHeadsetStream::begin);
    connect(peer, &SimulatedHeadsetPeer::stopRequested, this, &SimulatedHeadsetStream::end);
}

void SimulatedHeadsetStream::begin(int mode, int rate)
{
    m_encoder.emplace(m_channelCount, mode == 2 ? OrvexFrame6x3 : OrvexFrameDefault);
    m_rate = rate;
    m_sent = 0;
    m_clock.start();
    m_timer->start();
}

void SimulatedHeadsetStream::end()
{
    m_timer->stop();
}

void SimulatedHeadsetStream::tick()
{
    const qint64 elapsed = m_clock.elapsed();
    if (m_faults.dropLinkAfterMs >= 0 && elapsed >= m_faults.dropLinkAfterMs) {
        end();
        if (m_onLinkDropped)
            m_onLinkDropped();
        m_peer->dropLink();
        return;
    }
    if (m_faults.silenceAfterMs >= 0 && elapsed >= m_faults.silenceAfterMs) {
        end(); // silent from now on, the link stays up
        return;
    }
    // Never more than a second at once, should the event loop have stalled.
    const qint64 due = qint64(double(elapsed) * m_rate * m_faults.rateFactor / 1000.0);
    const qint64 rows = std::min<qint64>(due - m_sent, std::max(1, m_rate));
    for (qint64 i = 0; i < rows; ++i, ++m_sent) {
        fillRow(double(m_sent) / m_rate);
        m_packets.clear();
        m_encoder->addSample(m_row.constData(), m_packets);
        send(m_packets);
    }
    m_sent = std::max(m_sent, due);
}

// Alpha waxing and waning around 10 Hz, some beta, a slow drift and a wandering background.
void SimulatedHeadsetStream::fillRow(double t)
{
    constexpr double TwoPi = 6.283185307179586;
    const double envelope = 0.75 + 0.25 * std::sin(TwoPi * 0.1 * t);
    for (int c = 0; c < m_channelCount; ++c) {
        const double phase = 0.7 * c;
        m_noise[c] = float(0.97 * m_noise[c] + 2.0 * (m_random.generateDouble() - 0.5));
        const double value = 20.0 * envelope * std::sin(TwoPi * (9.5 + 0.25 * c) * t + phase)
            + 5.0 * std::sin(TwoPi * 21.0 * t + 2 * phase) + 6.0 * std::sin(TwoPi * 0.3 * t + phase)
            + 3.0 * m_noise[c];
        m_row[c] = float(value);
    }
}

void SimulatedHeadsetStream::send(const QList<QByteArray>& packets)
{
    for (const QByteArray& packet : packets) {
        if (m_faults.packetLossPercent > 0 && m_random.generateDouble() * 100.0 < m_faults.packetLossPercent)
            continue;
        m_peer->notify(packet);
    }
}
