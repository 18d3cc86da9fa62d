#pragma once

#include "server/DataServerCommand.h"

// Sets any of the four filters of a node at once and keeps them in the settings.
class SetFilters : public DataServerCommand
{
    Q_OBJECT
public:
    explicit SetFilters(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
