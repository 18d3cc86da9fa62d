#include "app/ui/StatusController.h"

#include "app/OrvexModel.h"
#include "core/CortexCore.h"
#include "server/OrvexDataServer.h"

StatusController::StatusController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_engine(model->engine())
{
    // The engine marks itself started only after announcing it: read its state a turn later.
    connect(m_engine, &CortexCore::deviceStarted, this, &StatusController::refreshDevice, Qt::QueuedConnection);
    connect(m_engine, &CortexCore::deviceStopped, this, &StatusController::refreshDevice);
    connect(m_engine, &CortexCore::deviceBatteryLevelUpdated, this, [this](int level) {
        m_battery = level;
        Q_EMIT deviceChanged();
    });
    refreshDevice();
}

void StatusController::refreshDevice()
{
    const bool started = m_engine->isDeviceStarted();
    const DeviceInfo info = started ? m_engine->currentDeviceInfo() : DeviceInfo();
    m_deviceName = info.name;
    if (!started)
        m_battery = -1; // while started, the device's own reports keep it
    m_samplingRate = started ? m_engine->getCurrentDeviceFrequency() : 0;
    Q_EMIT deviceChanged();
}

QString StatusController::apiAddress() const
{
    const OrvexDataServer* server = m_model->dataServer();
    if (!server)
        return QStringLiteral("API off");
    return QStringLiteral("API http://127.0.0.1:%1 · ws :%2").arg(server->portHTTP()).arg(server->portWebSocket());
}

void StatusController::setMessage(const QString& message)
{
    if (message == m_message)
        return;
    m_message = message;
    Q_EMIT messageChanged();
}
