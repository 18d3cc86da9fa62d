#include "app/InstanceClient.h"

#include "app/AppHelper.h"
#include "app/InstanceRequest.h"
#include "services/GlobalConsole.h"

#include <QDeadlineTimer>
#include <QLocalSocket>

#ifdef Q_OS_LINUX
#include <sys/socket.h>
#include <unistd.h>
#endif

bool InstanceClient::connectTo(QLocalSocket& socket, const QString& appName)
{
    socket.connectToServer(AppHelper::instanceSocketName(appName));
    if (!socket.waitForConnected(ConnectTimeoutMs))
        return false;
    if (peerIsSameUser(socket))
        return true;
    GlobalConsole::writeLine(QStringLiteral("The instance socket of %1 belongs to another user; ignored it.")
                                 .arg(appName));
    socket.abort();
    return false;
}

InstanceClient::Answer InstanceClient::send(const QString& appName, const InstanceRequest& request,
                                            int answerTimeoutMs)
{
    Answer answer;
    QLocalSocket socket;
    answer.reached = connectTo(socket, appName);
    if (!answer.reached)
        return answer;
    socket.write(request.toLine());
    const bool written = socket.bytesToWrite() == 0 || socket.waitForBytesWritten(answerTimeoutMs);
    const QByteArray line = written ? readAnswerLine(socket, answerTimeoutMs) : QByteArray();
    answer.answered = line.endsWith('\n');
    answer.ok = answer.answered && InstanceRequest::answerIsOk(line, &answer.error);
    if (!answer.answered)
        answer.error = QStringLiteral("no answer");
    socket.abort();
    return answer;
}

QByteArray InstanceClient::readAnswerLine(QLocalSocket& socket, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!socket.canReadLine() && socket.bytesAvailable() <= InstanceRequest::MaxLineBytes) {
        if (deadline.hasExpired() || !socket.waitForReadyRead(int(deadline.remainingTime())))
            return QByteArray();
    }
    return socket.readLine(InstanceRequest::MaxLineBytes + 1);
}

bool InstanceClient::isRunning(const QString& appName)
{
    QLocalSocket socket;
    const bool running = connectTo(socket, appName);
    socket.abort();
    return running;
}

bool InstanceClient::peerIsSameUser(const QLocalSocket& socket)
{
#ifdef Q_OS_LINUX
    ucred credentials{};
    socklen_t length = sizeof credentials;
    if (::getsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0)
        return false;
    return credentials.uid == ::getuid();
#else
    Q_UNUSED(socket);
    return true;
#endif
}
