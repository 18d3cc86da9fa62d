#pragma once

#include "server/UserAccount.h"
#include "services/TimeSource.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

// The local user accounts behind the UserManage command, kept in one JSON file in the settings
// folder. Logins and registrations that follow the previous one within a second are refused,
// which slows down password guessing.
//
// A remote account service can be named by address; it is empty (off) by default, and while
// it is empty the store works on its file only and never touches the network.
class UserAccountStore : public QObject
{
    Q_OBJECT
public:
    static constexpr int HashIterations = 100000;
    static constexpr int SaltBytes = 16;
    static constexpr int KeyBytes = 32;
    static constexpr qint64 MinimumIntervalMs = 1000;
    static constexpr int MinimumPasswordLength = 6;

    static const QString TooFastLogin;
    static const QString TooFastRegistration;
    static const QString TooFastCode;

    // An empty path means defaultFilePath(). The file is read at once.
    explicit UserAccountStore(const QString& filePath = QString(), QObject* parent = nullptr);

    // "<settings folder>/UserAccounts.json".
    static QString defaultFilePath();
    QString getFilePath() const { return m_filePath; }
    // Where "now" comes from for the throttling; tests pass a fake clock.
    void setTimeSource(TimeSource source) { m_now = std::move(source); }

    QString getRemoteEndpoint() const { return m_remoteEndpoint; }
    void setRemoteEndpoint(const QString& address) { m_remoteEndpoint = address; }

    // Creates the account (name and a password of MinimumPasswordLength characters or more
    // required; name and email unique, ignoring case) and logs it in.
    bool registerUser(UserAccount details, const QString& password, QString& error, QString& code);
    // By name or email. `code` is set for refusals a client may retry.
    bool login(const QString& nameOrEmail, const QString& password, QString& error, QString& code);
    void logout();
    // Logs in the account of the previous session when that account allowed it.
    bool autoLogin(QString& error);
    bool setAutoLoginAllowed(bool allowed, QString& error);
    // By guid or name; removing the current account logs it out.
    bool removeUser(const QString& guidOrName, QString& error);
    void clear();

    QList<UserAccount> getUsers() const { return m_accounts; }
    bool hasCurrentUser() const { return m_current >= 0; }
    UserAccount getCurrentUser() const { return hasCurrentUser() ? m_accounts[m_current] : UserAccount(); }

    // A missing file is an empty store; a damaged one is reported, kept aside as ".bad" and
    // replaced by an empty store (false).
    bool load();
    bool save() const;

    static QByteArray deriveKey(const QString& password, const QByteArray& salt, int iterations);
    static bool checkPassword(const UserAccount& account, const QString& password);

Q_SIGNALS:
    void currentUserChanged();

private:
    int indexOf(const QString& nameOrEmail) const;
    int indexOfGuid(const QString& guid) const;
    // False when the previous attempt of this kind was less than MinimumIntervalMs ago;
    // otherwise the attempt is counted.
    bool acceptAttempt(std::optional<qint64>& previousMs);
    void setCurrent(int index);

    QString m_filePath;
    TimeSource m_now = systemTimeMs;
    QString m_remoteEndpoint;
    QList<UserAccount> m_accounts;
    int m_current = -1;
    QString m_lastUserGuid;
    std::optional<qint64> m_lastLoginMs;
    std::optional<qint64> m_lastRegistrationMs;
};
