#include "app/AppHelper.h"

#include "app/InstanceClient.h"
#include "app/InstanceRequest.h"
#include "services/GlobalConsole.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDirIterator>
#include <QThread>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

#ifndef ORVEX_VERSION
#define ORVEX_VERSION "0.0.0"
#endif

QString AppHelper::appVersion()
{
    const QString version = QCoreApplication::applicationVersion();
    return version.isEmpty() ? QStringLiteral(ORVEX_VERSION) : version;
}

QUrl AppHelper::findInResources(const QString& fileName, const QString& root)
{
    if (!root.startsWith(QLatin1Char(':'))) {
        GlobalConsole::writeLine(QStringLiteral("Resource search: %1 is not a resource folder").arg(root));
        return QUrl();
    }
    QStringList matches;
    if (!fileName.isEmpty()) {
        QDirIterator it(root, { fileName }, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            if (it.fileName() == fileName)
                matches.append(path);
        }
    }
    if (matches.isEmpty()) {
        GlobalConsole::writeLine(QStringLiteral("Resource \"%1\" not found under %2").arg(fileName, root));
        return QUrl();
    }
    std::sort(matches.begin(), matches.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return QUrl(QStringLiteral("qrc") + matches.first());
}

QString AppHelper::instanceSocketName(const QString& appName)
{
    QString name = appName;
    for (QChar& c : name) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('.') && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
#ifdef Q_OS_UNIX
    const QString user = QString::number(::getuid());
#else
    const QString user = qEnvironmentVariable("USERNAME");
#endif
    return name + QLatin1Char('-') + user;
}

bool AppHelper::checkAndCloseIfAppsRunning(const QStringList& appNames, const QString& ownName,
                                           const QStringList& arguments)
{
    if (handOverToRunningInstance(ownName, arguments))
        return false;
    QStringList siblings = appNames;
    siblings.removeAll(ownName);
    siblings.removeAll(QString());
    siblings.removeDuplicates();
    closeSiblings(siblings, ownName);
    return true;
}

bool AppHelper::handOverToRunningInstance(const QString& ownName, const QStringList& arguments)
{
    const InstanceClient::Answer answer =
        InstanceClient::send(ownName, InstanceRequest::activate(arguments, ownName), AnswerTimeoutMs);
    if (!answer.reached)
        return false;
    // A busy instance still owns the channel: starting a second one would not be safer.
    GlobalConsole::writeLine(answer.ok
        ? QStringLiteral("%1 is already running: handed the command line over to it.").arg(ownName)
        : QStringLiteral("%1 is already running but did not take the command line (%2); not starting "
                         "a second instance.").arg(ownName, answer.error));
    return true;
}

void AppHelper::closeSiblings(const QStringList& siblings, const QString& ownName)
{
    QStringList asked;
    for (const QString& sibling : siblings) {
        const InstanceClient::Answer answer =
            InstanceClient::send(sibling, InstanceRequest::close(ownName), AnswerTimeoutMs);
        if (answer.ok)
            asked.append(sibling);
        else if (answer.reached)
            GlobalConsole::writeLine(QStringLiteral("%1 is running and did not accept to close (%2); going on.")
                                         .arg(sibling, answer.error));
    }
    waitForSiblingsToClose(asked);
}

void AppHelper::waitForSiblingsToClose(QStringList siblings)
{
    const QDeadlineTimer deadline(SiblingCloseTimeoutMs);
    while (!siblings.isEmpty()) {
        for (const QString& sibling : QStringList(siblings)) {
            if (!InstanceClient::isRunning(sibling)) {
                siblings.removeOne(sibling);
                GlobalConsole::writeLine(QStringLiteral("%1 was running and has closed.").arg(sibling));
            }
        }
        if (deadline.hasExpired())
            break;
        QThread::msleep(100);
    }
    for (const QString& sibling : siblings)
        GlobalConsole::writeLine(QStringLiteral("%1 was asked to close but still runs; going on.").arg(sibling));
}
