#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Sends one engine getter's channel-wise samples under "data"; needs a started device.
class BaseDataCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit BaseDataCommand(DataServerContext* context, QObject* parent = nullptr,
                             HTWSCommandCategory* category = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;

protected:
    virtual QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) = 0;
};
