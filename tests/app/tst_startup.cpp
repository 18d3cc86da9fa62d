// The program's start and end as a user meets them: a second start, a broken interface, a
// recording that must survive the window being ended.
#include "formats/EDFReader.h"
#include "support/ProgramUnderTest.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class StartupTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    QProcessEnvironment environment() const
    {
        return ProgramUnderTest::isolatedEnvironment(m_home, QStringLiteral("xcb"));
    }

    // Waits until the console (stderr) has said `text`; `seen` collects what was read.
    static bool waitForConsole(QProcess& process, QByteArray& seen, const char* text, int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!seen.contains(text) && !deadline.hasExpired()) {
            process.waitForReadyRead(100);
            seen += process.readAllStandardError();
        }
        return seen.contains(text);
    }

    // A window that has drawn its first frame, with the console on stderr.
    void startWindow(QProcess& process, QByteArray& console, const QStringList& arguments)
    {
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), QStringList { "--verbose" } + arguments);
        QVERIFY(process.waitForStarted());
        QVERIFY(waitForConsole(process, console, "First frame after", 20000));
    }

    static QByteArray httpGet(int port, const QString& path)
    {
        return ProgramUnderTest::httpGet(QStringLiteral("http://127.0.0.1:%1/%2").arg(port).arg(path));
    }

private Q_SLOTS:
    // A second start hands over to the running window, which comes to the front.
    void secondStartRaisesTheFirst()
    {
        QProcess first;
        QByteArray console;
        startWindow(first, console, { "--no-api" });
        QProcess second;
        second.setProcessEnvironment(environment());
        second.start(QStringLiteral(ORVEX_BINARY), { "--no-api" });
        QVERIFY(second.waitForFinished(15000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(waitForConsole(first, console, "raising it", 5000));
        ::kill(pid_t(first.processId()), SIGTERM);
        QVERIFY(first.waitForFinished(10000));
        QCOMPARE(first.exitCode(), 0);
    }

    void brokenInterfaceEndsWithMinusOne()
    {
        const QString broken = m_home.filePath(QStringLiteral("broken.qml"));
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("import QtQuick\nItem { this is not QML }\n");
        file.close();
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), { "--no-api", "--ui", broken });
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitCode(), 255); // -1 as a process exit status
        QVERIFY(process.readAllStandardError().contains("could not be loaded"));
    }

    // Ended from outside while recording: the file is closed and whole.
    void terminationClosesTheRecording()
    {
        const int port = ProgramUnderTest::freePort();
        const QString folder = m_home.filePath(QStringLiteral("records"));
        QProcess process;
        QByteArray console;
        startWindow(process, console, { "--device", "generator", "--api-port", QString::number(port), "--set",
                               "DataFolder=" + folder });
        // Once streaming, one start: a second start would end the first recording and begin another.
        QTRY_VERIFY_WITH_TIMEOUT(QJsonDocument::fromJson(httpGet(port, QStringLiteral("currentDeviceInfo"))).object().value("currentFrequency").toDouble() > 0, 10000);
        QVERIFY(QJsonDocument::fromJson(httpGet(port, QStringLiteral("startRecord"))).object().value("result").toBool());
        QTest::qWait(2500);
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitCode(), 0);
        const QStringList files = QDir(folder).entryList({ QStringLiteral("*.edf") });
        QCOMPARE(files.size(), 1);
        EDFReader reader(QDir(folder).filePath(files.first()));
        QVERIFY(reader.open());
        QVERIFY(reader.getChannelCount() > 0);
        QVERIFY(reader.getChannelData(0, 0, 250).size() == 250);
    }
};

QTEST_GUILESS_MAIN(StartupTest)
#include "tst_startup.moc"
