#include "server/commands/GetDeviceInfo.h"

#include "core/CortexCore.h"

GetDeviceInfo::GetDeviceInfo(DataServerContext* context, QObject* parent)
    : BaseFoundDeviceCommand(0, context, parent)
{
}

bool GetDeviceInfo::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    DeviceInfo chosen;
    if (!chooseDevice(node, args, response, QStringLiteral("Index must be greater than zero"), chosen))
        return false;
    // The started device's own description is the fresher one (battery, channel count).
    const DeviceInfo current = node->getCurrentDevice();
    if (node->isDeviceStarted() && current.name == chosen.name)
        chosen = current;
    response.insert(QStringLiteral("info"), chosen.toJson());
    return true;
}

QString GetDeviceInfo::getDescription()
{
    return tr("Get device information about a single device");
}

QMap<QString, QString> GetDeviceInfo::getArgumentDescriptions()
{
    return selectionArgumentDescriptions();
}

QMap<QString, QString> GetDeviceInfo::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("info"), tr("device information") } });
}
