#include "server/BaseHistoryCommand.h"

#include <QJsonArray>

BaseHistoryCommand::BaseHistoryCommand(DataServerContext* context, QObject* parent, HTWSCommandCategory* category)
    : BaseCortexCoreNodeCommand(RequiresDevice | RequiresGrabMode, context, parent, category)
{
}

bool BaseHistoryCommand::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                        QMap<QString, QString>& args)
{
    QJsonArray history;
    for (const TimestampedValue& reading : getHistory(node, args)) {
        QJsonObject item;
        item.insert(QStringLiteral("t"), reading.timestamp);
        item.insert(QStringLiteral("v"), reading.value);
        history.append(item);
    }
    response.insert(QStringLiteral("history"), history);
    return true;
}
