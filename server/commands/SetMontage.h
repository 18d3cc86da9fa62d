#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Renames the montage channels of the started device, in order.
class SetMontage : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit SetMontage(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QMap<QString, QString> getArgumentDescriptions() override;
};
