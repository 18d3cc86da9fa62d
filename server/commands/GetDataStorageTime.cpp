#include "server/commands/GetDataStorageTime.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"

GetDataStorageTime::GetDataStorageTime(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

// SetDataStorageTime sets every node alike, so node 0 speaks for all.
bool GetDataStorageTime::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const CortexCore* node = context() ? context()->getNode(0) : nullptr;
    if (!node) {
        setError(response, QStringLiteral("This node index does not exist"));
        return false;
    }
    response.insert(QStringLiteral("storageTime"), node->getStorageTimeSeconds());
    return true;
}

QString GetDataStorageTime::getDescription()
{
    return tr("Current storage time (seconds) for data (including the data for 'DataGrabMode')");
}

QMap<QString, QString> GetDataStorageTime::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("storageTime"), tr("Amount of storage time in seconds") } });
}
