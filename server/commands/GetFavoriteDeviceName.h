#pragma once

#include "server/DataServerCommand.h"

// The remembered favourite device name.
class GetFavoriteDeviceName : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GetFavoriteDeviceName(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
