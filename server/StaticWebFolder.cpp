#include "server/StaticWebFolder.h"

#include "services/GlobalConsole.h"

#include <JlCompress.h>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

bool StaticWebFolder::prepare(const QString& folder, const QString& indexHtml)
{
    if (!QDir().mkpath(folder)) {
        GlobalConsole::writeLine(QStringLiteral("Cannot create the web folder ") + folder);
        return false;
    }
    QFile archive(QStringLiteral(":/web/apiweb.zip"));
    if (!archive.open(QIODevice::ReadOnly)) {
        GlobalConsole::writeLine(QStringLiteral("The web archive is missing from the program"));
        return false;
    }
    if (JlCompress::extractDir(&archive, folder).isEmpty()) {
        GlobalConsole::writeLine(QStringLiteral("Cannot unpack the web archive into ") + folder);
        return false;
    }
    QSaveFile index(QDir(folder).filePath(QStringLiteral("index.html")));
    if (!index.open(QIODevice::WriteOnly) || index.write(indexHtml.toUtf8()) < 0 || !index.commit()) {
        GlobalConsole::writeLine(QStringLiteral("Cannot write ") + index.fileName());
        return false;
    }
    return true;
}

QString StaticWebFolder::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/web/");
}
