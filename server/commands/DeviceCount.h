#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// How many devices the node's last search found.
class DeviceCount : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit DeviceCount(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
