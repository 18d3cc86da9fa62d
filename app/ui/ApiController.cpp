#include "app/ui/ApiController.h"

#include "app/OrvexModel.h"
#include "server/OrvexDataServer.h"
#include "server/StaticWebFolder.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

#include <QFileInfo>
#include <QHash>
#include <QWebSocket>

ApiController::ApiController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_requests(RequestCapacity)
{
    m_batch.setSingleShot(true);
    m_batch.setInterval(BatchMs);
    connect(&m_batch, &QTimer::timeout, this, &ApiController::flush);
    connect(model->settings(), &OrvexSettings::APIEnabledChanged, this, &ApiController::onEnabledChanged);
    connect(model->settings(), &OrvexSettings::APIKeyChanged, this, &ApiController::keyChanged);
    watch(model->dataServer());
}

void ApiController::watch(OrvexDataServer* server)
{
    if (!server || server == m_server)
        return;
    m_server = server;
    connect(server, &HTWSServer::clientConnected, this, [this](QWebSocket* client) {
        m_clients.add(client, HTWSServer::peerText(client->peerAddress(), client->peerPort()));
    });
    connect(server, &HTWSServer::clientDisconnected, this, [this](QWebSocket* client) { m_clients.remove(client); });
    connect(server, &HTWSServer::requestAnswered, this, &ApiController::onRequest);
    for (QWebSocket* client : server->clients())
        m_clients.add(client, HTWSServer::peerText(client->peerAddress(), client->peerPort()));
    Q_EMIT stateChanged();
}

bool ApiController::enabled() const
{
    return m_model->settings()->getAPIEnabled();
}

void ApiController::setEnabled(bool on)
{
    m_model->settings()->setAPIEnabled(on);
}

// Here or on the settings screen: turning on starts the interface now.
void ApiController::onEnabledChanged()
{
    Q_EMIT stateChanged();
    if (!enabled()) {
        setMessage(running() ? tr("The interface closes when the program starts next") : QString());
        return;
    }
    if (running()) {
        setMessage(QString());
        return;
    }
    QString error;
    if (!m_model->startDataServer(0, error)) {
        GlobalConsole::writeLine(error);
        setMessage(error);
        return;
    }
    setMessage(QString());
    watch(m_model->dataServer());
}

bool ApiController::running() const
{
    return m_server && m_server->isHttpListening();
}

int ApiController::httpPort() const
{
    return m_server ? m_server->portHTTP() : m_model->settings()->getAPIPort();
}

int ApiController::webSocketPort() const
{
    return m_server ? m_server->portWebSocket() : 1336;
}

bool ApiController::webSocketListening() const
{
    return m_server && m_server->isWebSocketListening();
}

QString ApiController::httpAddress() const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(httpPort());
}

QString ApiController::webSocketAddress() const
{
    return QStringLiteral("ws://127.0.0.1:%1").arg(webSocketPort());
}

bool ApiController::hasKey() const
{
    return !key().isEmpty();
}

QString ApiController::key() const
{
    return m_model->settings()->getAPIKey();
}

QUrl ApiController::referenceUrl() const
{
    const QString page = StaticWebFolder::defaultFolder() + QStringLiteral("index.html");
    if (running())
        return QUrl(httpAddress());
    return QFileInfo::exists(page) ? QUrl::fromLocalFile(page) : QUrl();
}

bool ApiController::openReferenceInBrowser()
{
    const QUrl url = referenceUrl();
    if (url.isEmpty()) {
        setMessage(tr("The reference page is made when the interface starts"));
        return false;
    }
    if (!m_model->openLink(url)) {
        setMessage(tr("No browser could open %1").arg(url.toString()));
        return false;
    }
    setMessage(QString());
    return true;
}

void ApiController::onRequest(const QString& client, const QString& command, bool result, const QString& error)
{
    m_pending.append({ QDateTime::currentDateTime(), client, command, result, error });
    // A flood between two batches keeps only what the list can show.
    if (m_pending.size() > 2 * RequestCapacity)
        m_pending.remove(0, m_pending.size() - RequestCapacity);
    if (!m_batch.isActive())
        m_batch.start();
}

void ApiController::flush()
{
    m_batch.stop();
    if (m_pending.isEmpty())
        return;
    const QList<ApiRequest> batch = std::exchange(m_pending, {});
    QHash<QString, int> perClient;
    for (const ApiRequest& request : batch)
        ++perClient[request.client];
    for (auto it = perClient.cbegin(); it != perClient.cend(); ++it)
        m_clients.countRequests(it.key(), it.value());
    m_requests.add(batch);
}

void ApiController::setMessage(const QString& text)
{
    if (text == m_message)
        return;
    m_message = text;
    Q_EMIT messageChanged();
}
