#pragma once

#include "server/DataServerCommand.h"

class KxSettings;
class MetaDescription;

// The text value of one setting, by key; "type"="virtualdevices" reads the virtual-device
// settings instead of the application settings.
class GetSettings : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GetSettings(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;

    // The settings object that "type" selects; nullptr when the application has none.
    static KxSettings* settingsFor(DataServerContext* context, QMap<QString, QString>& args);
    // The property named "key" in those settings, or nullptr with "error" set.
    static MetaDescription* findProperty(KxSettings* settings, const QString& key, QJsonObject& response);
};
