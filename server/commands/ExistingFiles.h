#pragma once

#include "server/DataServerCommand.h"

// Every file in the records folder, with its size and time. Not offered by the server.
class ExistingFiles : public DataServerCommand
{
    Q_OBJECT
public:
    explicit ExistingFiles(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
