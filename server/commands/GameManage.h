#pragma once

#include "server/DataServerCommand.h"

// Lists the feedback screens or switches to one of them.
class GameManage : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GameManage(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
