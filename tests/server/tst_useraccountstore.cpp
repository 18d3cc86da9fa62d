#include "FakeServerContext.h"

#include "server/UserAccountStore.h"
#include "server/commands/UserManage.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QtTest>

#include <memory>

// The local account store and the UserManage command over it, with a hand-driven clock.
class TestUserAccountStore : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeServerContext> m_context;
    std::unique_ptr<UserAccountStore> m_store;
    qint64 m_now = 1'000'000;

    QString filePath() const { return m_context->folderPath() + "/settings/UserAccounts.json"; }

    void openStore()
    {
        m_store = std::make_unique<UserAccountStore>();
        m_store->setTimeSource([this] { return m_now; });
        m_context->setUserAccounts(m_store.get());
    }

    // Runs one action; the clock moves on by `advanceMs` first (past the throttle by default).
    QJsonObject manage(QMap<QString, QString> args, bool* ok = nullptr, qint64 advanceMs = 1000)
    {
        m_now += advanceMs;
        UserManage command(m_context.get());
        QJsonObject response;
        const bool result = command.processCommand(ReferrerWebSocket, response, args);
        if (ok)
            *ok = result;
        return response;
    }

    QJsonObject storedFile() const
    {
        QFile file(filePath());
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
    }

    static QString referenceKey(const QString& password, const QString& salt, int iterations)
    {
        QProcess python;
        python.start(ORVEX_REFERENCE_PYTHON, { QString(ORVEX_TEST_DIR) + "/pbkdf2_reference.py", password, salt,
                                               QString::number(iterations), "32" });
        if (!python.waitForFinished(60000) || python.exitCode() != 0)
            return QString();
        return QString::fromLatin1(python.readAllStandardOutput()).trimmed();
    }

private Q_SLOTS:
    void init()
    {
        m_context = std::make_unique<FakeServerContext>(0);
        openStore();
    }

    void cleanup()
    {
        m_store.reset();
        m_context.reset();
    }

    void storedHashesMatchAnIndependentDerivation()
    {
        const QString password = QStringLiteral("correct horse \u00e9");
        bool ok = false;
        QJsonObject reply = manage({ { "action", "register" }, { "name", "alice" }, { "email", "a@example.org" },
                                     { "nick", "Al" }, { "password", password } }, &ok);
        QVERIFY2(ok, qPrintable(reply.value("error").toString()));
        QCOMPARE(reply.value("currentUser")["name"].toString(), QString("alice"));
        QVERIFY(!reply["currentUser"].toObject().contains("hash"));
        manage({ { "action", "register" }, { "name", "bob" }, { "password", password } }, &ok);
        QVERIFY(ok);

        QFile file(filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(!bytes.contains(password.toUtf8()));
        QVERIFY(!bytes.contains(password.toUtf8().toBase64()));
        QCOMPARE(file.permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());

        const QJsonArray accounts = storedFile().value("accounts").toArray();
        QCOMPARE(accounts.size(), 2);
        const QJsonObject alice = accounts[0].toObject();
        const QJsonObject bob = accounts[1].toObject();
        QCOMPARE(QByteArray::fromBase64(alice["salt"].toString().toLatin1()).size(), 16);
        QVERIFY(alice["iterations"].toInt() >= 100000);
        QVERIFY(alice["salt"] != bob["salt"]);
        QVERIFY(alice["hash"] != bob["hash"]); // same password, different salts
        QVERIFY(alice["guid"] != bob["guid"]);
        QCOMPARE(referenceKey(password, alice["salt"].toString(), alice["iterations"].toInt()),
                 alice["hash"].toString());
    }

    void loginAndWrongPasswords()
    {
        bool ok = false;
        manage({ { "action", "register" }, { "name", "carol" }, { "email", "c@example.org" }, { "password", "secret1" } });
        manage({ { "action", "logout" } });
        QVERIFY(manage({ { "action", "current" } }).value("currentUser").isNull());

        QJsonObject reply = manage({ { "action", "login" }, { "name", "carol" }, { "password", "secret2" } }, &ok);
        QVERIFY(!ok);
        QCOMPARE(reply.value("error").toString(), QString("Wrong name or password"));
        reply = manage({ { "action", "login" }, { "name", "nobody" }, { "password", "secret1" } }, &ok);
        QCOMPARE(reply.value("error").toString(), QString("Wrong name or password"));
        reply = manage({ { "action", "login" }, { "email", "C@EXAMPLE.ORG" }, { "password", "secret1" } }, &ok);
        QVERIFY(ok);
        QCOMPARE(reply.value("currentUser")["email"].toString(), QString("c@example.org"));

        reply = manage({ { "action", "register" }, { "name", "Carol" }, { "password", "another1" } }, &ok);
        QVERIFY(!ok); // names are unique whatever their case
        reply = manage({ { "action", "register" }, { "name", "dave" }, { "password", "short" } }, &ok);
        QVERIFY(!ok);
        QCOMPARE(manage({ { "action", "list" } }).value("users").toArray().size(), 1);
    }

    void throttling()
    {
        bool ok = false;
        manage({ { "action", "register" }, { "name", "erin" }, { "password", "secret1" } }, &ok);
        QVERIFY(ok);
        QJsonObject reply =
            manage({ { "action", "register" }, { "name", "frank" }, { "password", "secret1" } }, &ok, 999);
        QVERIFY(!ok);
        QCOMPARE(reply.value("error").toString(), QString("Too fast reg"));
        manage({ { "action", "register" }, { "name", "frank" }, { "password", "secret1" } }, &ok, 1);
        QVERIFY(ok); // 1000 ms after the last accepted registration

        manage({ { "action", "login" }, { "name", "erin" }, { "password", "wrong!" } }, &ok);
        QVERIFY(!ok);
        reply = manage({ { "action", "login" }, { "name", "erin" }, { "password", "secret1" } }, &ok, 500);
        QVERIFY(!ok); // a failed attempt counts too
        QCOMPARE(reply.value("error").toString(), QString("Too fast login"));
        QCOMPARE(reply.value("code").toString(), QString("ERROR_TOO_FAST"));
        manage({ { "action", "login" }, { "name", "erin" }, { "password", "secret1" } }, &ok, 500);
        QVERIFY(ok);
    }

    void fileSurvivesAReload()
    {
        bool ok = false;
        manage({ { "action", "register" }, { "name", "gina" }, { "nick", "G" }, { "password", "secret1" } });
        QCOMPARE(manage({ { "action", "allow" } }).value("value").toBool(), true);
        const QJsonArray users = manage({ { "action", "list" } }).value("users").toArray();

        openStore(); // a new start of the program
        QVERIFY(manage({ { "action", "current" } }).value("currentUser").isNull());
        QCOMPARE(manage({ { "action", "list" } }).value("users").toArray(), users);
        QJsonObject reply = manage({ { "action", "autologin" } }, &ok);
        QVERIFY(ok);
        QCOMPARE(reply.value("currentUser")["nick"].toString(), QString("G"));
        manage({ { "action", "login" }, { "name", "gina" }, { "password", "secret1" } }, &ok);
        QVERIFY(ok);

        manage({ { "action", "logout" } });
        openStore();
        manage({ { "action", "autologin" } }, &ok);
        QVERIFY(!ok); // logging out ends the automatic login
    }

    void removeClearAndPing()
    {
        bool ok = false;
        manage({ { "action", "register" }, { "name", "hank" }, { "password", "secret1" } });
        const QString guid = manage({ { "action", "current" } }).value("currentUser")["guid"].toString();
        manage({ { "action", "register" }, { "name", "iris" }, { "password", "secret1" } });
        QCOMPARE(manage({ { "action", "remove" }, { "guid", guid } }, &ok).value("users").toArray().size(), 1);
        QVERIFY(ok);
        QCOMPARE(manage({ { "action", "current" } }).value("currentUser")["name"].toString(), QString("iris"));
        QCOMPARE(manage({ { "action", "remove" }, { "name", "hank" } }, &ok).value("error").toString(),
                 QString("Unknown user 'hank'"));
        manage({ { "action", "clear" } }, &ok);
        QVERIFY(ok);
        QVERIFY(manage({ { "action", "current" } }).value("currentUser").isNull());
        QVERIFY(storedFile().value("accounts").toArray().isEmpty());

        QCOMPARE(manage({ { "action", "PING" } }).value("response").toString(), QString("pong"));
        QCOMPARE(manage({ { "action", "fly" } }, &ok).value("error").toString(), QString("Unknown action 'fly'"));
        QVERIFY(!ok);
        QVERIFY(m_store->getRemoteEndpoint().isEmpty()); // local only unless configured
    }

    void damagedFileIsKeptAside()
    {
        QFile file(filePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{ not json");
        file.close();
        openStore();
        QVERIFY(m_store->getUsers().isEmpty());
        QVERIFY(QFile::exists(filePath() + ".bad"));
        bool ok = false;
        manage({ { "action", "register" }, { "name", "jack" }, { "password", "secret1" } }, &ok);
        QVERIFY(ok);
    }
};

QTEST_GUILESS_MAIN(TestUserAccountStore)
#include "tst_useraccountstore.moc"
