#include "server/HTWSServer.h"

#include "server/HTWSCommand.h"
#include "server/UrlArguments.h"
#include "server/WebSocketMessage.h"
#include "services/GlobalConsoleWriter.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QMimeDatabase>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>

#include <memory>

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

const QString WrongKeyText = QStringLiteral("Missing or wrong API key");

QString tooLargeText(qint64 limit)
{
    return QStringLiteral("Message too large: at most %1 bytes").arg(limit);
}

// Counted without converting: the message may be megabytes long.
qint64 utf8Size(QStringView text)
{
    qint64 size = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < 0x80)
            size += 1;
        else if (c < 0x800)
            size += 2;
        else if (QChar::isHighSurrogate(c) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode())) {
            size += 4;
            ++i;
        } else
            size += 3;
    }
    return size;
}

QJsonObject refusalReply(const QString& error)
{
    return { { QStringLiteral("result"), false },
             { QStringLiteral("error"), error },
             { QStringLiteral("time"), HTWSServer::timeText() } };
}

QByteArray keyHash(const QByteArray& key)
{
    return QCryptographicHash::hash(key, QCryptographicHash::Sha256);
}

// QHttpServer reads a whole request before any handler sees it, so the body limit alone cannot
// stop a client from filling memory: a connection that sends more than `limit` bytes without
// being answered is dropped.
class GuardedTcpServer : public QTcpServer
{
public:
    GuardedTcpServer(qint64 limit, QObject* parent)
        : QTcpServer(parent)
        , m_limit(limit)
    {
    }

    QTcpSocket* nextPendingConnection() override
    {
        QTcpSocket* socket = QTcpServer::nextPendingConnection();
        if (!socket)
            return nullptr;
        auto unanswered = std::make_shared<qint64>(0);
        // Connected before the HTTP server's own reader, so bytesAvailable() is the new data.
        connect(socket, &QTcpSocket::readyRead, socket, [socket, unanswered, limit = m_limit] {
            *unanswered += socket->bytesAvailable();
            if (*unanswered > limit && socket->state() == QAbstractSocket::ConnectedState) {
                kxDebug() << QStringLiteral("HTTP connection closed: more than %1 bytes without an answer").arg(limit);
                // Not from inside the emission the HTTP server is still to receive.
                QMetaObject::invokeMethod(socket, &QTcpSocket::abort, Qt::QueuedConnection);
            }
        });
        connect(socket, &QTcpSocket::bytesWritten, socket, [unanswered] { *unanswered = 0; });
        return socket;
    }

private:
    qint64 m_limit;
};

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
    auto* tcpServer = new GuardedTcpServer(MaxUnansweredHttpBytes, m_httpServer);
    m_httpListening = isValidPort(httpPort) && tcpServer->listen(QHostAddress::Any, quint16(httpPort));
    if (m_httpListening) {
        m_httpServer->bind(tcpServer);
        m_httpPort = tcpServer->serverPort();
    } else
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
        // A coarse timer may fire up to 5 % late, which a client waiting for each reply feels.
        m_timer->setTimerType(Qt::PreciseTimer);
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
    const QJsonObject reply = processAnyMessage(message, QByteArray());
    announce(QString(), reply);
    return compactJson(reply);
}

void HTWSServer::announce(const QString& client, const QJsonObject& reply)
{
    Q_EMIT requestAnswered(client, reply.value(QStringLiteral("command")).toString(),
                           reply.value(QStringLiteral("result")).toBool(), reply.value(QStringLiteral("error")).toString());
}

QString HTWSServer::peerText(const QHostAddress& address, quint16 port)
{
    bool isV4 = false;
    const quint32 v4 = address.toIPv4Address(&isV4);
    const QString host = isV4 ? QHostAddress(v4).toString() : address.toString();
    return port ? host + QLatin1Char(':') + QString::number(port) : host;
}

void HTWSServer::setApiKey(const QString& key)
{
    m_apiKeyHash = key.isEmpty() ? QByteArray() : keyHash(key.toUtf8());
    for (ClientBacklog& backlog : m_backlog)
        backlog.authorised = false;
}

bool HTWSServer::keyMatches(const QByteArray& candidate) const
{
    // Hashes have one length and are compared without an early exit: the time taken tells
    // nothing about how much of the key was right.
    const QByteArray hash = keyHash(candidate);
    unsigned char difference = 0;
    for (qsizetype i = 0; i < hash.size(); ++i)
        difference |= static_cast<unsigned char>(hash[i] ^ m_apiKeyHash[i]);
    return difference == 0;
}

bool HTWSServer::acceptsKey(QMap<QString, QString>& args, const QByteArray& header) const
{
    if (!hasApiKey())
        return true;
    bool accepted = !header.isEmpty() && keyMatches(header);
    for (auto it = args.begin(); it != args.end();) {
        const QString name = it.key().toLower();
        if (name == QLatin1String("apikey")) {
            accepted = keyMatches(it.value().toUtf8()) || accepted;
            it = args.erase(it);
        } else if (name == QLatin1String("key") && keyMatches(it.value().toUtf8())) {
            accepted = true;
            it = args.erase(it);
        } else {
            ++it;
        }
    }
    return accepted;
}

QString HTWSServer::timeText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd-hh.mm.ss.zzz"));
}

QJsonObject HTWSServer::processAnyMessage(const QString& message, const QByteArray& body)
{
    return buildReply(message, body, nullptr);
}

QJsonObject HTWSServer::buildReply(const QString& message, const QByteArray& body, QWebSocket* client)
{
    QJsonObject response;
    WebSocketMessage parsed = WebSocketMessage::parse(message);
    QString& command = parsed.command;
    QMap<QString, QString>& args = parsed.args;
    if (!parsed.jsonError.isEmpty())
        response.insert(QStringLiteral("jsonError"), parsed.jsonError);

    if (command.isEmpty()) {
        response.insert(QStringLiteral("error"),
                        QStringLiteral("Please specify a command (e.g. '{\"command\":\"listDevices\"}')"));
        response.insert(QStringLiteral("result"), false);
    } else if (client && !acceptsKey(args, QByteArray())) {
        response.insert(QStringLiteral("command"), command.toLower());
        response.insert(QStringLiteral("error"), WrongKeyText);
        response.insert(QStringLiteral("result"), false);
    } else {
        if (client && hasApiKey())
            m_backlog[client].authorised = true;
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
    for (QWebSocket* client : std::as_const(m_clients)) {
        if (!hasApiKey() || m_backlog.value(client).authorised)
            client->sendTextMessage(text);
    }
}

void HTWSServer::onNewConnection()
{
    while (QWebSocket* client = m_wsServer->nextPendingConnection()) {
        connect(client, &QWebSocket::textMessageReceived, this, &HTWSServer::processTextMessage);
        connect(client, &QWebSocket::binaryMessageReceived, this, &HTWSServer::processBinaryMessage);
        connect(client, &QWebSocket::disconnected, this, &HTWSServer::socketDisconnected);
        client->setMaxAllowedIncomingMessageSize(quint64(MaxReceivedMessageBytes));
        client->setMaxAllowedIncomingFrameSize(quint64(MaxReceivedMessageBytes));
        m_clients.insert(client);
        m_backlog.insert(client, {});
        Q_EMIT clientConnected(client);
    }
}

void HTWSServer::processTextMessage(const QString& message)
{
    auto* client = qobject_cast<QWebSocket*>(sender());
    if (!client || !m_clients.contains(client))
        return;
    ClientBacklog& backlog = m_backlog[client];
    const qint64 bytes = utf8Size(message);
    // Refused messages are answered through the queue too, so replies keep arrival order.
    const bool full = backlog.messages >= MaxPendingMessages || backlog.bytes + bytes > MaxPendingBytes
        || client->bytesToWrite() > MaxUnsentBytes;
    if (full) {
        if (!backlog.overflowReported) {
            backlog.overflowReported = true;
            enqueueRefusal(client, QStringLiteral("Too many pending messages (at most %1 per client): message refused")
                                       .arg(MaxPendingMessages));
        }
        return;
    }
    backlog.overflowReported = false;
    if (bytes > MaxMessageBytes) {
        enqueueRefusal(client, tooLargeText(MaxMessageBytes));
        return;
    }
    ++backlog.messages;
    backlog.bytes += bytes;
    m_queue.enqueue({ client, m_messageCounter, message, bytes, QString() });
    ++m_messageCounter;
}

void HTWSServer::enqueueRefusal(QWebSocket* client, const QString& error)
{
    ++m_backlog[client].messages;
    m_queue.enqueue({ client, m_messageCounter, QString(), 0, error });
    ++m_messageCounter;
}

void HTWSServer::processBinaryMessage(const QByteArray& message)
{
    auto* client = qobject_cast<QWebSocket*>(sender());
    // The echo is skipped for a client that does not read what it gets.
    if (!client || client->bytesToWrite() > MaxUnsentBytes)
        return;
    if (message.size() > MaxMessageBytes)
        client->sendTextMessage(compactJson(refusalReply(tooLargeText(MaxMessageBytes))));
    else
        client->sendBinaryMessage(message);
}

void HTWSServer::socketDisconnected()
{
    auto* client = qobject_cast<QWebSocket*>(sender());
    if (!client || !m_clients.remove(client))
        return;
    m_backlog.remove(client);
    Q_EMIT clientDisconnected(client);
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
        ClientBacklog& backlog = m_backlog[entry.client.data()];
        --backlog.messages;
        backlog.bytes -= entry.bytes;
        const QJsonObject reply = entry.refusal.isEmpty() ? buildReply(entry.text, QByteArray(), entry.client)
                                                          : refusalReply(entry.refusal);
        if (entry.client)
            announce(peerText(entry.client->peerAddress(), entry.client->peerPort()), reply);
        if (entry.client && m_clients.contains(entry.client.data()))
            entry.client->sendTextMessage(compactJson(reply));
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
    bool result = false;
    if (request.body().size() > MaxRequestBodyBytes) {
        response.insert(QStringLiteral("command"), resource);
        response.insert(QStringLiteral("error"),
                        QStringLiteral("Request body too large: at most %1 bytes").arg(MaxRequestBodyBytes));
    } else if (!acceptsKey(args, request.value(QByteArrayLiteral("X-Api-Key")))) {
        response.insert(QStringLiteral("command"), resource);
        response.insert(QStringLiteral("error"), WrongKeyText);
    } else {
        result = processMessage(ReferrerHttp, resource, response, request.body(), args);
    }
    response.insert(QStringLiteral("result"), result);
    response.insert(QStringLiteral("time"), timeText());
    announce(peerText(request.remoteAddress(), 0), response);
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
