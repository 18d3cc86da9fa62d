#include "app/InstanceChannel.h"

#include "app/AppHelper.h"
#include "app/InstanceClient.h"
#include "app/InstanceRequest.h"
#include "services/GlobalConsole.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

InstanceChannel::InstanceChannel(const QString& appName, QObject* parent)
    : QObject(parent)
    , m_appName(appName)
    , m_server(new QLocalServer(this))
{
    connect(m_server, &QLocalServer::newConnection, this, &InstanceChannel::acceptConnections);
}

bool InstanceChannel::isListening() const
{
    return m_server->isListening();
}

bool InstanceChannel::listen()
{
    if (m_server->isListening())
        return true;
    if (m_appName.isEmpty()) {
        GlobalConsole::writeLine(QStringLiteral("Instance channel: no application name to listen for."));
        return false;
    }
    // Permissions come from the umask; every connection is checked for our user instead,
    // because Qt's access options replace an existing socket file instead of failing.
    if (m_server->listen(AppHelper::instanceSocketName(m_appName)) || listenOverStaleSocket())
        return true;
    GlobalConsole::writeLine(QStringLiteral("Instance channel of %1 cannot listen: %2")
                                 .arg(m_appName, m_server->errorString()));
    return false;
}

bool InstanceChannel::listenOverStaleSocket()
{
    if (m_server->serverError() != QAbstractSocket::AddressInUseError)
        return false;
    if (InstanceClient::isRunning(m_appName)) {
        GlobalConsole::writeLine(QStringLiteral("Another instance of %1 started at the same time and owns "
                                                "the instance channel.").arg(m_appName));
        return false;
    }
    const QString name = AppHelper::instanceSocketName(m_appName);
    QLocalServer::removeServer(name);
    GlobalConsole::writeLine(QStringLiteral("Removed the instance socket left by a previous run: %1").arg(name));
    return m_server->listen(name);
}

void InstanceChannel::acceptConnections()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!InstanceClient::peerIsSameUser(*socket)) {
            GlobalConsole::writeLine(QStringLiteral("Instance channel: refused a connection of another user."));
            socket->abort();
            continue;
        }
        // Bounded: an oversized line fills the buffer and is dropped instead of growing it.
        socket->setReadBufferSize(InstanceRequest::MaxLineBytes + 1);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
        QTimer::singleShot(RequestTimeoutMs, socket, [socket] { socket->abort(); });
    }
}

void InstanceChannel::readRequest(QLocalSocket* socket)
{
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > InstanceRequest::MaxLineBytes) {
            GlobalConsole::writeLine(QStringLiteral("Instance channel: dropped an oversized request."));
            socket->abort();
        }
        return;
    }
    const QByteArray line = socket->readLine(InstanceRequest::MaxLineBytes + 1);
    // One request per connection; whatever follows is not read.
    disconnect(socket, &QLocalSocket::readyRead, this, nullptr);
    if (line.endsWith('\n')) {
        answer(socket, line);
        return;
    }
    GlobalConsole::writeLine(QStringLiteral("Instance channel: dropped an oversized request."));
    socket->abort();
}

void InstanceChannel::answer(QLocalSocket* socket, const QByteArray& line)
{
    const InstanceRequest request = InstanceRequest::fromLine(line);
    socket->write(InstanceRequest::answerLine(request.isValid(), request.error()));
    socket->flush();
    socket->disconnectFromServer();
    if (!request.isValid()) {
        GlobalConsole::writeLine(QStringLiteral("Instance channel: ignored a malformed request (%1).")
                                     .arg(request.error()));
    } else if (request.kind() == InstanceRequest::Kind::Activate) {
        Q_EMIT activationRequested(request.arguments());
    } else {
        GlobalConsole::writeLine(QStringLiteral("%1 asked %2 to close.")
                                     .arg(request.from().isEmpty() ? QStringLiteral("A sibling application")
                                                                   : request.from().left(64), m_appName));
        Q_EMIT closeRequested();
    }
}
