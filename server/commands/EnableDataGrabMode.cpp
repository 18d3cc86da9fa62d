#include "server/commands/EnableDataGrabMode.h"

#include "core/CortexCore.h"

EnableDataGrabMode::EnableDataGrabMode(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool EnableDataGrabMode::processCommand(CortexCore* node, Referrer, QJsonObject&, QMap<QString, QString>&)
{
    node->enableDataGrabMode(true);
    return true;
}

QString EnableDataGrabMode::getDescription()
{
    return tr("Enables grab mode");
}
