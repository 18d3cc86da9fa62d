#include "server/commands/StartSearch.h"

#include "core/CortexCore.h"

StartSearch::StartSearch(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool StartSearch::processCommand(CortexCore* node, Referrer, QJsonObject&, QMap<QString, QString>&)
{
    return node->startDeviceSearch();
}

QString StartSearch::getDescription()
{
    return tr("starts device searching procedure");
}
