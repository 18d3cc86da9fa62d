#pragma once

#include "server/DataServerCommand.h"

// Sets one setting from its text form, checked against the property's metadata; "type"=
// "virtualdevices" selects the virtual-device settings. A request body is the value.
class SetSettings : public DataServerCommand
{
    Q_OBJECT
public:
    explicit SetSettings(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    bool processCommandWithBody(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args,
                                QByteArray& body) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;

private:
    bool setValue(QJsonObject& response, QMap<QString, QString>& args, const QString& value);
};
