#include "app/RecordingResumer.h"

#include "core/AbstractDevice.h"
#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

RecordingResumer::RecordingResumer(CortexCore* engine, OrvexSettings* settings, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_settings(settings)
{
    connect(engine, &CortexCore::deviceStarted, this, &RecordingResumer::watchDevice);
    // The engine counts as started only after announcing it: resume a turn later.
    connect(engine, &CortexCore::deviceStarted, this, &RecordingResumer::onDeviceStarted, Qt::QueuedConnection);
    connect(engine, &CortexCore::recordStopped, this, [this] { m_lostDevice.clear(); });
}

// Directly on the device's signal: the annotation lands before the engine's queued pause.
void RecordingResumer::watchDevice()
{
    if (AbstractDevice* device = m_engine->currentDevice())
        connect(device, &AbstractDevice::disconnected, this, &RecordingResumer::onDisconnected,
                Qt::UniqueConnection);
}

void RecordingResumer::onDisconnected()
{
    // A device the user stopped reports its disconnection after it stopped being current.
    if (sender() != m_engine->currentDevice() || !m_engine->isRecording() || m_engine->isRecordPaused()
        || !m_settings->getResumeRecordingAfterReconnect())
        return;
    m_lostDevice = m_engine->currentDeviceInfo().name;
    m_engine->addAnnotation(QStringLiteral("Device disconnected"));
}

void RecordingResumer::onDeviceStarted()
{
    if (m_lostDevice.isEmpty() || !m_engine->isDeviceStarted() || m_engine->currentDeviceInfo().name != m_lostDevice)
        return;
    m_lostDevice.clear();
    if (!m_engine->isRecording() || !m_engine->isRecordPaused())
        return;
    GlobalConsole::writeLine(QStringLiteral("The device is back: the recording continues"));
    m_engine->continueRecord();
    m_engine->addAnnotation(QStringLiteral("Device reconnected"));
}
