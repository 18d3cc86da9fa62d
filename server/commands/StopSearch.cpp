#include "server/commands/StopSearch.h"

#include "core/CortexCore.h"

StopSearch::StopSearch(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool StopSearch::processCommand(CortexCore* node, Referrer, QJsonObject&, QMap<QString, QString>&)
{
    node->stopDeviceSearch();
    return true;
}

QString StopSearch::getDescription()
{
    return tr("Stops device searching procedure");
}
