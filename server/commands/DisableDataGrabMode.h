#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Switches the node's data-grab mode off.
class DisableDataGrabMode : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit DisableDataGrabMode(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
};
