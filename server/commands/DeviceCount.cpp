#include "server/commands/DeviceCount.h"

#include "core/CortexCore.h"

DeviceCount::DeviceCount(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool DeviceCount::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    response.insert(QStringLiteral("deviceCount"), node->getDeviceCount());
    return true;
}

QString DeviceCount::getDescription()
{
    return tr("Returns the amount of found devices during search");
}

QMap<QString, QString> DeviceCount::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("deviceCount"), tr("number of devices") } });
}
