#pragma once

#include "server/Referrer.h"

#include <QByteArray>
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
class HTWSServer : public QObject
{
    Q_OBJECT
public:
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

    static QString timeText();

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
    };

    void processQueue();
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
};
