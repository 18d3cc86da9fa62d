#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Starts the node's device search; virtual devices are listed at once, headsets as they are found.
class StartSearch : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit StartSearch(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
};
