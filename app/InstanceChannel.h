#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

// The running instance's side of the per-user instance channel: listens on the application's
// socket and reports what a second instance or a sibling application asks for.
class InstanceChannel : public QObject
{
    Q_OBJECT
public:
    // A peer that connects and never completes its line is dropped after this.
    static constexpr int RequestTimeoutMs = 5000;

    explicit InstanceChannel(const QString& appName, QObject* parent = nullptr);

    // Removes a socket file left by a crashed instance first. False plus a console line when
    // it cannot listen, among others when a live instance already owns the socket.
    bool listen();
    bool isListening() const;

Q_SIGNALS:
    void activationRequested(QStringList arguments); // a second instance started: raise the window
    void closeRequested();                           // a sibling of the maker asked us to close

private:
    bool listenOverStaleSocket();
    void acceptConnections();
    void readRequest(QLocalSocket* socket);
    void answer(QLocalSocket* socket, const QByteArray& line);

    QString m_appName;
    QLocalServer* m_server;
};
