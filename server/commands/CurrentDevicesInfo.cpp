#include "server/commands/CurrentDevicesInfo.h"

#include "server/DataServerContext.h"
#include "server/commands/CurrentDeviceInfo.h"

#include <QJsonArray>

CurrentDevicesInfo::CurrentDevicesInfo(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool CurrentDevicesInfo::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    QJsonArray devices;
    const int count = context() ? context()->getNodeCount() : 0;
    for (int i = 0; i < count; ++i) {
        CortexCore* node = context()->getNode(i);
        if (!node)
            continue;
        QJsonObject state = CurrentDeviceInfo::describe(node);
        state.insert(QStringLiteral("node"), i);
        devices.append(state);
    }
    response.insert(QStringLiteral("devices"), devices);
    return true;
}

QString CurrentDevicesInfo::getDescription()
{
    return tr("Information about all current devices, e.g. current sampling rate (frequency), channel names and "
              "signal quality");
}

QMap<QString, QString> CurrentDevicesInfo::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("devices"),
                          tr("Array of current device information for all nodes, each with its 'node' index") } });
}
