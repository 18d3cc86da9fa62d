#include "server/commands/GetAllSettings.h"

#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QJsonArray>

GetAllSettings::GetAllSettings(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool GetAllSettings::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const OrvexSettings* settings = context() ? context()->getSettings() : nullptr;
    const VirtualDevicesSettings* virtualDevices = context() ? context()->getVirtualDevicesSettings() : nullptr;
    response.insert(QStringLiteral("settings"), settings ? settings->getAllCapabilitiesJson(false) : QJsonArray());
    response.insert(QStringLiteral("virtualDeviceSettings"),
                    virtualDevices ? virtualDevices->getAllCapabilitiesJson(false) : QJsonArray());
    return true;
}

QString GetAllSettings::getDescription()
{
    return tr("Get all the settings");
}

QMap<QString, QString> GetAllSettings::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("settings"), tr("Application settings") },
                        { QStringLiteral("virtualDeviceSettings"), tr("Virtual device settings") } });
}
