#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

// Start-up helpers that need nothing but Qt Core: version, resources, and the check for other
// running applications of the maker, which runs before any application object exists.
class AppHelper
{
public:
    // How long a running instance or sibling gets to answer, and a sibling to close.
    static constexpr int AnswerTimeoutMs = 3000;
    static constexpr int SiblingCloseTimeoutMs = 3000;

    AppHelper() = delete;

    static QString appVersion();
    // Searches the resource tree under `root` recursively for a file named `fileName` and
    // returns its qrc URL, the shortest path first when several match (then alphabetical).
    // Empty plus a console line when absent.
    static QUrl findInResources(const QString& fileName, const QString& root = QStringLiteral(":/"));
    // False when start-up must not go on: an instance of `ownName` of the same user runs and
    // was handed `arguments` with the request to show its window. Running siblings among
    // `appNames` are asked to close but never stop our start.
    static bool checkAndCloseIfAppsRunning(const QStringList& appNames, const QString& ownName,
                                           const QStringList& arguments);
    // Per user: the same name for every session of one user, a different one for other users.
    static QString instanceSocketName(const QString& appName);

private:
    static bool handOverToRunningInstance(const QString& ownName, const QStringList& arguments);
    static void closeSiblings(const QStringList& siblings, const QString& ownName);
    static void waitForSiblingsToClose(QStringList siblings);
};
