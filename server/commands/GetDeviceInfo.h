#pragma once

#include "server/BaseFoundDeviceCommand.h"

// Describes one found device, chosen as StartDevice chooses it.
class GetDeviceInfo : public BaseFoundDeviceCommand
{
    Q_OBJECT
public:
    explicit GetDeviceInfo(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
