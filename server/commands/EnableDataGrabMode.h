#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Switches the node's data-grab mode on: grabs then hand out what accumulated since the previous grab.
class EnableDataGrabMode : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit EnableDataGrabMode(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
};
