#pragma once

#include "server/DataServerCommand.h"

// Geometry and density of every screen of the application.
class ScreenInfo : public DataServerCommand
{
    Q_OBJECT
public:
    explicit ScreenInfo(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
