#pragma once

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcessEnvironment>
#include <QTcpServer>
#include <QTemporaryDir>

// Helpers for tests that run the real program: an environment that keeps its settings and
// files away from the user's, a free port for its command interface, and an HTTP client.
namespace ProgramUnderTest {

inline QProcessEnvironment isolatedEnvironment(const QTemporaryDir& home,
                                               const QString& platform = QStringLiteral("offscreen"))
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home.path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("TMPDIR"), home.path()); // the single-instance socket lives here
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    return env;
}

// A local port free right now; the program is started on it next.
inline int freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// The body of a GET, empty when the request fails.
inline QByteArray httpGet(const QString& url)
{
    QNetworkAccessManager manager;
    QNetworkReply* reply = manager.get(QNetworkRequest(QUrl(url)));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const QByteArray body = reply->readAll();
    delete reply;
    return body;
}

} // namespace ProgramUnderTest
