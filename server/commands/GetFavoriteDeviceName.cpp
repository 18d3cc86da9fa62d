#include "server/commands/GetFavoriteDeviceName.h"

#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"

GetFavoriteDeviceName::GetFavoriteDeviceName(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool GetFavoriteDeviceName::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    OrvexSettings* settings = context() ? context()->getSettings() : nullptr;
    if (!settings) {
        setError(response, QStringLiteral("Settings are not available"));
        return false;
    }
    response.insert(QStringLiteral("device"), settings->getFavouriteDevice());
    return true;
}

QString GetFavoriteDeviceName::getDescription()
{
    return tr("Returns favorite device name");
}

QMap<QString, QString> GetFavoriteDeviceName::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("device"), tr("favorite device name") } });
}
