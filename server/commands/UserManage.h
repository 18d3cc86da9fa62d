#pragma once

#include "server/DataServerCommand.h"

class UserAccountStore;

// The local user accounts: "action" is one of login, logout, register, autologin, list,
// current, remove, clear, allow and ping.
class UserManage : public DataServerCommand
{
    Q_OBJECT
public:
    explicit UserManage(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;

private:
    bool registerUser(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args);
    bool login(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args);
    bool allow(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args);
    bool remove(UserAccountStore* store, QJsonObject& response, QMap<QString, QString>& args);
    static void addCurrentUser(const UserAccountStore* store, QJsonObject& response);
    static void addUsers(const UserAccountStore* store, QJsonObject& response);
    static QString argument(QMap<QString, QString>& args, const char* name);
};
