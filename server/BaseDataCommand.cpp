#include "server/BaseDataCommand.h"

#include "server/JsonChannelData.h"

BaseDataCommand::BaseDataCommand(DataServerContext* context, QObject* parent, HTWSCommandCategory* category)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent, category)
{
}

bool BaseDataCommand::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    response.insert(QStringLiteral("data"), JsonChannelData::truncatedChannels(getData(node, args)));
    return true;
}
