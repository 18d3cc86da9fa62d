#pragma once

#include "server/BaseFoundDeviceCommand.h"

// Starts one of the found devices, chosen by serial number or list position, optionally with
// a given channel count.
class StartDevice : public BaseFoundDeviceCommand
{
    Q_OBJECT
public:
    explicit StartDevice(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
