#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

// One local account. The password itself is never kept: only a random salt and the key derived
// from salt and password (PBKDF2 with SHA-256 over `iterations` rounds).
struct UserAccount
{
    QString name;
    QString email;
    QString nick;
    QString guid;
    QByteArray salt;
    QByteArray hash;
    int iterations = 0;
    // The account may be logged in again at start-up without its password.
    bool autoLoginAllowed = false;

    // What clients see: no salt, no hash.
    QJsonObject toPublicJson() const
    {
        QJsonObject json;
        json.insert(QStringLiteral("name"), name);
        json.insert(QStringLiteral("email"), email);
        json.insert(QStringLiteral("nick"), nick);
        json.insert(QStringLiteral("guid"), guid);
        return json;
    }

    QJsonObject toStoredJson() const
    {
        QJsonObject json = toPublicJson();
        json.insert(QStringLiteral("salt"), QString::fromLatin1(salt.toBase64()));
        json.insert(QStringLiteral("hash"), QString::fromLatin1(hash.toBase64()));
        json.insert(QStringLiteral("iterations"), iterations);
        json.insert(QStringLiteral("autoLogin"), autoLoginAllowed);
        return json;
    }

    static UserAccount fromStoredJson(const QJsonObject& json)
    {
        UserAccount account;
        account.name = json.value(QStringLiteral("name")).toString();
        account.email = json.value(QStringLiteral("email")).toString();
        account.nick = json.value(QStringLiteral("nick")).toString();
        account.guid = json.value(QStringLiteral("guid")).toString();
        account.salt = QByteArray::fromBase64(json.value(QStringLiteral("salt")).toString().toLatin1());
        account.hash = QByteArray::fromBase64(json.value(QStringLiteral("hash")).toString().toLatin1());
        account.iterations = json.value(QStringLiteral("iterations")).toInt();
        account.autoLoginAllowed = json.value(QStringLiteral("autoLogin")).toBool();
        return account;
    }
};
