#pragma once

#include "server/DataServerCommand.h"

// Hands an http or https address to the desktop; every other kind of link is refused.
class OpenLink : public DataServerCommand
{
    Q_OBJECT
public:
    explicit OpenLink(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
