#pragma once

#include "server/DataServerCommand.h"

// Asks the application to quit.
class Close : public DataServerCommand
{
    Q_OBJECT
public:
    explicit Close(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
};
