#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The node's latest concentration level in percent.
class Concentration : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit Concentration(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
