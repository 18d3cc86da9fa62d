#pragma once

#include "server/DataServerCommand.h"

// The control values of every node, each tagged with its "node" index.
class BCIs : public DataServerCommand
{
    Q_OBJECT
public:
    explicit BCIs(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;
};
