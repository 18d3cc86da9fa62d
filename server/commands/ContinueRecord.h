#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Continues a paused recording; the pause is marked by an annotation.
class ContinueRecord : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit ContinueRecord(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
};
