#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The state of one node: search, device, channels, signal quality, filters and recording.
class CurrentDeviceInfo : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit CurrentDeviceInfo(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

    // The reply keys for one node; CurrentDevicesInfo sends one such object per node.
    static QJsonObject describe(CortexCore* node);
    // The started device as toJson() gives it plus what a client needs to read its data:
    // "currentChannelCount", "channelNames" (the device's own channels) and "frequency";
    // null while no device is started.
    static QJsonValue deviceJson(CortexCore* node);
};
