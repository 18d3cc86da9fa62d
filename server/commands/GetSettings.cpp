#include "server/commands/GetSettings.h"

#include "server/DataServerContext.h"
#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

GetSettings::GetSettings(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

KxSettings* GetSettings::settingsFor(DataServerContext* context, QMap<QString, QString>& args)
{
    if (!context)
        return nullptr;
    QString typeKey = QStringLiteral("type");
    const QString type = argumentCaseInsensitive(args, typeKey, QString());
    if (type.compare(QLatin1String("virtualdevices"), Qt::CaseInsensitive) == 0)
        return context->getVirtualDevicesSettings();
    return context->getSettings();
}

MetaDescription* GetSettings::findProperty(KxSettings* settings, const QString& key, QJsonObject& response)
{
    MetaDescription* property = settings ? settings->getPropertyByName(key) : nullptr;
    if (!property)
        setError(response, QStringLiteral("Unknown setting '") + key + QLatin1Char('\''));
    return property;
}

bool GetSettings::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString keyName = QStringLiteral("key");
    const QString key = argumentCaseInsensitive(args, keyName, QString());
    if (key.isEmpty()) {
        setError(response, QStringLiteral("Provide 'key'"));
        return false;
    }
    MetaDescription* property = findProperty(settingsFor(context(), args), key, response);
    if (!property)
        return false;
    response.insert(QStringLiteral("value"), property->getValueText());
    return true;
}

QString GetSettings::getDescription()
{
    return tr("Returns settings for a key");
}

QMap<QString, QString> GetSettings::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("key"), tr("Key for the value") },
                        { QStringLiteral("type"), tr("[Optional] 'virtualdevices' for the virtual device settings") } });
}

QMap<QString, QString> GetSettings::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("value"), tr("Requested value") } });
}
