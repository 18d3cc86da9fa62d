#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Writes a line to the recording's log.
class AddLogItem : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit AddLogItem(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
