#include "server/HTWSCommand.h"
#include "server/HTWSServer.h"
#include "server/UrlArguments.h"
#include "server/WebSocketMessage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QWebSocket>
#include <QtTest>

// A stand-in command (the real listing needs devices). Echoes what reached it: arguments, referrer and body.
class EchoDevices : public HTWSCommand
{
    Q_OBJECT
public:
    using HTWSCommand::HTWSCommand;

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override
    {
        ++calls;
        QJsonObject echoed;
        for (auto it = args.cbegin(); it != args.cend(); ++it)
            echoed.insert(it.key(), it.value());
        response.insert("args", echoed);
        response.insert("referrer", int(referrer));
        if (!tag.isEmpty())
            response.insert("tag", tag);
        return true;
    }
    bool processCommandWithBody(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args,
                                QByteArray& body) override
    {
        response.insert("body", QString::fromUtf8(body));
        return processCommand(referrer, response, args);
    }

    int calls = 0;
    QString tag;
};

class TestServer : public HTWSServer
{
    Q_OBJECT
public:
    using HTWSServer::HTWSServer;
    qsizetype clientCount() const { return getClients().size(); }
    void sendToAll(const QString& text) { sendTextToAllClients(text); }
};

struct HttpReply
{
    int status = 0;
    QByteArray body;
    QByteArray contentType;
    QByteArray allowOrigin;
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

class TestHTWSServer : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    QString m_pages; // inside m_root, beside a file that must stay unreachable
    QNetworkAccessManager* m_network = nullptr;

    static int freePort()
    {
        QTcpServer probe;
        return probe.listen(QHostAddress::Any, 0) ? probe.serverPort() : 0;
    }

    TestServer* makeServer(EchoDevices** command = nullptr, int wsPort = 0, const QString& folder = {})
    {
        auto* server = new TestServer(0, wsPort, folder.isEmpty() ? m_pages : folder, "test", this);
        auto* echoDevices = new EchoDevices(server);
        server->addCommand(echoDevices);
        server->updateCommandReference();
        if (command)
            *command = echoDevices;
        return server;
    }

    HttpReply get(int port, const QString& path, const QByteArray& postBody = {})
    {
        QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(port) + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "text/plain");
        QNetworkReply* reply = postBody.isEmpty() ? m_network->get(request) : m_network->post(request, postBody);
        HttpReply result;
        if (!QTest::qWaitFor([reply] { return reply->isFinished(); }, 10000))
            return result;
        result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        result.body = reply->readAll();
        result.contentType = reply->rawHeader("Content-Type");
        result.allowOrigin = reply->rawHeader("Access-Control-Allow-Origin");
        reply->deleteLater();
        return result;
    }

    // curl as an independent client; the event loop keeps running while it waits.
    QByteArray curl(const QStringList& arguments)
    {
        QProcess process;
        process.start("curl", QStringList { "-s", "--noproxy", "*", "--max-time", "10" } + arguments);
        if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 15000))
            return {};
        return process.readAllStandardOutput();
    }

    static QWebSocket* connectClient(int port, QObject* parent)
    {
        auto* client = new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, parent);
        QSignalSpy failed(client, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error));
        client->open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(port)));
        (void)QTest::qWaitFor(
            [&] { return client->state() == QAbstractSocket::ConnectedState || !failed.isEmpty(); }, 5000);
        return client;
    }

    static QJsonObject parse(const QString& text) { return QJsonDocument::fromJson(text.toUtf8()).object(); }

    void writePage(const QString& name, const QByteArray& content)
    {
        QDir(m_pages).mkpath(QFileInfo(name).path());
        QFile file(m_pages + "/" + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_network = new QNetworkAccessManager(this);
        m_pages = m_root.filePath("pages");
        writePage("index.html", "<html>index</html>");
        writePage("app.js", "var a = 1;");
        writePage("style.css", "body {}");
        writePage("about.html", "<html>about</html>");
        writePage("lib/Tool.JS", "var b = 2;");
        QFile secret(m_root.filePath("secret.txt"));
        QVERIFY(secret.open(QIODevice::WriteOnly));
        secret.write("secret");
    }

    void messageForms_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("command"); // empty: no command word was found
        QTest::addColumn<QVariantMap>("args");

        QTest::newRow("bare") << "echoDevices" << "echodevices" << QVariantMap {};
        QTest::newRow("json mixed case") << R"({"command":"EchoDevices"})" << "echodevices" << QVariantMap {};
        QTest::newRow("json keys lower-cased")
            << R"({"COMMAND":"echodevices","SN":"X1","Node":"2"})" << "echodevices"
            << QVariantMap { { "sn", "X1" }, { "node", "2" } };
        QTest::newRow("json number reads empty")
            << R"({"command":"echoDevices","value":10,"flag":true,"list":["a"]})" << "echodevices"
            << QVariantMap { { "value", "" }, { "flag", "" }, { "list", "" } };
        QTest::newRow("json string") << R"({"command":"echoDevices","value":"10"})" << "echodevices"
                                     << QVariantMap { { "value", "10" } };
        QTest::newRow("query keeps key case") << "echoDevices?SN=XXXX&&node=1" << "echodevices"
                                              << QVariantMap { { "SN", "XXXX" }, { "node", "1" } };
        QTest::newRow("query first equals splits, bare word dropped, not decoded")
            << "ECHODEVICES?a=b=c&flag&s=a%20b+c" << "echodevices"
            << QVariantMap { { "a", "b=c" }, { "s", "a%20b+c" } };
        QTest::newRow("two question marks") << "a?b?c" << "" << QVariantMap {};
        QTest::newRow("empty word before query") << "?x=1" << "" << QVariantMap {};
        QTest::newRow("json without command") << R"({"sn":"1"})" << "" << QVariantMap {};
    }

    void messageForms()
    {
        QFETCH(QString, message);
        QFETCH(QString, command);
        QFETCH(QVariantMap, args);
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        const QJsonObject reply = parse(server->processManualMessage(message));
        const QString time = reply.value("time").toString();
        QVERIFY2(QRegularExpression(R"(^\d{4}\.\d\d\.\d\d-\d\d\.\d\d\.\d\d\.\d{3}$)").match(time).hasMatch(),
                 qPrintable(time));
        QVERIFY(qAbs(QDateTime::fromString(time, "yyyy.MM.dd-hh.mm.ss.zzz").secsTo(QDateTime::currentDateTime()))
                < 60);
        if (command.isEmpty()) {
            QCOMPARE(reply.value("error").toString(),
                     QString(R"(Please specify a command (e.g. '{"command":"listDevices"}'))"));
            QCOMPARE(reply.value("result"), QJsonValue(false));
            QVERIFY(!reply.contains("command"));
            QCOMPARE(echoDevices->calls, 0);
        } else {
            QCOMPARE(reply.value("command").toString(), command);
            QCOMPARE(reply.value("result"), QJsonValue(true));
            QCOMPARE(reply.value("args").toObject().toVariantMap(), args);
            QCOMPARE(reply.value("referrer").toInt(), int(ReferrerWebSocket));
            QVERIFY(!reply.contains("error"));
        }
        delete server;
    }

    void badJsonAndUnknownCommands()
    {
        TestServer* server = makeServer();
        const QJsonObject bad = parse(server->processManualMessage("{bad json"));
        QVERIFY(!bad.value("jsonError").toString().isEmpty());
        QVERIFY(bad.value("error").toString().startsWith("Please specify a command"));
        QCOMPARE(bad.value("result"), QJsonValue(false));

        const QJsonObject unknown = parse(server->processManualMessage("SpectrumFrequencies?node=1"));
        QCOMPARE(unknown.value("command").toString(), QString("spectrumfrequencies"));
        QCOMPARE(unknown.value("error").toString(),
                 QString("Unsupported command 'spectrumfrequencies'. Please use 'help' command to see the list of "
                         "supported commands"));
        QCOMPARE(unknown.value("result"), QJsonValue(false));
        QVERIFY(!unknown.contains("jsonError"));

        // Re-registering under the same name: the later command answers.
        auto* replacement = new EchoDevices(server);
        replacement->tag = "second";
        server->addCommand(replacement);
        server->updateCommandReference();
        QCOMPARE(parse(server->processManualMessage("echodevices")).value("tag").toString(), QString("second"));
        delete server;
    }

    void urlArguments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariantMap>("expected");
        QTest::newRow("path only") << "echodevices" << QVariantMap {};
        QTest::newRow("decoding") << "cmd?SN=a%20b&x=1+2&p=%2B&u=%C3%A9t%C3%A9"
                                  << QVariantMap { { "SN", "a b" }, { "x", "1 2" }, { "p", "+" }, { "u", "été" } };
        QTest::newRow("last wins, empties dropped") << "cmd?k=1&&k=2&" << QVariantMap { { "k", "2" } };
        QTest::newRow("flag and value with equals")
            << "cmd?pretty&v=a=b&=x" << QVariantMap { { "pretty", "" }, { "v", "a=b" } };
        QTest::newRow("malformed percent kept")
            << "cmd?v=100%&w=%zz&x=%4&y=%41"
            << QVariantMap { { "v", "100%" }, { "w", "%zz" }, { "x", "%4" }, { "y", "A" } };
        QTest::newRow("bare query") << "a=1&b=2" << QVariantMap { { "a", "1" }, { "b", "2" } };
        QTest::newRow("only first question mark splits") << "c?a=1?2" << QVariantMap { { "a", "1?2" } };
    }

    void urlArguments()
    {
        QFETCH(QString, text);
        QFETCH(QVariantMap, expected);
        QVariantMap actual;
        const QMap<QString, QString> parsed = UrlArguments::parse(text);
        for (auto it = parsed.cbegin(); it != parsed.cend(); ++it)
            actual.insert(it.key(), it.value());
        QCOMPARE(actual, expected);
    }

    // The WebSocket text form is read as written, unlike an HTTP address.
    void webSocketMessages_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QVariantMap>("expected");
        QTest::newRow("word") << "listDevices" << "listDevices" << QVariantMap {};
        QTest::newRow("no decoding, case kept")
            << "cmd?SN=a%20b&x=1+2&flag" << "cmd" << QVariantMap { { "SN", "a%20b" }, { "x", "1+2" } };
        QTest::newRow("two question marks") << "c?a=1?2" << "" << QVariantMap {};
        QTest::newRow("json, keys lower-cased")
            << R"({"Command": "bci", "Node": "0", "n": 1})" << "bci" << QVariantMap { { "node", "0" }, { "n", "" } };
        QTest::newRow("broken json") << "{nope" << "" << QVariantMap {};
    }

    void webSocketMessages()
    {
        QFETCH(QString, message);
        QFETCH(QString, command);
        QFETCH(QVariantMap, expected);
        const WebSocketMessage parsed = WebSocketMessage::parse(message);
        QCOMPARE(parsed.command, command);
        QVariantMap actual;
        for (auto it = parsed.args.cbegin(); it != parsed.args.cend(); ++it)
            actual.insert(it.key(), it.value());
        QCOMPARE(actual, expected);
        QCOMPARE(parsed.jsonError.isEmpty(), !message.startsWith("{nope"));
    }

    void httpCommands()
    {
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices, 0, QDir::tempPath() + "/htws-no-pages-here");
        const int port = server->portHTTP();
        QVERIFY(server->isHttpListening() && port > 0);

        const HttpReply pretty = get(port, "echodevices?pretty=1");
        QCOMPARE(pretty.status, 200);
        QCOMPARE(pretty.contentType, QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(pretty.allowOrigin, QByteArray("*"));
        QVERIFY(pretty.body.contains("\n    \"command\": \"echodevices\""));
        QCOMPARE(pretty.json().value("result"), QJsonValue(true));
        QCOMPARE(pretty.json().value("referrer").toInt(), int(ReferrerHttp));

        const HttpReply compact = get(port, "EchoDevices?Pretty=1&SN=a%20b");
        QVERIFY(!compact.body.trimmed().contains('\n'));
        QCOMPARE(compact.json().value("args").toObject().toVariantMap(),
                 (QVariantMap { { "Pretty", "1" }, { "SN", "a b" } }));

        const HttpReply unknown = get(port, "nosuch");
        QCOMPARE(unknown.status, 200);
        QCOMPARE(unknown.allowOrigin, QByteArray("*"));
        QCOMPARE(unknown.json().value("result"), QJsonValue(false));
        QVERIFY(unknown.json().value("error").toString().startsWith("Unsupported command 'nosuch'."));
        QVERIFY(unknown.json().contains("time"));

        // No index.html: the empty name is an (unknown) command, not the Please-specify reply.
        QVERIFY(get(port, "").json().value("error").toString().startsWith("Unsupported command ''."));

        const HttpReply posted = get(port, "echoDevices", "the body");
        QCOMPARE(posted.json().value("body").toString(), QString("the body"));

        // An independent client: slashes vanish from the name, '+' and %XX are decoded, an address
        // inside an argument survives.
        const QString address = QStringLiteral("http://127.0.0.1:%1/echo/Devices?x=1+2&path=http://a.b/c&k=1&k=%2B");
        const QJsonObject viaCurl = QJsonDocument::fromJson(curl({ address.arg(port) })).object();
        QCOMPARE(viaCurl.value("command").toString(), QString("echodevices"));
        QCOMPARE(viaCurl.value("args").toObject().toVariantMap(),
                 (QVariantMap { { "x", "1 2" }, { "path", "http://a.b/c" }, { "k", "+" } }));
        delete server;
    }

    void staticFiles_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("root is index") << "" << QByteArray("<html>index</html>") << QByteArray("text/html");
        QTest::newRow("root with query") << "?pretty=1" << QByteArray("<html>index</html>") << QByteArray("text/html");
        QTest::newRow("html") << "about.html" << QByteArray("<html>about</html>") << QByteArray("text/html");
        QTest::newRow("js") << "app.js" << QByteArray("var a = 1;") << QByteArray("application/javascript");
        QTest::newRow("upper-case JS in subfolder") << "lib/Tool.JS" << QByteArray("var b = 2;")
                                                   << QByteArray("application/javascript");
        QTest::newRow("css") << "style.css?v=3" << QByteArray("body {}") << QByteArray("text/css");
    }

    void staticFiles()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, type);
        TestServer* server = makeServer();
        const HttpReply reply = get(server->portHTTP(), path);
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.body, content);
        QCOMPARE(reply.contentType, type);
        delete server;
    }

    void missingOrOutsideFilesFallBackToCommands()
    {
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        const HttpReply missing = get(server->portHTTP(), "missing.html");
        QCOMPARE(missing.json().value("error").toString().section('.', 0, 1),
                 QString("Unsupported command 'missing.html'"));

        // Sent raw so the client does not resolve "..": the file beside the folder stays unread.
        const QByteArray outside =
            curl({ "--path-as-is", QStringLiteral("http://127.0.0.1:%1/../secret.txt").arg(server->portHTTP()) });
        QVERIFY(!outside.isEmpty());
        QVERIFY(!outside.contains("secret\""));
        QCOMPARE(QJsonDocument::fromJson(outside).object().value("result"), QJsonValue(false));
        delete server;
    }

    void httpBeforeStartWebSocketAfter()
    {
        const int wsPort = freePort();
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices, wsPort);
        QCOMPARE(get(server->portHTTP(), "echoDevices").json().value("result"), QJsonValue(true));

        QWebSocket* early = connectClient(wsPort, this);
        QVERIFY(early->state() != QAbstractSocket::ConnectedState);
        delete early;

        server->start();
        QCOMPARE(server->portWebSocket(), wsPort);
        QWebSocket* client = connectClient(wsPort, this);
        QCOMPARE(client->state(), QAbstractSocket::ConnectedState);
        QSignalSpy replies(client, &QWebSocket::textMessageReceived);
        client->sendTextMessage(R"({"command":"EchoDevices","SN":"7"})");
        QTRY_COMPARE(replies.size(), 1);
        const QJsonObject reply = parse(replies.first().first().toString());
        QCOMPARE(reply.value("command").toString(), QString("echodevices"));
        QCOMPARE(reply.value("args").toObject().value("sn").toString(), QString("7"));

        server->stop();
        QWebSocket* late = connectClient(wsPort, this);
        QVERIFY(late->state() != QAbstractSocket::ConnectedState);
        delete late;
        QCOMPARE(get(server->portHTTP(), "echoDevices").json().value("result"), QJsonValue(true));
        delete client;
        delete server;
    }

    void webSocketOrderEchoAndDepartedClients()
    {
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        server->start();
        QWebSocket* client = connectClient(server->portWebSocket(), this);
        QVERIFY(client->isValid());
        QTRY_COMPARE(server->clientCount(), 1);

        QSignalSpy texts(client, &QWebSocket::textMessageReceived);
        for (int i = 0; i < 25; ++i)
            client->sendTextMessage(QStringLiteral("echoDevices?i=%1").arg(i));
        QTRY_COMPARE(texts.size(), 25);
        for (int i = 0; i < 25; ++i)
            QCOMPARE(parse(texts[i].first().toString()).value("args").toObject().value("i").toString(),
                     QString::number(i));

        QSignalSpy binaries(client, &QWebSocket::binaryMessageReceived);
        const QByteArray bytes("\x00\xff{\"command\":\"echoDevices\"}\x01", 28);
        client->sendBinaryMessage(bytes);
        QTRY_COMPARE(binaries.size(), 1);
        QCOMPARE(binaries.first().first().toByteArray(), bytes);
        QCOMPARE(echoDevices->calls, 25);

        // A client that leaves right after sending: its message never runs. The second client's
        // reply comes after the departed message's turn in the queue.
        QWebSocket* leaving = connectClient(server->portWebSocket(), this);
        QTRY_COMPARE(server->clientCount(), 2);
        leaving->sendTextMessage("echoDevices?from=leaving");
        leaving->flush();
        leaving->abort();
        QTRY_COMPARE(server->clientCount(), 1);
        client->sendTextMessage("echoDevices?from=staying");
        QTRY_COMPARE(texts.size(), 26);
        QCOMPARE(echoDevices->calls, 26);
        delete leaving;

        // Text pushed by the server reaches every client.
        QWebSocket* second = connectClient(server->portWebSocket(), this);
        QTRY_COMPARE(server->clientCount(), 2);
        QSignalSpy secondTexts(second, &QWebSocket::textMessageReceived);
        server->sendToAll("pushed");
        QTRY_COMPARE(secondTexts.size(), 1);
        QTRY_COMPARE(texts.size(), 27);
        QCOMPARE(texts.last().first().toString(), QString("pushed"));
        delete second;
        delete client;
        delete server;
    }

    void oversizedInputIsRefused()
    {
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        server->start();
        const int port = server->portHTTP();

        // curl posts from a file: large uploads are its everyday work.
        const auto post = [&](qint64 size) {
            QFile file(m_root.filePath("body.bin"));
            file.open(QIODevice::WriteOnly);
            file.write(QByteArray(size, 'x'));
            file.close();
            return QJsonDocument::fromJson(curl({ "-H", "Expect:", "-H", "Content-Type: text/plain", "--data-binary",
                                                  "@" + file.fileName(),
                                                  QStringLiteral("http://127.0.0.1:%1/echoDevices").arg(port) }))
                .object();
        };
        const QJsonObject big = post(HTWSServer::MaxRequestBodyBytes + 1);
        QCOMPARE(big.value("result"), QJsonValue(false));
        QCOMPARE(big.value("error").toString(), QString("Request body too large: at most 16777216 bytes"));
        QCOMPARE(echoDevices->calls, 0);

        // Far beyond the limit the connection is dropped instead of buffered; the server goes on.
        QVERIFY(post(HTWSServer::MaxUnansweredHttpBytes + 1024 * 1024).isEmpty());
        QCOMPARE(get(port, "echoDevices").json().value("result"), QJsonValue(true));

        // Sizes are UTF-8 bytes: "é" counts two. Exactly at the limit runs, one byte more is refused.
        QWebSocket* client = connectClient(server->portWebSocket(), this);
        QSignalSpy texts(client, &QWebSocket::textMessageReceived);
        const QString prefix = "echoDevices?v=";
        const QString atLimit = prefix + QString((HTWSServer::MaxMessageBytes - prefix.size()) / 2, QChar(0xe9));
        client->sendTextMessage(atLimit);
        client->sendTextMessage(atLimit + "x");
        client->sendTextMessage("echoDevices?after=1");
        QTRY_COMPARE(texts.size(), 3);
        QCOMPARE(parse(texts[0].first().toString()).value("result"), QJsonValue(true));
        const QJsonObject refused = parse(texts[1].first().toString());
        QCOMPARE(refused.value("result"), QJsonValue(false));
        QCOMPARE(refused.value("error").toString(), QString("Message too large: at most 1048576 bytes"));
        QCOMPARE(parse(texts[2].first().toString()).value("args").toObject().value("after").toString(), QString("1"));
        QCOMPARE(echoDevices->calls, 3);

        // Beyond the hard cap the server closes the connection with "too much data".
        QSignalSpy closed(client, &QWebSocket::disconnected);
        client->sendTextMessage(QString(HTWSServer::MaxReceivedMessageBytes + 1, 'x'));
        QTRY_COMPARE_WITH_TIMEOUT(closed.size(), 1, 20000);
        QCOMPARE(client->closeCode(), QWebSocketProtocol::CloseCodeTooMuchData);
        QTRY_COMPARE(server->clientCount(), 0);
        QCOMPARE(echoDevices->calls, 3);
        delete client;
        delete server;
    }

    void floodingClientIsBoundedOthersServed()
    {
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        server->start();
        QWebSocket* flooder = connectClient(server->portWebSocket(), this);
        QWebSocket* polite = connectClient(server->portWebSocket(), this);
        QTRY_COMPARE(server->clientCount(), 2);
        QSignalSpy flooderTexts(flooder, &QWebSocket::textMessageReceived);
        QSignalSpy politeTexts(polite, &QWebSocket::textMessageReceived);

        for (int i = 0; i < 5000; ++i)
            flooder->sendTextMessage(QStringLiteral("echoDevices?i=%1").arg(i));
        polite->sendTextMessage("echoDevices?from=polite");
        QTRY_COMPARE(politeTexts.size(), 1);
        QCOMPARE(parse(politeTexts.first().first().toString()).value("args").toObject().value("from").toString(),
                 QString("polite"));

        // Let the flood settle: every message is either answered or refused, refusals once per run.
        QTRY_VERIFY(echoDevices->calls > 1 && flooderTexts.size() >= echoDevices->calls);
        QTest::qWait(200);
        int refusals = 0;
        int answered = 0;
        int lastIndex = -1;
        for (const QList<QVariant>& text : std::as_const(flooderTexts)) {
            const QJsonObject reply = parse(text.first().toString());
            if (reply.value("result").toBool()) {
                const int index = reply.value("args").toObject().value("i").toString().toInt();
                QVERIFY(index > lastIndex); // accepted ones keep their order
                lastIndex = index;
                ++answered;
            } else {
                QCOMPARE(reply.value("error").toString(),
                         QString("Too many pending messages (at most 1000 per client): message refused"));
                ++refusals;
            }
        }
        QVERIFY2(refusals >= 1 && answered < 5000, qPrintable(QString("%1 answered").arg(answered)));
        QCOMPARE(answered + 1, echoDevices->calls);
        QCOMPARE(answered + refusals, int(flooderTexts.size()));

        // Once drained, the flooder is served again and the server stays alive for everyone.
        flooder->sendTextMessage("echoDevices?i=last");
        QTRY_COMPARE(flooderTexts.size(), answered + refusals + 1);
        QCOMPARE(parse(flooderTexts.last().first().toString()).value("result"), QJsonValue(true));
        QCOMPARE(get(server->portHTTP(), "echoDevices").json().value("result"), QJsonValue(true));
        delete flooder;
        delete polite;
        delete server;
    }

    void apiKey_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<bool>("runs");
        QTest::addColumn<QVariantMap>("args"); // what the command saw
        QTest::newRow("none") << "echoDevices" << QByteArray() << false << QVariantMap {};
        QTest::newRow("wrong") << "echoDevices?key=s3cret%3F" << QByteArray() << false << QVariantMap {};
        QTest::newRow("prefix") << "echoDevices?key=s3cret" << QByteArray() << false << QVariantMap {};
        QTest::newRow("argument") << "echoDevices?key=s3cret%21&a=1" << QByteArray() << true
                                  << QVariantMap { { "a", "1" } };
        QTest::newRow("apikey argument") << "echoDevices?ApiKey=s3cret%21" << QByteArray() << true << QVariantMap {};
        QTest::newRow("header, setting key kept")
            << "echoDevices?key=APIPort" << QByteArray("s3cret!") << true << QVariantMap { { "key", "APIPort" } };
        QTest::newRow("wrong header") << "echoDevices" << QByteArray("S3CRET!") << false << QVariantMap {};
    }

    void apiKey()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, header);
        QFETCH(bool, runs);
        QFETCH(QVariantMap, args);
        EchoDevices* echoDevices = nullptr;
        TestServer* server = makeServer(&echoDevices);
        server->setApiKey("s3cret!");
        QStringList arguments { QStringLiteral("http://127.0.0.1:%1/").arg(server->portHTTP()) + path };
        if (!header.isEmpty())
            arguments << "-H" << "x-api-key: " + QString::fromUtf8(header); // header names ignore case
        const QJsonObject reply = QJsonDocument::fromJson(curl(arguments)).object();
        QCOMPARE(reply.value("command").toString(), QString("echodevices"));
        QCOMPARE(reply.value("result").toBool(), runs);
        QCOMPARE(echoDevices->calls, runs ? 1 : 0);
        if (runs)
            QCOMPARE(reply.value("args").toObject().toVariantMap(), args);
        else
            QCOMPARE(reply.value("error").toString(), QString("Missing or wrong API key"));

        // Pages stay readable; the same key rules hold for WebSocket messages.
        QCOMPARE(get(server->portHTTP(), "about.html").body, QByteArray("<html>about</html>"));
        server->start();
        QWebSocket* client = connectClient(server->portWebSocket(), this);
        QSignalSpy texts(client, &QWebSocket::textMessageReceived);
        client->sendTextMessage(QString(path).replace("%21", "!")); // WebSocket text is not decoded
        client->sendTextMessage(R"({"command":"echoDevices","Key":"s3cret!","b":"2"})");
        QTRY_COMPARE(texts.size(), 2);
        const bool viaMessage = runs && header.isEmpty();
        QCOMPARE(parse(texts[0].first().toString()).value("result").toBool(), viaMessage);
        QCOMPARE(parse(texts[1].first().toString()).value("args").toObject().toVariantMap(),
                 (QVariantMap { { "b", "2" } }));
        delete client;

        server->setApiKey(QString());
        QCOMPARE(get(server->portHTTP(), "echoDevices").json().value("result"), QJsonValue(true));
        delete server;
    }

    void pushesOnlyReachClientsWithTheKey()
    {
        TestServer* server = makeServer();
        server->setApiKey("k");
        server->start();
        QWebSocket* stranger = connectClient(server->portWebSocket(), this);
        QWebSocket* member = connectClient(server->portWebSocket(), this);
        QTRY_COMPARE(server->clientCount(), 2);
        QSignalSpy strangerTexts(stranger, &QWebSocket::textMessageReceived);
        QSignalSpy memberTexts(member, &QWebSocket::textMessageReceived);
        stranger->sendTextMessage("echoDevices");
        member->sendTextMessage("echoDevices?key=k");
        QTRY_COMPARE(memberTexts.size(), 1);
        QTRY_COMPARE(strangerTexts.size(), 1);
        server->sendToAll("pushed");
        QTRY_COMPARE(memberTexts.size(), 2);
        QCOMPARE(memberTexts.last().first().toString(), QString("pushed"));
        stranger->sendTextMessage("echoDevices"); // answered after the push would have arrived
        QTRY_COMPARE(strangerTexts.size(), 2);
        QVERIFY(strangerTexts.last().first().toString() != "pushed");
        delete stranger;
        delete member;
        delete server;
    }

    void busyPortIsNotFatal()
    {
        QTcpServer occupant;
        QVERIFY(occupant.listen(QHostAddress::Any, 0));
        const int busy = occupant.serverPort();
        auto* server = new TestServer(busy, busy, m_pages, "test", this);
        QVERIFY(!server->isHttpListening());
        server->start();
        QVERIFY(!server->isWebSocketListening());
        QVERIFY(server->processManualMessage("x").contains("Unsupported command"));
        delete server;
        server = new TestServer(70000, -1, m_pages, "test", this);
        server->start();
        QVERIFY(!server->isHttpListening() && !server->isWebSocketListening());
        delete server;
    }
};

QTEST_GUILESS_MAIN(TestHTWSServer)
#include "tst_htwsserver.moc"
