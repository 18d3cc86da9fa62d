#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Stops the node's device search.
class StopSearch : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit StopSearch(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
};
