#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// The frequency of every bin of the node's current spectrum. Not offered by the server.
class SpectrumFrequencies : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit SpectrumFrequencies(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
