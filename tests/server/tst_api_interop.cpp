// The command interface of the running program, driven by clients we did not write: curl and
// the python websockets package (api_client_reference.py), MNE for the recorded EDF, wrk for
// HTTP load, many asyncio WebSocket clients (api_load.py) and a headless browser running the
// reference page. One program serves every case in turn; "close" ends it last.
#include "RegisteredCommands.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int webSocketPort = 1336;

int freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// Runs a program to its end and returns its standard output; stderr goes to the test log unless
// the tool is known to be chatty there.
QByteArray runTool(const QString& program, const QStringList& arguments, int timeoutMs, int* exitCode = nullptr,
                   bool quiet = false)
{
    QProcess process;
    if (quiet)
        process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        qWarning("%s timed out", qPrintable(program));
    }
    const QByteArray errors = process.readAllStandardError();
    if (!errors.trimmed().isEmpty())
        qWarning("%s: %s", qPrintable(QFileInfo(program).fileName()), errors.right(2000).constData());
    if (exitCode)
        *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAllStandardOutput();
}

} // namespace

class TestApiInterop : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QProcess m_program;
    int m_httpPort = 0;
    QSet<QString> m_covered;

    QString address(const QString& path = QString()) const
    {
        return QStringLiteral("http://127.0.0.1:%1/").arg(m_httpPort) + path;
    }

    QByteArray curl(const QString& path) const
    {
        return runTool(QStringLiteral("curl"), { "-s", "--max-time", "5", address(path) }, 10000);
    }

    // One section of the reference client; every failed check it reports fails the test.
    QJsonObject runSection(const QString& section)
    {
        const QByteArray out = runTool(QStringLiteral(ORVEX_REFERENCE_PYTHON),
                                       { QStringLiteral(ORVEX_TEST_DIR "/api_client_reference.py"),
                                         QString::number(m_httpPort), QString::number(webSocketPort), section,
                                         m_home.path() },
                                       180000);
        const QJsonObject report = QJsonDocument::fromJson(out).object();
        for (const QJsonValue& command : report.value("covered").toArray())
            m_covered.insert(command.toString());
        return report;
    }

    void verifySection(const QString& section, int minimumChecks)
    {
        const QJsonObject report = runSection(section);
        QCOMPARE(report.value("section").toString(), section);
        const QJsonArray failures = report.value("failures").toArray();
        for (const QJsonValue& failure : failures)
            qWarning("%s", qPrintable(failure.toString()));
        QVERIFY2(failures.isEmpty(), qPrintable(failures.first().toString()));
        const int checks = report.value("checks").toInt();
        QVERIFY2(checks >= minimumChecks, qPrintable(QStringLiteral("only %1 checks ran").arg(checks)));
        QCOMPARE(m_program.state(), QProcess::Running);
    }

    QString runBrowser(const QString& url)
    {
        const QString browser = QStandardPaths::findExecutable(QStringLiteral("chromium"));
        if (browser.isEmpty())
            return QString();
        QTemporaryDir profile;
        return QString::fromUtf8(runTool(browser,
                                         { "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                                           "--no-first-run", "--disable-background-networking",
                                           "--disable-component-update", "--disable-sync",
                                           "--user-data-dir=" + profile.path(), "--virtual-time-budget=5000",
                                           "--dump-dom", url },
                                         90000, nullptr, true));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        {
            // A program of another run on the fixed WebSocket port would answer in our place.
            QTcpServer probe;
            QVERIFY2(probe.listen(QHostAddress::Any, webSocketPort), "port 1336 is in use");
        }
        m_httpPort = freePort();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), m_home.path());
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        m_program.setProcessEnvironment(env);
        m_program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_program.start(QStringLiteral(ORVEX_BINARY),
                        { "--headless", "--device", "generator", "--api-port", QString::number(m_httpPort) });
        QVERIFY(m_program.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(curl(QStringLiteral("currentDeviceInfo")).contains("\"frequency\""), 20000);
    }

    void cleanupTestCase()
    {
        if (m_program.state() != QProcess::NotRunning) {
            m_program.kill();
            m_program.waitForFinished();
        }
    }

    void replyEnvelopeOfEveryCommand() { verifySection(QStringLiteral("envelopes"), 300); }
    void errorTexts() { verifySection(QStringLiteral("errors"), 150); }
    void grabModeFlow() { verifySection(QStringLiteral("grab"), 40); }
    void recordFetchedAsBase64OpensInMne() { verifySection(QStringLiteral("record"), 80); }
    void webSocketRepliesInArrivalOrder() { verifySection(QStringLiteral("ordering"), 2); }
    void binaryMessagesEchoed() { verifySection(QStringLiteral("binary"), 4); }
    void corsHeaderAndPrettyJson() { verifySection(QStringLiteral("http"), 15); }

    // "#run=<command>" runs the command from the built page; its reply fills the console.
    void referencePageRunsACommandFromItsLink()
    {
        const QString dom = runBrowser(address(QStringLiteral("#run=listdevices")));
        if (dom.isNull())
            QSKIP("chromium is not installed");
        QCOMPARE(dom.count(QStringLiteral("class=\"command\"")), 54);
        QVERIFY2(dom.contains(QStringLiteral("id=\"console\" class=\"console\"")), "the console is shown");
        const qsizetype output = dom.indexOf(QStringLiteral("id=\"console-output\""));
        QVERIFY(output > 0);
        const QString console = dom.mid(output);
        QVERIFY2(console.contains(QStringLiteral("&gt; listdevices")), qPrintable(console.left(500)));
        QVERIFY(console.contains(QStringLiteral("\"command\": \"listdevices\"")));
        QVERIFY(console.contains(QStringLiteral("\"name\": \"GeneratorDevice\"")));

        const QString unknown = runBrowser(address(QStringLiteral("#run=nosuch")));
        QVERIFY(unknown.contains(QStringLiteral("Unknown command 'nosuch'")));
        QVERIFY(!unknown.contains(QStringLiteral("&gt; nosuch")));
    }

    void hundredWebSocketClientsAnsweredInOrder()
    {
        const QByteArray out = runTool(QStringLiteral(ORVEX_REFERENCE_PYTHON),
                                       { QStringLiteral(ORVEX_TEST_DIR "/api_load.py"), QString::number(m_httpPort),
                                         QString::number(webSocketPort), "100", "100" },
                                       300000);
        const QJsonObject report = QJsonDocument::fromJson(out).object();
        const QJsonArray failures = report.value("failures").toArray();
        QVERIFY2(failures.isEmpty(), qPrintable(failures.first().toString()));
        QCOMPARE(report.value("replies").toInt(), 100 * 100);
        QCOMPARE(m_program.state(), QProcess::Running);
    }

    void wrkOnVersionWithoutSocketErrors()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("wrk")).isEmpty())
            QSKIP("wrk is not installed");
        int exitCode = -1;
        const QString out = QString::fromUtf8(runTool(QStringLiteral("wrk"),
                                                      { "-t2", "-c32", "-d10s", address(QStringLiteral("version")) },
                                                      60000, &exitCode));
        QCOMPARE(exitCode, 0);
        QVERIFY2(out.contains(QStringLiteral("Requests/sec:")), qPrintable(out));
        QVERIFY2(!out.contains(QStringLiteral("Socket errors")), qPrintable(out));
        QVERIFY2(!out.contains(QStringLiteral("Non-2xx")), qPrintable(out));
        const QRegularExpressionMatch done = QRegularExpression(QStringLiteral("(\\d+) requests in")).match(out);
        QVERIFY(done.hasMatch() && done.captured(1).toLongLong() > 0);
        QVERIFY(curl(QStringLiteral("version")).contains("\"result\":true"));
    }

    void closeEndsTheProgram()
    {
        verifySection(QStringLiteral("close"), 1);
        QVERIFY(m_program.waitForFinished(15000));
        QCOMPARE(m_program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_program.exitCode(), 0);
    }

    // The sections above together sent each registered command at least once.
    void everyCommandWasChecked()
    {
        const QStringList commands = registeredCommandWords();
        QStringList missing;
        for (const QString& command : commands) {
            if (!m_covered.contains(command))
                missing << command;
        }
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1Char(' '))));
    }
};

QTEST_GUILESS_MAIN(TestApiInterop)
#include "tst_api_interop.moc"
