#pragma once

#include "server/DataServerCommand.h"

// Names the control values that BCI and BCIs deliver and whether each is proportional or discrete.
class ControlOptions : public DataServerCommand
{
    Q_OBJECT
public:
    explicit ControlOptions(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
