// The assembled API server driven by real clients over real sockets: an HTTP client, two
// WebSocket clients and, when installed, a headless browser that runs the reference page.
#include "FakeServerContext.h"
#include "RegisteredCommands.h"
#include "server/CommandReferencePage.h"
#include "server/HTWSCommand.h"
#include "server/OrvexDataServer.h"
#include "server/StaticWebFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTest>
#include <QWebSocket>

namespace {

int freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

struct HttpReply
{
    QByteArray body;
    QByteArray contentType;
};

HttpReply httpGet(const QString& url)
{
    QNetworkAccessManager manager;
    QNetworkReply* reply = manager.get(QNetworkRequest(QUrl(url)));
    QSignalSpy done(reply, &QNetworkReply::finished);
    done.wait(5000);
    HttpReply result { reply->readAll(), reply->header(QNetworkRequest::ContentTypeHeader).toByteArray() };
    reply->deleteLater();
    return result;
}

QJsonObject jsonOf(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

class TestOrvexDataServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_context = new FakeServerContext(1, this);
        m_httpPort = freePort();
        m_wsPort = freePort();
        m_folder = m_context->folderPath() + QStringLiteral("/web/");
        m_server = new OrvexDataServer(m_httpPort, m_folder, m_context, nullptr, m_wsPort);
    }

    void cleanup()
    {
        delete m_server;
        delete m_context;
    }

    void registersTheCommandSetInOrder()
    {
        const QStringList expected = registeredCommandWords();
        QStringList names;
        for (HTWSCommand* command : m_server->getCommands())
            names << command->name();
        QCOMPARE(names, expected);
        QCOMPARE(names.size(), 54);
    }

    void answersHttpAtOnceAndWebSocketAfterStart()
    {
        const QJsonObject reply = jsonOf(httpGet(QStringLiteral("http://127.0.0.1:%1/listdevices").arg(m_httpPort)).body);
        QCOMPARE(reply.value("command").toString(), QStringLiteral("listdevices"));
        QVERIFY(reply.value("result").toBool());
        QVERIFY(reply.value("devices").isArray());

        QWebSocket early;
        QSignalSpy earlyError(&early, &QWebSocket::disconnected);
        early.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_wsPort)));
        QVERIFY(earlyError.wait(5000));

        m_server->start();
        QWebSocket client;
        QSignalSpy connected(&client, &QWebSocket::connected);
        QSignalSpy received(&client, &QWebSocket::textMessageReceived);
        client.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_wsPort)));
        QVERIFY(connected.wait(5000));
        client.sendTextMessage(QStringLiteral("{\"command\":\"deviceCount\"}"));
        QVERIFY(received.wait(5000));
        const QJsonObject wsReply = jsonOf(received.first().first().toString().toUtf8());
        QCOMPARE(wsReply.value("command").toString(), QStringLiteral("devicecount"));
        QVERIFY(wsReply.contains("deviceCount"));
    }

    void leavesTheUnregisteredCommandsOut()
    {
        for (const char* word : { "spectrumFrequencies", "existingFiles" }) {
            const QJsonObject reply = jsonOf(m_server->processManualMessage(QString::fromLatin1(word)).toUtf8());
            QCOMPARE(reply.value("result").toBool(), false);
            QVERIFY(reply.value("error").toString().startsWith(QStringLiteral("Unsupported command '")));
        }
    }

    void pushesControlOptionsToEveryClient()
    {
        m_server->start();
        QWebSocket first, second;
        QSignalSpy firstConnected(&first, &QWebSocket::connected);
        QSignalSpy secondConnected(&second, &QWebSocket::connected);
        QSignalSpy firstText(&first, &QWebSocket::textMessageReceived);
        QSignalSpy secondText(&second, &QWebSocket::textMessageReceived);
        first.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_wsPort)));
        second.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_wsPort)));
        QVERIFY(firstConnected.wait(5000) || firstConnected.count() == 1);
        QTRY_COMPARE(secondConnected.count(), 1);
        QTest::qWait(50); // both sockets registered on the server side

        Q_EMIT m_context->controlOptionsChanged();
        QTRY_COMPARE(firstText.count(), 1);
        QTRY_COMPARE(secondText.count(), 1);
        QCOMPARE(firstText.first().first().toString(), secondText.first().first().toString());
        const QJsonObject push = jsonOf(firstText.first().first().toString().toUtf8());
        QCOMPARE(push.value("command").toString(), QStringLiteral("controloptions"));
        QVERIFY(push.value("controls").isArray());
    }

    void servesTheReferencePageOffline()
    {
        const QString page = CommandReferencePage::fill(CommandReferencePage::templateText(), m_server->getCommands(),
                                                        QStringLiteral(ORVEX_VERSION), m_httpPort);
        QVERIFY(StaticWebFolder::prepare(m_folder, page));

        const HttpReply index = httpGet(QStringLiteral("http://127.0.0.1:%1/").arg(m_httpPort));
        const QString html = QString::fromUtf8(index.body);
        QVERIFY(index.contentType.startsWith("text/html"));
        QCOMPARE(html.count(QStringLiteral("<cmd ")), 54);
        QVERIFY(html.contains(QStringLiteral("data-port=\"%1\"").arg(m_httpPort)));
        QVERIFY(!html.contains(QStringLiteral("$version")));
        // Nothing is fetched from elsewhere: every script and style is a relative path.
        QVERIFY(!html.contains(QRegularExpression(QStringLiteral("(src|href)=\"(https?:)?//"))));

        const HttpReply script = httpGet(QStringLiteral("http://127.0.0.1:%1/api.js").arg(m_httpPort));
        QCOMPARE(script.contentType, QByteArray("application/javascript"));
        QVERIFY(script.body.contains("cmd-names-list"));
        QVERIFY(httpGet(QStringLiteral("http://127.0.0.1:%1/api.css").arg(m_httpPort)).contentType.startsWith("text/css"));
    }

    // The page's script, run by a real browser, turns every command into an entry with a Run
    // button and fills the console's list of names.
    void browserBuildsTheCommandEntries()
    {
        const QString browser = QStandardPaths::findExecutable(QStringLiteral("chromium"));
        if (browser.isEmpty())
            QSKIP("chromium is not installed");
        const QString page = CommandReferencePage::fill(CommandReferencePage::templateText(), m_server->getCommands(),
                                                        QStringLiteral(ORVEX_VERSION), m_httpPort);
        QVERIFY(StaticWebFolder::prepare(m_folder, page));

        QProcess chromium;
        chromium.start(browser, { "--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=3000",
                                  "--dump-dom", QStringLiteral("http://127.0.0.1:%1/").arg(m_httpPort) });
        QVERIFY(chromium.waitForStarted());
        // The server answers on this thread while the browser loads the page.
        QTRY_VERIFY_WITH_TIMEOUT(chromium.state() == QProcess::NotRunning, 60000);
        const QString dom = QString::fromUtf8(chromium.readAllStandardOutput());
        QCOMPARE(dom.count(QStringLiteral("class=\"command\"")), 54);
        QCOMPARE(dom.count(QStringLiteral(">Run</button>")), 54 + 1); // and the console's own
        QCOMPARE(dom.count(QStringLiteral("<option value=")), 54);
        QVERIFY(dom.contains(QStringLiteral("Example output")));
    }

private:
    FakeServerContext* m_context = nullptr;
    OrvexDataServer* m_server = nullptr;
    int m_httpPort = 0;
    int m_wsPort = 0;
    QString m_folder;
};

QTEST_GUILESS_MAIN(TestOrvexDataServer)
#include "tst_orvexdataserver.moc"
