#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The devices the node's last search found, in the order found.
class ListDevices : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit ListDevices(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
