#include "server/commands/DisableDataGrabMode.h"

#include "core/CortexCore.h"

DisableDataGrabMode::DisableDataGrabMode(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool DisableDataGrabMode::processCommand(CortexCore* node, Referrer, QJsonObject&, QMap<QString, QString>&)
{
    node->enableDataGrabMode(false);
    return true;
}

QString DisableDataGrabMode::getDescription()
{
    return tr("Disables grab mode");
}
