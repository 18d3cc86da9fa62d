#pragma once

#include "server/DataServerCommand.h"

// The state of every engine node, as CurrentDeviceInfo gives it, each with its "node" index.
class CurrentDevicesInfo : public DataServerCommand
{
    Q_OBJECT
public:
    explicit CurrentDevicesInfo(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
