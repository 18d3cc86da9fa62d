#include "server/commands/UserManage.h"

#include "server/DataServerContext.h"
#include "server/UserAccountStore.h"

#include <QJsonArray>

UserManage::UserManage(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

QString UserManage::argument(QMap<QString, QString>& args, const char* name)
{
    QString key = QString::fromLatin1(name);
    return argumentCaseInsensitive(args, key, QString());
}

void UserManage::addCurrentUser(const UserAccountStore* store, QJsonObject& response)
{
    response.insert(QStringLiteral("currentUser"),
                    store->hasCurrentUser() ? QJsonValue(store->getCurrentUser().toPublicJson()) : QJsonValue());
}

void UserManage::addUsers(const UserAccountStore* store, QJsonObject& response)
{
    QJsonArray users;
    for (const UserAccount& account : store->getUsers())
        users.append(account.toPublicJson());
    response.insert(QStringLiteral("users"), users);
}

bool UserManage::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    UserAccountStore* store = context() ? context()->getUserAccounts() : nullptr;
    if (!store) {
        setError(response, QStringLiteral("User accounts are not available"));
        return false;
    }
    const QString action = argument(args, "action").trimmed().toLower();
    if (action == QLatin1String("ping")) {
        response.insert(QStringLiteral("response"), QStringLiteral("pong"));
        return true;
    }
    if (action == QLatin1String("register"))
        return registerUser(store, response, args);
    if (action == QLatin1String("login"))
        return login(store, response, args);
    if (action == QLatin1String("allow"))
        return allow(store, response, args);
    if (action == QLatin1String("remove"))
        return remove(store, response, args);
    if (action == QLatin1String("logout")) {
        store->logout();
        response.insert(QStringLiteral("response"), QStringLiteral("Logged out"));
        addCurrentUser(store, response);
        return true;
    }
    if (action == QLatin1String("autologin")) {
        QString error;
        const bool ok = store->autoLogin(error);
        if (!ok)
            setError(response, error);
        addCurrentUser(store, response);
        return ok;
    }
    if (action == QLatin1String("list")) {
        addUsers(store, response);
        return true;
    }
    if (action == QLatin1String("current")) {
        addCurrentUser(store, response);
        return true;
    }
    if (action == QLatin1String("clear")) {
        store->clear();
        response.insert(QStringLiteral("response"), QStringLiteral("All users removed"));
        addUsers(store, response);
        return true;
    }
    setError(response, action.isEmpty() ? QStringLiteral("Provide 'action'")
                                        : QStringLiteral("Unknown action '") + action + QLatin1Char('\''));
    return false;
}

bool UserManage::registerUser(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args)
{
    UserAccount details;
    details.name = argument(args, "name");
    details.email = argument(args, "email");
    details.nick = argument(args, "nick");
    QString error;
    QString code;
    if (!store->registerUser(details, argument(args, "password"), error, code)) {
        setError(response, error);
        if (!code.isEmpty())
            response.insert(QStringLiteral("code"), code);
        return false;
    }
    response.insert(QStringLiteral("response"), QStringLiteral("Registered"));
    addCurrentUser(store, response);
    return true;
}

bool UserManage::login(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args)
{
    QString nameOrEmail = argument(args, "name");
    if (nameOrEmail.isEmpty())
        nameOrEmail = argument(args, "email");
    QString error;
    QString code;
    if (!store->login(nameOrEmail, argument(args, "password"), error, code)) {
        setError(response, error);
        if (!code.isEmpty())
            response.insert(QStringLiteral("code"), code);
        return false;
    }
    response.insert(QStringLiteral("response"), QStringLiteral("Logged in"));
    addCurrentUser(store, response);
    return true;
}

// "value" true (the default) lets the current account log in by itself at the next start.
bool UserManage::allow(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args)
{
    const QString value = argument(args, "value").trimmed().toLower();
    const bool allowed = value.isEmpty() || value == QLatin1String("true") || value == QLatin1String("1");
    QString error;
    if (!store->setAutoLoginAllowed(allowed, error)) {
        setError(response, error);
        return false;
    }
    response.insert(QStringLiteral("value"), allowed);
    return true;
}

bool UserManage::remove(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args)
{
    QString who = argument(args, "guid");
    if (who.isEmpty())
        who = argument(args, "name");
    if (who.isEmpty()) {
        setError(response, QStringLiteral("Provide 'guid' or 'name'"));
        return false;
    }
    QString error;
    if (!store->removeUser(who, error)) {
        setError(response, error);
        return false;
    }
    response.insert(QStringLiteral("response"), QStringLiteral("Removed"));
    addUsers(store, response);
    return true;
}

QMap<QString, QString> UserManage::getArgumentDescriptions()
{
    return createArgs(
        { { QStringLiteral("action"),
            tr("'login', 'logout', 'register', 'autologin', 'list', 'current', 'remove', 'clear', 'allow' or 'ping'") },
          { QStringLiteral("name"), tr("User name (login, register, remove)") },
          { QStringLiteral("email"), tr("E-mail (login instead of name, register)") },
          { QStringLiteral("password"), tr("Password (login, register)") },
          { QStringLiteral("nick"), tr("[Optional] Nick name (register)") },
          { QStringLiteral("guid"), tr("User id (remove)") },
          { QStringLiteral("value"), tr("[Optional] 'true' or 'false' (allow)") } });
}

QMap<QString, QString> UserManage::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("users"), tr("Array of users {\"name\", \"email\", \"nick\", \"guid\"}") },
                        { QStringLiteral("currentUser"), tr("The logged-in user or null") },
                        { QStringLiteral("response"), tr("Outcome of the action ('pong' for 'ping')") },
                        { QStringLiteral("value"), tr("Whether automatic login is allowed (allow)") },
                        { QStringLiteral("code"), tr("'ERROR_TOO_FAST' when an attempt came too soon") } });
}
