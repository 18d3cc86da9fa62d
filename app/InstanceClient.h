#pragma once

#include <QString>

class InstanceRequest;
class QLocalSocket;

// The asking side of the per-user instance channel: blocking and bounded, so that it works
// before any application object or event loop exists.
class InstanceClient
{
public:
    struct Answer
    {
        bool reached = false;  // someone of our user listens on the application's socket
        bool answered = false; // a full answer line arrived in time
        bool ok = false;       // ... and it was {"ok":true}
        QString error;         // the peer's reason or what went wrong
    };

    static constexpr int ConnectTimeoutMs = 1000;

    InstanceClient() = delete;

    static Answer send(const QString& appName, const InstanceRequest& request, int answerTimeoutMs);
    // A socket file left behind by a crashed process refuses connections: not running.
    static bool isRunning(const QString& appName);
    // Both sides accept only a peer of the same user, whatever the socket file's permissions.
    static bool peerIsSameUser(const QLocalSocket& socket);

private:
    static bool connectTo(QLocalSocket& socket, const QString& appName);
    static QByteArray readAnswerLine(QLocalSocket& socket, int timeoutMs);
};
