#include "server/commands/Version.h"

#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"

#include <QLocale>

Version::Version(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

// The command does not see the server; the settings name the port it listens on.
bool Version::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const OrvexSettings* settings = context() ? context()->getSettings() : nullptr;
    response.insert(QStringLiteral("version"), QStringLiteral(ORVEX_VERSION));
    response.insert(QStringLiteral("port"), settings ? settings->getAPIPort() : 0);
    response.insert(QStringLiteral("locale"), QLocale().name());
    return true;
}

QString Version::getDescription()
{
    return tr("Returns version of OrvexPro software");
}

QMap<QString, QString> Version::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("version"), tr("Application version") },
                        { QStringLiteral("port"), tr("HTTP port of the API") },
                        { QStringLiteral("locale"), tr("Current language") } });
}
