#include "server/commands/SetSettings.h"

#include "server/commands/GetSettings.h"
#include "settings/KxSettings.h"
#include "settings/MetaDescription.h"

SetSettings::SetSettings(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool SetSettings::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString valueName = QStringLiteral("value");
    return setValue(response, args, argumentCaseInsensitive(args, valueName, QString()));
}

bool SetSettings::processCommandWithBody(Referrer, QJsonObject& response, QMap<QString, QString>& args,
                                         QByteArray& body)
{
    return setValue(response, args, QString::fromUtf8(body));
}

bool SetSettings::setValue(QJsonObject& response, QMap<QString, QString>& args, const QString& value)
{
    QString keyName = QStringLiteral("key");
    const QString key = argumentCaseInsensitive(args, keyName, QString());
    if (key.isEmpty() || value.isNull()) {
        setError(response, QStringLiteral("Provide 'key' and 'value'"));
        return false;
    }
    KxSettings* settings = GetSettings::settingsFor(context(), args);
    MetaDescription* property = GetSettings::findProperty(settings, key, response);
    if (!property)
        return false;
    if (property->isReadOnly()) {
        setError(response, QStringLiteral("Setting '") + property->getName() + QStringLiteral("' is read-only"));
        return false;
    }
    // The store checks the text against the property's metadata and reports a refusal on the
    // console; the reply carries the reason.
    if (!settings->setTextValue(property->getName(), value)) {
        QString reason;
        property->validateText(value, nullptr, &reason);
        if (reason.isEmpty())
            reason = QStringLiteral("the setting could not be changed");
        setError(response, QStringLiteral("Value '") + value + QStringLiteral("' refused for '") + property->getName()
                               + QStringLiteral("': ") + reason);
        return false;
    }
    return true;
}

QString SetSettings::getDescription()
{
    return tr("Sets the setting value by key");
}

QMap<QString, QString> SetSettings::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("key"), tr("Key for the value") },
                        { QStringLiteral("value"), tr("New value") },
                        { QStringLiteral("type"), tr("[Optional] 'virtualdevices' for the virtual device settings") } });
}
