#include "server/commands/ListDevices.h"

#include "core/CortexCore.h"

#include <QJsonArray>

ListDevices::ListDevices(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool ListDevices::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    QJsonArray devices;
    for (const DeviceInfo& info : node->getFoundDevices())
        devices.append(info.toJson());
    response.insert(QStringLiteral("devices"), devices);
    return true;
}

QString ListDevices::getDescription()
{
    return tr("Get a list of available devices.");
}

QMap<QString, QString> ListDevices::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("devices"), tr("list of available devices") } });
}
