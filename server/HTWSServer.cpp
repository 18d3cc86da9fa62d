#include "server/HTWSServer.h"

#include "server/HTWSCommand.h"
#include "server/UrlArguments.h"
#include "services/GlobalConsoleWriter.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QMimeDatabase>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>

namespace {

constexpr int queueIntervalMs = 30;

// Created on first use and shared by every server: building the database parses the system's
// MIME tables.
QMimeDatabase& mimeDatabase()
{
    static QMimeDatabase database;
    return database;
}

bool isValidPort(int port)
{
    return port >= 0 && port <= 65535;
}

QString compactJson(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

HTWSServer::HTWSServer(int httpPort, int wsPort, const QString& folder, const QString& wsServerName,
                       QObject* parent)
    : QObject(parent)
    , m_wsPort(wsPort)
    , m_httpPort(httpPort)
    , m_folder(folder)
{
    if (!m_folder.endsWith(QLatin1Char('/')))
        m_folder += QLatin1Char('/');

    m_wsServer = new QWebSocketServer(wsServerName, QWebSocketServer::NonSecureMode, this);
    m_wsServer->setHandshakeTimeout(-1);

    // Every request must reach the after-request hook, which only runs for requests a route
    // answered; so one route takes every path and the hook builds the real answer.
    m_httpServer = new QHttpServer(this);
    m_httpServer->route(QStringLiteral("/<arg>"), [](const QUrl&) {
        return QHttpServerResponse(QHttpServerResponse::StatusCode::NotFound);
    });
    m_httpServer->afterRequest([this](QHttpServerResponse&&, const QHttpServerRequest& request) {
        return handleHttpRequest(request);
    });
    const quint16 bound = isValidPort(httpPort) ? m_httpServer->listen(QHostAddress::Any, quint16(httpPort)) : 0;
    m_httpListening = bound != 0;
    if (m_httpListening)
        m_httpPort = bound;
    else
        kxDebug() << QStringLiteral("HTTP server cannot listen on port %1").arg(httpPort);
}

HTWSServer::~HTWSServer()
{
    // Clients are deleted here, before this object's slots stop being valid.
    const QSet<QWebSocket*> clients = m_clients;
    m_clients.clear();
    for (QWebSocket* client : clients) {
        client->disconnect(this);
        delete client;
    }
}

bool HTWSServer::isWebSocketListening() const
{
    return m_wsServer->isListening();
}

void HTWSServer::start()
{
    if (!m_wsServer->isListening()) {
        if (isValidPort(m_wsPort) && m_wsServer->listen(QHostAddress::Any, quint16(m_wsPort)))
            m_wsPort = m_wsServer->serverPort();
        else
            kxDebug() << QStringLiteral("WebSocket server cannot listen on port %1: %2")
                             .arg(m_wsPort)
                             .arg(isValidPort(m_wsPort) ? m_wsServer->errorString() : QStringLiteral("not a port"));
    }
    if (!m_timer) {
        m_timer = new QTimer(this);
        m_timer->setInterval(queueIntervalMs);
        connect(m_timer, &QTimer::timeout, this, &HTWSServer::processQueue);
    }
    m_timer->start();
    connect(m_wsServer, &QWebSocketServer::newConnection, this, &HTWSServer::onNewConnection,
            Qt::UniqueConnection);
#ifndef QT_NO_SSL
    connect(m_wsServer, &QWebSocketServer::sslErrors, this, &HTWSServer::onSslErrors, Qt::UniqueConnection);
#endif
}

void HTWSServer::stop()
{
    m_wsServer->close();
    disconnect(m_wsServer, nullptr, this, nullptr);
}

void HTWSServer::addCommand(HTWSCommand* command)
{
    if (command)
        m_commands.append(command);
}

void HTWSServer::updateCommandReference()
{
    m_commandMap.clear();
    for (HTWSCommand* command : std::as_const(m_commands))
        m_commandMap.insert(command->name().toLower(), command);
}

QString HTWSServer::processManualMessage(const QString& message)
{
    return compactJson(processAnyMessage(message, QByteArray()));
}

QString HTWSServer::timeText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd-hh.mm.ss.zzz"));
}

QJsonObject HTWSServer::processAnyMessage(const QString& message, const QByteArray& body)
{
    QJsonObject response;
    QString command;
    QMap<QString, QString> args;

    if (message.startsWith(QLatin1Char('{'))) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(message.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError) {
            response.insert(QStringLiteral("jsonError"), error.errorString());
        } else {
            const QJsonObject object = document.object();
            for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
                const QString key = it.key().toLower();
                // Non-string values read as "": clients send every argument as a string.
                if (key == QLatin1String("command"))
                    command = it.value().toString();
                else
                    args.insert(key, it.value().toString());
            }
        }
    } else if (!message.contains(QLatin1Char('?'))) {
        command = message;
    } else {
        const QStringList parts = message.split(QLatin1Char('?'));
        if (parts.size() == 2) {
            command = parts[0];
            const QStringList pieces = parts[1].split(QLatin1Char('&'), Qt::SkipEmptyParts);
            for (const QString& piece : pieces) {
                const qsizetype equals = piece.indexOf(QLatin1Char('='));
                if (equals >= 0)
                    args.insert(piece.left(equals), piece.mid(equals + 1));
            }
        }
    }

    if (command.isEmpty()) {
        response.insert(QStringLiteral("error"),
                        QStringLiteral("Please specify a command (e.g. '{\"command\":\"listDevices\"}')"));
        response.insert(QStringLiteral("result"), false);
    } else {
        response.insert(QStringLiteral("command"), command);
        const bool result = processMessage(ReferrerWebSocket, command, response, body, args);
        response.insert(QStringLiteral("result"), result);
    }
    response.insert(QStringLiteral("time"), timeText());
    return response;
}

bool HTWSServer::processMessage(Referrer referrer, QString& command, QJsonObject& response, QByteArray body,
                                QMap<QString, QString>& args)
{
    command = command.toLower();
    response.insert(QStringLiteral("command"), command);
    HTWSCommand* handler = m_commandMap.value(command);
    if (!handler) {
        // No "help" command exists; the hint is kept for the clients that print it.
        response.insert(QStringLiteral("error"),
                        QStringLiteral("Unsupported command '") + command
                            + QStringLiteral("'. Please use 'help' command to see the list of supported commands"));
        return false;
    }
    if (body.isEmpty())
        return handler->processCommand(referrer, response, args);
    return handler->processCommandWithBody(referrer, response, args, body);
}

void HTWSServer::sendTextToAllClients(const QString& text)
{
    for (QWebSocket* client : std::as_const(m_clients))
        client->sendTextMessage(text);
}

void HTWSServer::onNewConnection()
{
    while (QWebSocket* client = m_wsServer->nextPendingConnection()) {
        connect(client, &QWebSocket::textMessageReceived, this, &HTWSServer::processTextMessage);
        connect(client, &QWebSocket::binaryMessageReceived, this, &HTWSServer::processBinaryMessage);
        connect(client, &QWebSocket::disconnected, this, &HTWSServer::socketDisconnected);
        m_clients.insert(client);
    }
}

void HTWSServer::processTextMessage(const QString& message)
{
    auto* client = qobject_cast<QWebSocket*>(sender());
    if (!client || !m_clients.contains(client))
        return;
    m_queue.enqueue({ client, m_messageCounter, message });
    ++m_messageCounter;
}

void HTWSServer::processBinaryMessage(const QByteArray& message)
{
    if (auto* client = qobject_cast<QWebSocket*>(sender()))
        client->sendBinaryMessage(message);
}

void HTWSServer::socketDisconnected()
{
    auto* client = qobject_cast<QWebSocket*>(sender());
    if (!client || !m_clients.remove(client))
        return;
    client->deleteLater();
}

void HTWSServer::onSslErrors(const QList<QSslError>&)
{
    kxDebug() << QStringLiteral("Ssl errors occurred");
}

void HTWSServer::processQueue()
{
    while (!m_queue.isEmpty()) {
        const PendingMessage entry = m_queue.dequeue();
        // A client that left since its message arrived gets nothing.
        if (!entry.client || !m_clients.contains(entry.client.data()))
            continue;
        const QString reply = compactJson(processAnyMessage(entry.text, QByteArray()));
        if (entry.client && m_clients.contains(entry.client.data()))
            entry.client->sendTextMessage(reply);
    }
}

QHttpServerResponse HTWSServer::handleHttpRequest(const QHttpServerRequest& request)
{
    QString path = request.url().toString(QUrl::FullyEncoded);
    // Only the scheme prefix goes: arguments may themselves hold addresses.
    if (path.startsWith(QLatin1String("http://"), Qt::CaseInsensitive))
        path.remove(0, 7);
    const qsizetype slash = path.indexOf(QLatin1Char('/'));
    if (slash >= 0)
        path.remove(0, slash + 1);

    QString resource = path;
    resource.remove(QLatin1Char('/'));
    resource = resource.toLower();
    resource = resource.left(resource.indexOf(QLatin1Char('?')));
    QMap<QString, QString> args = UrlArguments::parse(path);

    const bool namesFile = resource.contains(QLatin1Char('.'))
        || (resource.isEmpty() && QFileInfo::exists(m_folder + QStringLiteral("index.html")));
    if (namesFile) {
        const QString filePath = resource.isEmpty() ? QStringLiteral("index.html") : path;
        QByteArray content;
        QByteArray mimeType;
        if (readStaticFile(filePath, content, mimeType))
            return QHttpServerResponse(mimeType, content);
    }

    QJsonObject response;
    const bool result = processMessage(ReferrerHttp, resource, response, request.body(), args);
    response.insert(QStringLiteral("result"), result);
    response.insert(QStringLiteral("time"), timeText());
    const QJsonDocument::JsonFormat format =
        args.contains(QStringLiteral("pretty")) ? QJsonDocument::Indented : QJsonDocument::Compact;
    QHttpServerResponse reply(QByteArrayLiteral("application/json; charset=UTF-8"),
                              QJsonDocument(response).toJson(format));
    reply.setHeader(QByteArrayLiteral("Access-Control-Allow-Origin"), QByteArrayLiteral("*"));
    return reply;
}

bool HTWSServer::readStaticFile(const QString& path, QByteArray& content, QByteArray& mimeType) const
{
    const QString relative = QUrl::fromPercentEncoding(path.left(path.indexOf(QLatin1Char('?'))).toUtf8());
    const QString root = QDir::cleanPath(QFileInfo(m_folder).absoluteFilePath());
    const QString absolute = QDir::cleanPath(QFileInfo(m_folder + relative).absoluteFilePath());
    QFile file(absolute);
    // ".." must not lead out of the folder of pages.
    if (!absolute.startsWith(root + QLatin1Char('/')) || !QFileInfo(absolute).isFile()
        || !file.open(QIODevice::ReadOnly)) {
        kxDebug() << QStringLiteral("File does not exist or cannot be open: ") + absolute;
        return false;
    }
    content = file.readAll();
    if (relative.endsWith(QLatin1String(".js"), Qt::CaseInsensitive))
        mimeType = QByteArrayLiteral("application/javascript");
    else
        mimeType = mimeDatabase().mimeTypeForFile(absolute, QMimeDatabase::MatchExtension).name().toUtf8();
    return true;
}
