#include "app/ui/RecordPlayerController.h"

#include "core/CortexCore.h"
#include "devices/EDFVirtualDevice.h"
#include "services/GlobalConsole.h"
#include "settings/VirtualDevicesSettings.h"

#include <QFileInfo>

namespace {
const QString PlayerName = QStringLiteral("EDFVirtualDevice");
constexpr int PollMs = 100; // the position slider's pace
}

RecordPlayerController::RecordPlayerController(CortexCore* engine, VirtualDevicesSettings* virtualDevices,
                                               QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_virtualDevices(virtualDevices)
{
    m_poll.setInterval(PollMs);
    connect(&m_poll, &QTimer::timeout, this, &RecordPlayerController::poll);
    // Whatever starts or stops a device (the devices screen, the API) may end the playback.
    connect(engine, &CortexCore::deviceStarted, this, &RecordPlayerController::stateChanged, Qt::QueuedConnection);
    connect(engine, &CortexCore::deviceStopped, this, &RecordPlayerController::stateChanged);
    connect(this, &RecordPlayerController::stateChanged, this, [this] {
        if (isActive())
            m_poll.start();
        else
            m_poll.stop();
    });
}

QList<double> RecordPlayerController::speeds()
{
    return { 0.5, 1, 2, 4, 8 };
}

EDFVirtualDevice* RecordPlayerController::player() const
{
    auto* device = qobject_cast<EDFVirtualDevice*>(m_engine->currentDevice());
    return device && !m_path.isEmpty() && device->path() == m_path ? device : nullptr;
}

bool RecordPlayerController::isPaused() const
{
    EDFVirtualDevice* device = player();
    return device && device->isPaused();
}

double RecordPlayerController::durationSeconds() const
{
    EDFVirtualDevice* device = player();
    return device && device->samplingRate() > 0 ? device->lengthSamples() / double(device->samplingRate()) : 0.0;
}

double RecordPlayerController::positionSeconds() const
{
    EDFVirtualDevice* device = player();
    return device && device->samplingRate() > 0 ? device->position() / double(device->samplingRate()) : 0.0;
}

bool RecordPlayerController::play(const QString& path)
{
    if (m_engine->isRecording()) {
        setMessage(QStringLiteral("Stop the recording before playing a record"));
        return false;
    }
    const QString file = QFileInfo(path).absoluteFilePath();
    if (!m_virtualDevices->setTextValue(QStringLiteral("EDFPath"), file)) {
        setMessage(QStringLiteral("Cannot play %1: choose an EDF or BDF file").arg(file));
        return false;
    }
    // The search lists the file player with the new file at once; the radio search is not needed.
    m_engine->startDeviceSearch();
    m_engine->stopDeviceSearch();
    for (const DeviceInfo& info : m_engine->getFoundDevices()) {
        if (info.name != PlayerName || !m_engine->startDevice(info, {}, -1))
            continue;
        m_path = file;
        if (EDFVirtualDevice* device = player()) {
            device->seek(0);
            device->setSpeed(m_speed);
            device->setPaused(false);
        }
        setMessage(QString());
        Q_EMIT stateChanged();
        return true;
    }
    setMessage(QStringLiteral("Cannot play %1: not a readable EDF/BDF record").arg(QFileInfo(file).fileName()));
    return false;
}

void RecordPlayerController::stop()
{
    if (isActive())
        m_engine->stopDevice();
    m_path.clear();
    Q_EMIT stateChanged();
}

void RecordPlayerController::seek(double seconds)
{
    if (EDFVirtualDevice* device = player()) {
        device->seek(qint64(std::max(0.0, seconds) * device->samplingRate()));
        poll();
    }
}

void RecordPlayerController::setPaused(bool paused)
{
    if (EDFVirtualDevice* device = player()) {
        device->setPaused(paused);
        Q_EMIT stateChanged();
    }
}

bool RecordPlayerController::setSpeed(double speed)
{
    if (!speeds().contains(speed)) {
        setMessage(QStringLiteral("Speed %1x is not offered").arg(speed));
        return false;
    }
    m_speed = speed;
    if (EDFVirtualDevice* device = player())
        device->setSpeed(speed);
    Q_EMIT stateChanged();
    return true;
}

void RecordPlayerController::poll()
{
    EDFVirtualDevice* device = player();
    const qint64 position = device ? device->position() : -1;
    if (position != m_lastPosition) {
        m_lastPosition = position;
        Q_EMIT positionChanged();
    }
}

void RecordPlayerController::setMessage(const QString& message)
{
    if (message == m_message)
        return;
    m_message = message;
    if (!message.isEmpty())
        GlobalConsole::writeLine(QStringLiteral("Player: ") + message);
    Q_EMIT messageChanged();
}
