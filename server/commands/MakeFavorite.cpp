#include "server/commands/MakeFavorite.h"

#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"

MakeFavorite::MakeFavorite(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool MakeFavorite::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString key = QStringLiteral("value");
    const QString name = argumentCaseInsensitive(args, key, QString()).trimmed();
    if (name.size() < 4) {
        setError(response, QStringLiteral("Please provide a string of minimum 4 letters long"));
        return false;
    }
    OrvexSettings* settings = context() ? context()->getSettings() : nullptr;
    if (!settings) {
        setError(response, QStringLiteral("Settings are not available"));
        return false;
    }
    settings->setFavouriteDevice(name);
    return true;
}

QString MakeFavorite::getDescription()
{
    return tr("Makes selected device favorite");
}

QMap<QString, QString> MakeFavorite::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("value"), tr("name of the device you want to make favorite") } });
}
