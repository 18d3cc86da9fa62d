#include "server/commands/Version.h"

#include "server/DataServerContext.h"

#include <QLocale>

Version::Version(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool Version::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    response.insert(QStringLiteral("version"), QStringLiteral(ORVEX_VERSION));
    // The port in use (--api-port may differ from the setting).
    response.insert(QStringLiteral("port"), context() ? context()->getApiPort() : 0);
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
