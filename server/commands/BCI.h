#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Every control value of the node: the indices, the mental state and the visible custom algorithms.
class BCI : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit BCI(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
