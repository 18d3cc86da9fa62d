#include "server/UserAccountStore.h"

#include "services/GlobalConsole.h"
#include "settings/KxSettings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPasswordDigestor>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QUuid>

const QString UserAccountStore::TooFastLogin = QStringLiteral("Too fast login");
const QString UserAccountStore::TooFastRegistration = QStringLiteral("Too fast reg");
const QString UserAccountStore::TooFastCode = QStringLiteral("ERROR_TOO_FAST");

namespace {
const QString FileFormat = QStringLiteral("OrvexPro user accounts");

QByteArray randomSalt()
{
    QByteArray salt(UserAccountStore::SaltBytes, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32*>(salt.data()),
                                          UserAccountStore::SaltBytes / int(sizeof(quint32)));
    return salt;
}

// Compares every byte whatever the first difference, so timing says nothing about the hash.
bool sameBytes(const QByteArray& a, const QByteArray& b)
{
    if (a.size() != b.size())
        return false;
    unsigned char difference = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}
}

UserAccountStore::UserAccountStore(const QString& filePath, QObject* parent)
    : QObject(parent)
    , m_filePath(filePath.isEmpty() ? defaultFilePath() : filePath)
{
    load();
}

QString UserAccountStore::defaultFilePath()
{
    return QDir(KxSettings::storageFolder()).filePath(QStringLiteral("UserAccounts.json"));
}

QByteArray UserAccountStore::deriveKey(const QString& password, const QByteArray& salt, int iterations)
{
    return QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha256, password.toUtf8(), salt, iterations,
                                              KeyBytes);
}

bool UserAccountStore::checkPassword(const UserAccount& account, const QString& password)
{
    if (account.iterations <= 0 || account.salt.isEmpty() || account.hash.isEmpty())
        return false;
    return sameBytes(deriveKey(password, account.salt, account.iterations), account.hash);
}

bool UserAccountStore::acceptAttempt(std::optional<qint64>& previousMs)
{
    const qint64 now = m_now();
    if (previousMs && now - *previousMs < MinimumIntervalMs)
        return false;
    previousMs = now;
    return true;
}

int UserAccountStore::indexOf(const QString& nameOrEmail) const
{
    if (nameOrEmail.isEmpty())
        return -1;
    for (int i = 0; i < m_accounts.size(); ++i) {
        const UserAccount& account = m_accounts[i];
        if (account.name.compare(nameOrEmail, Qt::CaseInsensitive) == 0
            || (!account.email.isEmpty() && account.email.compare(nameOrEmail, Qt::CaseInsensitive) == 0))
            return i;
    }
    return -1;
}

int UserAccountStore::indexOfGuid(const QString& guid) const
{
    for (int i = 0; i < m_accounts.size(); ++i) {
        if (!guid.isEmpty() && m_accounts[i].guid == guid)
            return i;
    }
    return -1;
}

void UserAccountStore::setCurrent(int index)
{
    if (index == m_current)
        return;
    m_current = index;
    Q_EMIT currentUserChanged();
}

bool UserAccountStore::registerUser(UserAccount details, const QString& password, QString& error, QString& code)
{
    details.name = details.name.trimmed();
    details.email = details.email.trimmed();
    if (details.name.isEmpty() || password.isEmpty()) {
        error = QStringLiteral("Provide 'name' and 'password'");
        return false;
    }
    if (!acceptAttempt(m_lastRegistrationMs)) {
        error = TooFastRegistration;
        code = TooFastCode;
        return false;
    }
    if (password.size() < MinimumPasswordLength) {
        error = QStringLiteral("The password must hold at least %1 characters").arg(MinimumPasswordLength);
        return false;
    }
    if (indexOf(details.name) >= 0 || indexOf(details.email) >= 0) {
        error = QStringLiteral("A user with this name or email already exists");
        return false;
    }
    details.guid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    details.salt = randomSalt();
    details.iterations = HashIterations;
    details.hash = deriveKey(password, details.salt, details.iterations);
    details.autoLoginAllowed = false;
    m_accounts.append(details);
    m_lastUserGuid = details.guid;
    setCurrent(int(m_accounts.size()) - 1);
    save();
    return true;
}

bool UserAccountStore::login(const QString& nameOrEmail, const QString& password, QString& error, QString& code)
{
    if (nameOrEmail.isEmpty() || password.isEmpty()) {
        error = QStringLiteral("Provide 'name' (or 'email') and 'password'");
        return false;
    }
    if (!acceptAttempt(m_lastLoginMs)) {
        error = TooFastLogin;
        code = TooFastCode;
        return false;
    }
    const int index = indexOf(nameOrEmail);
    // One text for an unknown user and a wrong password: the reply does not confirm names.
    if (index < 0 || !checkPassword(m_accounts[index], password)) {
        error = QStringLiteral("Wrong name or password");
        return false;
    }
    m_lastUserGuid = m_accounts[index].guid;
    setCurrent(index);
    save();
    return true;
}

void UserAccountStore::logout()
{
    // Logging out on purpose also ends the automatic login of the next start.
    m_lastUserGuid.clear();
    setCurrent(-1);
    save();
}

bool UserAccountStore::autoLogin(QString& error)
{
    const int index = indexOfGuid(m_lastUserGuid);
    if (index < 0 || !m_accounts[index].autoLoginAllowed) {
        error = QStringLiteral("No user to log in automatically");
        return false;
    }
    setCurrent(index);
    return true;
}

bool UserAccountStore::setAutoLoginAllowed(bool allowed, QString& error)
{
    if (!hasCurrentUser()) {
        error = QStringLiteral("No user is logged in");
        return false;
    }
    m_accounts[m_current].autoLoginAllowed = allowed;
    save();
    return true;
}

bool UserAccountStore::removeUser(const QString& guidOrName, QString& error)
{
    int index = indexOfGuid(guidOrName);
    if (index < 0)
        index = indexOf(guidOrName);
    if (index < 0) {
        error = QStringLiteral("Unknown user '") + guidOrName + QLatin1Char('\'');
        return false;
    }
    if (m_accounts[index].guid == m_lastUserGuid)
        m_lastUserGuid.clear();
    const int current = m_current;
    m_accounts.removeAt(index);
    if (current == index)
        setCurrent(-1);
    else if (current > index)
        m_current = current - 1; // the same account, one place up
    save();
    return true;
}

void UserAccountStore::clear()
{
    m_accounts.clear();
    m_lastUserGuid.clear();
    setCurrent(-1);
    save();
}

bool UserAccountStore::load()
{
    m_accounts.clear();
    m_lastUserGuid.clear();
    setCurrent(-1);
    QFile file(m_filePath);
    if (!file.exists())
        return true;
    QJsonParseError parseError;
    const QJsonDocument document = file.open(QIODevice::ReadOnly)
        ? QJsonDocument::fromJson(file.readAll(), &parseError)
        : QJsonDocument();
    file.close();
    if (!document.isObject() || document.object().value(QStringLiteral("format")).toString() != FileFormat) {
        GlobalConsole::writeLine(QStringLiteral("User accounts: %1 is damaged, kept as %1.bad; starting empty")
                                     .arg(m_filePath));
        QFile::remove(m_filePath + QStringLiteral(".bad"));
        QFile::rename(m_filePath, m_filePath + QStringLiteral(".bad"));
        return false;
    }
    const QJsonObject root = document.object();
    for (const QJsonValue& entry : root.value(QStringLiteral("accounts")).toArray()) {
        const UserAccount account = UserAccount::fromStoredJson(entry.toObject());
        if (!account.name.isEmpty() && !account.guid.isEmpty())
            m_accounts.append(account);
    }
    m_lastUserGuid = root.value(QStringLiteral("lastUser")).toString();
    return true;
}

// Written whole to a temporary file and renamed, readable by the owner only.
bool UserAccountStore::save() const
{
    QJsonArray accounts;
    for (const UserAccount& account : m_accounts)
        accounts.append(account.toStoredJson());
    QJsonObject root;
    root.insert(QStringLiteral("format"), FileFormat);
    root.insert(QStringLiteral("version"), 1);
    root.insert(QStringLiteral("accounts"), accounts);
    root.insert(QStringLiteral("lastUser"), m_lastUserGuid);

    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QSaveFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly)) {
        GlobalConsole::writeLine(QStringLiteral("User accounts: cannot write %1: %2").arg(m_filePath, file.errorString()));
        return false;
    }
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    file.write(QJsonDocument(root).toJson(QJsonDocument::Indented));
    if (!file.commit()) {
        GlobalConsole::writeLine(QStringLiteral("User accounts: cannot write %1: %2").arg(m_filePath, file.errorString()));
        return false;
    }
    return true;
}
