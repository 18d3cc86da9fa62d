#include "server/commands/OpenLink.h"

#include "server/DataServerContext.h"

#include <QUrl>

OpenLink::OpenLink(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

// Only web addresses leave the program: a client must not make the desktop open local files
// or run scripts.
bool OpenLink::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString pathName = QStringLiteral("path");
    const QString path = argumentCaseInsensitive(args, pathName, QString()).trimmed();
    if (path.isEmpty()) {
        setError(response, QStringLiteral("Provide 'path'"));
        return false;
    }
    const QUrl url(path, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (!url.isValid() || (scheme != QLatin1String("http") && scheme != QLatin1String("https"))
        || url.host().isEmpty()) {
        setError(response, QStringLiteral("Only http and https links can be opened, '") + path
                               + QStringLiteral("' refused"));
        return false;
    }
    if (!context() || !context()->openLink(url)) {
        setError(response, QStringLiteral("Could not open '") + path + QLatin1Char('\''));
        return false;
    }
    return true;
}

QString OpenLink::getDescription()
{
    return tr("Opens link");
}

QMap<QString, QString> OpenLink::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("path"), tr("The http or https address to open") } });
}
