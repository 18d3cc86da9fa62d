#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Pauses the recording; the paused time is left out of the files.
class PauseRecord : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit PauseRecord(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
};
