#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Sets one of the node's filters from "value" (0 = off, up to 100 Hz) and stores it in the
// application settings under the filter's key.
class BaseSetFilterCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit BaseSetFilterCommand(DataServerContext* context, QObject* parent = nullptr,
                                  HTWSCommandCategory* category = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QMap<QString, QString> getArgumentDescriptions() override;

protected:
    // Replaces the one value this command owns.
    virtual void setFilterValue(float& hpf, float& lpf, float& bsf, float& bsf2, float value) = 0;
    // The settings property that keeps the value: "HPF", "LPF" or "BSF".
    virtual QString settingsKey() const = 0;
};
