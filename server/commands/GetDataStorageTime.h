#pragma once

#include "server/DataServerCommand.h"

// How many seconds of data the nodes keep (those of node 0).
class GetDataStorageTime : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GetDataStorageTime(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
