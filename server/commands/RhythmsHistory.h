#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The rhythm shares of every channel accumulated since the previous call (grab mode).
class RhythmsHistory : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit RhythmsHistory(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
