#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Stops the recording and sends every file it produced, base64-encoded.
class StopRecord : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit StopRecord(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QMap<QString, QString> getReturnsDescriptions() override;
};
