#pragma once

#include "server/BaseSetFilterCommand.h"

// Sets the node's HPF cut-off and keeps it in the settings.
class SetHPF : public BaseSetFilterCommand
{
    Q_OBJECT
public:
    explicit SetHPF(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;

protected:
    void setFilterValue(float& hpf, float& lpf, float& bsf, float& bsf2, float value) override;
    QString settingsKey() const override;
};
