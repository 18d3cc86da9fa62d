#include "server/BaseGrabDataCommand.h"

#include "server/JsonChannelData.h"

BaseGrabDataCommand::BaseGrabDataCommand(DataServerContext* context, QObject* parent,
                                         HTWSCommandCategory* category)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent, category)
{
}

bool BaseGrabDataCommand::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                         QMap<QString, QString>& args)
{
    if (m_checkGrabMode && !checkGrabMode(node, response))
        return false;
    response.insert(QStringLiteral("data"), JsonChannelData::truncatedChannels(getData(node, args)));
    return true;
}
