#pragma once

#include "server/DataServerCommand.h"

// Remembers a device name as the favourite, the one connected first when found.
class MakeFavorite : public DataServerCommand
{
    Q_OBJECT
public:
    explicit MakeFavorite(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
