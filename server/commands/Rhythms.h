#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The latest rhythm shares of every channel.
class Rhythms : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit Rhythms(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
