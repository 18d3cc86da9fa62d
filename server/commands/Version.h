#pragma once

#include "server/DataServerCommand.h"

// The application's version, its HTTP port and current language.
class Version : public DataServerCommand
{
    Q_OBJECT
public:
    explicit Version(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
