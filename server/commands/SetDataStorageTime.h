#pragma once

#include "server/DataServerCommand.h"

// Sets how many seconds of data every node keeps.
class SetDataStorageTime : public DataServerCommand
{
    Q_OBJECT
public:
    explicit SetDataStorageTime(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
