#pragma once

#include "server/DataServerCommand.h"

// The capability objects of the application and virtual-device settings.
class GetAllSettings : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GetAllSettings(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
