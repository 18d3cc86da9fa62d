#pragma once

#include "server/BaseCortexCoreNodeCommand.h"
#include "server/TimestampedValue.h"

// Sends a timestamped history under "history" as [{"t", "v"}, ...]; needs a started device
// and data-grab mode.
class BaseHistoryCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit BaseHistoryCommand(DataServerContext* context, QObject* parent = nullptr,
                                HTWSCommandCategory* category = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;

protected:
    virtual QList<TimestampedValue> getHistory(CortexCore* node, QMap<QString, QString>& args) = 0;
};
