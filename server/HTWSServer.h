#pragma once

#include "server/Referrer.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QSet>
#include <QSslError>
#include <QString>

class HTWSCommand;
class QHostAddress;
class QHttpServer;
class QHttpServerRequest;
class QHttpServerResponse;
class QTimer;
class QWebSocket;
class QWebSocketServer;

// The external command interface: one HTTP port and one WebSocket port that turn each request
// into a command word plus string arguments, run the registered command and answer one JSON
// object. HTTP also serves the static pages of `folder`.
//
// HTTP answers from construction on; start() adds the WebSocket side. WebSocket text messages
// are only queued when they arrive and are run by a 30 ms timer, in arrival order, so every
// command runs on this object's thread.
//
// The ports listen on every interface, so input is bounded (sizes are UTF-8 bytes as received):
// an oversized HTTP body or WebSocket message, or a client whose queue is full, gets a refusal
// reply and nothing runs; a connection that goes far beyond the limits is closed. An optional API
// key (empty = open) must accompany every command.
class HTWSServer : public QObject
{
    Q_OBJECT
public:
    // AddFileToRecord carries whole files in the body, so HTTP bodies get room for a few megabytes
    // of base64.
    static constexpr qint64 MaxRequestBodyBytes = 16 * 1024 * 1024;
    // Commands are short texts; 1 MiB leaves room for SetSettings values and Records "set".
    static constexpr qint64 MaxMessageBytes = 1024 * 1024;
    // Up to here a too-large message is read and refused with a reply; beyond, the connection
    // is closed (WebSocket close code 1009, HTTP connection dropped) so memory stays bounded.
    static constexpr qint64 MaxReceivedMessageBytes = 4 * MaxMessageBytes;
    static constexpr qint64 MaxUnansweredHttpBytes = 2 * MaxRequestBodyBytes;
    // Per WebSocket client: messages waiting for the 30 ms drain, their text, and replies the
    // client has not read yet. 1000 is ~30 s of a client polling every 30 ms.
    static constexpr int MaxPendingMessages = 1000;
    static constexpr qint64 MaxPendingBytes = 16 * 1024 * 1024;
    static constexpr qint64 MaxUnsentBytes = 16 * 1024 * 1024;

    // A port of 0 binds a free port; portHTTP()/portWebSocket() then tell which.
    HTWSServer(int httpPort, int wsPort, const QString& folder, const QString& wsServerName,
               QObject* parent = nullptr);
    ~HTWSServer() override;

    void start();
    void stop();

    int portHTTP() const { return m_httpPort; }
    int portWebSocket() const { return m_wsPort; }
    bool isHttpListening() const { return m_httpListening; }
    bool isWebSocketListening() const;

    // Adds a command to the list; call updateCommandReference() once all are added.
    void addCommand(HTWSCommand* command);
    QList<HTWSCommand*> getCommands() const { return m_commands; }
    // Rebuilds the name -> command map; a later command with the same name wins.
    void updateCommandReference();

    // Runs one message as if it came over WebSocket; the compact JSON reply.
    QString processManualMessage(const QString& message);

    // An empty key leaves the interface open. Otherwise an HTTP command needs the header
    // X-Api-Key or the argument "key" or "apikey" equal to it, a WebSocket message the member or
    // argument "key" or "apikey"; the matching argument is removed before the command runs
    // (a "key" that does not match stays: GetSettings/SetSettings use that name). Static files
    // stay readable without it.
    void setApiKey(const QString& key);
    bool hasApiKey() const { return !m_apiKeyHash.isEmpty(); }

    static QString timeText();
    // "address:port" of a peer, IPv4 addresses without their IPv6 mapping.
    static QString peerText(const QHostAddress& address, quint16 port);
    QList<QWebSocket*> clients() const { return m_clients.values(); }

Q_SIGNALS:
    // For views of the interface; commands run the same whether anyone listens.
    void clientConnected(QWebSocket* client);
    void clientDisconnected(QWebSocket* client);
    // After every command request: the peer ("" for the program's own messages), the command
    // word as looked up, its result and error text.
    void requestAnswered(const QString& client, const QString& command, bool result, const QString& error);

protected:
    // Parses a WebSocket-style message (JSON object, bare word or word?key=value&...) and
    // returns the whole reply envelope.
    QJsonObject processAnyMessage(const QString& message, const QByteArray& body);
    // Lower-cases `command`, runs it and returns its success; "error" when it is unknown.
    bool processMessage(Referrer referrer, QString& command, QJsonObject& response, QByteArray body,
                        QMap<QString, QString>& args);

    const QSet<QWebSocket*>& getClients() const { return m_clients; }
    void sendTextToAllClients(const QString& text);

protected Q_SLOTS:
    void onNewConnection();
    void processTextMessage(const QString& message);
    void processBinaryMessage(const QByteArray& message);
    void socketDisconnected();
    void onSslErrors(const QList<QSslError>& errors);

private:
    struct PendingMessage
    {
        QPointer<QWebSocket> client;
        int sequence = 0;
        QString text;
        qint64 bytes = 0;
        // Sent instead of running text (the message was refused); keeps replies in order.
        QString refusal;
    };

    struct ClientBacklog
    {
        int messages = 0;
        qint64 bytes = 0;
        bool overflowReported = false; // one refusal per run of refused messages
        bool authorised = false;       // has sent the API key; pushes go only to such clients
    };

    void processQueue();
    void enqueueRefusal(QWebSocket* client, const QString& error);
    QJsonObject buildReply(const QString& message, const QByteArray& body, QWebSocket* client);
    void announce(const QString& client, const QJsonObject& reply);
    // True when no key is set or the request carries it; strips the key arguments.
    bool acceptsKey(QMap<QString, QString>& args, const QByteArray& header) const;
    bool keyMatches(const QByteArray& candidate) const;
    QHttpServerResponse handleHttpRequest(const QHttpServerRequest& request);
    // False (and a console line) when the file is missing, unreadable or outside the folder.
    bool readStaticFile(const QString& path, QByteArray& content, QByteArray& mimeType) const;

    QString m_spare;
    QList<HTWSCommand*> m_commands;
    QWebSocketServer* m_wsServer = nullptr;
    QSet<QWebSocket*> m_clients;
    QQueue<PendingMessage> m_queue;
    QTimer* m_timer = nullptr;
    QHttpServer* m_httpServer = nullptr;
    int m_messageCounter = 0;
    QMap<QString, HTWSCommand*> m_commandMap;
    int m_wsPort = 1336;
    int m_httpPort = 2336;
    QString m_folder;
    bool m_httpListening = false;
    QHash<QWebSocket*, ClientBacklog> m_backlog;
    QByteArray m_apiKeyHash; // SHA-256 of the key; empty when open
};
