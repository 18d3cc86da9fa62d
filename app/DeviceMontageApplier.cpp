#include "app/DeviceMontageApplier.h"

#include "app/ui/MontageFile.h"
#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

#include <QJsonDocument>
#include <QJsonObject>

DeviceMontageApplier::DeviceMontageApplier(CortexCore* engine, OrvexSettings* settings)
    : QObject(engine)
    , m_engine(engine)
    , m_settings(settings)
{
    // The engine counts as started only once its deviceStarted handlers have run.
    connect(engine, &CortexCore::deviceStarted, this, &DeviceMontageApplier::apply, Qt::QueuedConnection);
}

void DeviceMontageApplier::apply()
{
    if (!m_engine->isDeviceStarted())
        return;
    const QString device = m_engine->currentDeviceInfo().name;
    const QString file = QJsonDocument::fromJson(m_settings->getDeviceMontages().toUtf8()).object().value(device).toString();
    if (file.isEmpty())
        return;
    QList<MontageChannel> montage;
    QString error;
    if (!MontageFile::load(file, montage, error) || !m_engine->setMontage(montage))
        GlobalConsole::writeLine(QStringLiteral("The montage of %1 was not applied: %2")
                                     .arg(device, error.isEmpty() ? QStringLiteral("the device refused it") : error));
}
