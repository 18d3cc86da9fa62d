#pragma once

#include "app/ui/ApiClientModel.h"
#include "app/ui/ApiRequestModel.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

class OrvexDataServer;
class OrvexModel;
class QWebSocket;

// The command interface as the API screen shows it: on or off, its ports and key, the
// WebSocket clients connected now, the last requests, and the command reference page.
class ApiController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY stateChanged)
    Q_PROPERTY(bool running READ running NOTIFY stateChanged)
    Q_PROPERTY(int httpPort READ httpPort NOTIFY stateChanged)
    Q_PROPERTY(int webSocketPort READ webSocketPort NOTIFY stateChanged)
    Q_PROPERTY(bool webSocketListening READ webSocketListening NOTIFY stateChanged)
    Q_PROPERTY(QString httpAddress READ httpAddress NOTIFY stateChanged)
    Q_PROPERTY(QString webSocketAddress READ webSocketAddress NOTIFY stateChanged)
    Q_PROPERTY(bool hasKey READ hasKey NOTIFY keyChanged)
    Q_PROPERTY(QString key READ key NOTIFY keyChanged)
    Q_PROPERTY(QUrl referenceUrl READ referenceUrl NOTIFY stateChanged)
    Q_PROPERTY(ApiClientModel* clients READ clients CONSTANT)
    Q_PROPERTY(ApiRequestModel* requests READ requests CONSTANT)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    static constexpr int RequestCapacity = 200;
    static constexpr int BatchMs = 100;

    explicit ApiController(OrvexModel* model, QObject* parent = nullptr);

    // The setting; turning it on starts the interface at once when it is not running. Turning
    // it off takes effect at the next start (the HTTP side cannot stop while the program runs).
    bool enabled() const;
    void setEnabled(bool on);
    bool running() const;
    int httpPort() const;
    int webSocketPort() const;
    bool webSocketListening() const;
    QString httpAddress() const;
    QString webSocketAddress() const;
    bool hasKey() const;
    QString key() const;
    // The reference page as the interface serves it; the file itself while it does not run.
    QUrl referenceUrl() const;
    ApiClientModel* clients() { return &m_clients; }
    ApiRequestModel* requests() { return &m_requests; }
    QString message() const { return m_message; }

    // For when the window cannot show web pages.
    Q_INVOKABLE bool openReferenceInBrowser();
    // Adds the requests waiting now instead of after the batch delay.
    Q_INVOKABLE void flush();

Q_SIGNALS:
    void stateChanged();
    void keyChanged();
    void messageChanged();

private:
    void watch(OrvexDataServer* server);
    void onEnabledChanged();
    void onRequest(const QString& client, const QString& command, bool result, const QString& error);
    void setMessage(const QString& text);

    OrvexModel* m_model;
    QPointer<OrvexDataServer> m_server;
    ApiClientModel m_clients;
    ApiRequestModel m_requests;
    QList<ApiRequest> m_pending;
    QTimer m_batch;
    QString m_message;
};
