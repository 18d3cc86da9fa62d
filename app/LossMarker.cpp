#include "app/LossMarker.h"

#include "core/CortexCore.h"
#include "devices/OrvexDevice.h"
#include "services/GlobalConsole.h"

LossMarker::LossMarker(CortexCore* engine, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
{
    m_timer.setInterval(IntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &LossMarker::mark);
    connect(engine, &CortexCore::deviceStarted, this, &LossMarker::onDeviceStarted);
    // Losses before the recording are not the recording's.
    connect(engine, &CortexCore::recordStarted, this, [this] {
        m_marked = m_headset ? m_headset->lostPackets() : 0;
        m_atStart = m_marked;
        m_timer.start();
    });
    // The last part of a second is marked too, so the marks add up to the device's count.
    connect(engine, &CortexCore::recordStopping, this, [this] {
        mark();
        m_timer.stop();
        if (m_headset)
            GlobalConsole::writeLine(
                QStringLiteral("Packets lost during the recording: %1").arg(m_headset->lostPackets() - m_atStart));
    });
}

void LossMarker::onDeviceStarted()
{
    m_headset = qobject_cast<OrvexDevice*>(m_engine->currentDevice());
    m_marked = m_headset ? m_headset->lostPackets() : 0;
}

void LossMarker::mark()
{
    if (!m_headset || !m_engine->isRecording() || m_engine->isRecordPaused())
        return;
    const int lost = m_headset->lostPackets();
    if (lost <= m_marked)
        return;
    m_engine->addAnnotation(QStringLiteral("Lost %1 packets").arg(lost - m_marked));
    m_marked = lost;
}
