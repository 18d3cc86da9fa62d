#include "app/AppHelper.h"
#include "app/InstanceChannel.h"
#include "app/OSHelper.h"
#include "app/WebEngineEnvironment.h"
#include "services/GlobalConsole.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <memory>

// The test executable doubles as the other process of each scenario (see runChild below).
namespace {
const QStringList HandedArguments = { QStringLiteral("--device"), QStringLiteral("my file.edf"),
                                      QStringLiteral("ü€"), QString(), QStringLiteral("two\nlines") };

QByteArray jsonArray(const QStringList& list)
{
    return QJsonDocument(QJsonArray::fromStringList(list)).toJson(QJsonDocument::Compact);
}

// One request line written with single quotes for readability.
QByteArray line(const char* singleQuoted)
{
    return QByteArray(singleQuoted).replace('\'', '"') + '\n';
}

void print(const QByteArray& line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

// A first instance of `name`: prints "listening", then one line per request it receives.
int runInstance(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const bool closes = qstrcmp(argv[3], "accept") == 0;
    InstanceChannel channel(QString::fromLocal8Bit(argv[2]));
    QObject::connect(&channel, &InstanceChannel::activationRequested,
                     [](const QStringList& arguments) { print("activate " + jsonArray(arguments)); });
    QObject::connect(&channel, &InstanceChannel::closeRequested, [&] {
        print("close");
        if (closes)
            app.quit();
    });
    if (!channel.listen())
        return 3;
    print("listening");
    return app.exec();
}

// The keep-awake calls in a fresh process, so that the session bus address given to it is used.
int runKeepAwake(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("OrvexPro"));
    QJsonArray console;
    QObject::connect(GlobalConsole::Instance(), &GlobalConsole::newEntry,
                     [&](const QString& line) { console.append(line); });
    const bool kept = OSHelper::keepScreenAwake(true);
    const bool keptAgain = OSHelper::keepScreenAwake(true);
    const bool released = OSHelper::keepScreenAwake(false);
    print(QJsonDocument(QJsonObject{ { "kept", kept }, { "keptAgain", keptAgain }, { "released", released },
                                     { "console", console } }).toJson(QJsonDocument::Compact));
    return 0;
}

int runChild(int argc, char** argv)
{
    const QByteArray mode = argv[1];
    if (mode == "--child-instance" && argc == 4)
        return runInstance(argc, argv);
    if (mode == "--child-keep-awake")
        return runKeepAwake(argc, argv);
    if (mode == "--child-second" && argc == 3) {
        // As the program does it: before any application object exists.
        const QString name = QString::fromLocal8Bit(argv[2]);
        return AppHelper::checkAndCloseIfAppsRunning({ name }, name, HandedArguments) ? 10 : 20;
    }
    return 2;
}

QStringList s_appNames; // every name used, so that no socket file outlives the test

QString uniqueAppName()
{
    s_appNames.append(QStringLiteral("OrvexTest%1x%2").arg(QCoreApplication::applicationPid()).arg(s_appNames.size()));
    return s_appNames.last();
}

// A child process of this executable, killed when it goes out of scope.
struct Child
{
    QProcess process;
    QByteArray output;

    explicit Child(const QStringList& arguments, const QProcessEnvironment& environment = {})
    {
        if (!environment.isEmpty())
            process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), arguments);
    }
    ~Child()
    {
        process.kill();
        process.waitForFinished();
    }
    bool waitFor(const QByteArray& line)
    {
        while (!output.contains(line + '\n')) {
            if (!process.waitForReadyRead(10000))
                return false;
            output += process.readAllStandardOutput();
        }
        return true;
    }
};

std::unique_ptr<Child> startInstance(const QString& name, const char* onClose)
{
    auto child = std::make_unique<Child>(QStringList{ QStringLiteral("--child-instance"), name,
                                                      QString::fromLatin1(onClose) });
    return child->waitFor("listening") ? std::move(child) : nullptr;
}

// Sends raw bytes to a channel served by this process and returns whatever comes back.
QByteArray exchange(const QString& appName, const QByteArray& payload)
{
    QLocalSocket socket;
    QByteArray received;
    QObject::connect(&socket, &QLocalSocket::readyRead, [&] { received += socket.readAll(); });
    QSignalSpy closed(&socket, &QLocalSocket::disconnected);
    socket.connectToServer(AppHelper::instanceSocketName(appName));
    if (!socket.waitForConnected(5000))
        return "not connected";
    socket.write(payload);
    if (!closed.wait(10000))
        return "no disconnection";
    return received + socket.readAll();
}

// A private session bus with a dbus-monitor on the screen-saver interface.
struct PrivateBus
{
    QTemporaryDir dir;
    QProcess daemon;
    QProcess monitor;
    QString address;

    bool start()
    {
        const QString config = dir.filePath(QStringLiteral("bus.conf"));
        QFile file(config);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write("<busconfig><type>session</type><listen>unix:dir=" + dir.path().toUtf8()
                   + "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\" "
                     "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        file.close();
        daemon.start(QStringLiteral("dbus-daemon"),
                     { QStringLiteral("--config-file=") + config, QStringLiteral("--nofork"), QStringLiteral("--print-address") });
        if (!daemon.waitForReadyRead(10000))
            return false;
        address = QString::fromUtf8(daemon.readLine().trimmed());
        monitor.start(QStringLiteral("dbus-monitor"),
                      { QStringLiteral("--address"), address, QStringLiteral("interface='org.freedesktop.ScreenSaver'") });
        return monitor.waitForStarted(10000) && mark("Ready");
    }
    ~PrivateBus()
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-desktop"));
        for (QProcess* process : { &monitor, &daemon }) {
            process->kill();
            process->waitForFinished();
        }
    }
    QDBusConnection connection() const
    {
        return QDBusConnection::connectToBus(address, QStringLiteral("fake-desktop"));
    }
    // Emits a marker until the monitor shows it: everything sent before has been seen then.
    bool mark(const char* member)
    {
        for (int attempt = 0; attempt < 100; ++attempt) {
            connection().send(QDBusMessage::createSignal(QStringLiteral("/marker"),
                                                         QStringLiteral("org.freedesktop.ScreenSaver"),
                                                         QString::fromLatin1(member)));
            monitor.waitForReadyRead(100);
            if (monitorOutput().contains(QStringLiteral("member=%1").arg(QLatin1String(member))))
                return true;
        }
        return false;
    }
    QString monitorOutput()
    {
        m_output += QString::fromUtf8(monitor.readAllStandardOutput());
        return m_output;
    }

private:
    QString m_output;
};

} // namespace

// Answers like a desktop's screen saver with a fixed cookie.
class FakeScreenSaver : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")
public Q_SLOTS:
    uint Inhibit(const QString&, const QString&) { return 42; }
    void UnInhibit(uint) { }
};

class TestAppHelper : public QObject
{
    Q_OBJECT

private:
    QStringList m_console;

private Q_SLOTS:
    void initTestCase()
    {
        connect(GlobalConsole::Instance(), &GlobalConsole::newEntry, this,
                [this](const QString& line) { m_console.append(line); });
    }
    void init() { m_console.clear(); }
    void cleanupTestCase()
    {
        // Instances killed on purpose leave their socket files behind.
        for (const QString& name : s_appNames)
            QLocalServer::removeServer(AppHelper::instanceSocketName(name));
    }

    void appVersion_data()
    {
        QTest::addColumn<QString>("applicationVersion");
        QTest::addColumn<QString>("expected");
        QTest::newRow("set by the application") << "9.8.7" << "9.8.7";
        QTest::newRow("unset: the build's version") << "" << ORVEX_VERSION;
    }
    void appVersion()
    {
        QFETCH(QString, applicationVersion);
        QFETCH(QString, expected);
        QCoreApplication::setApplicationVersion(applicationVersion);
        QCOMPARE(AppHelper::appVersion(), expected);
        QCoreApplication::setApplicationVersion(QString());
    }

    void findInResources_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("expected");
        QTest::newRow("top level") << "Top.txt" << ":/" << "qrc:/apphelper/Top.txt";
        QTest::newRow("nested folder") << "Only.txt" << ":/" << "qrc:/apphelper/deep/nested/Only.txt";
        QTest::newRow("shortest path first") << "Target.qml" << ":/" << "qrc:/apphelper/Target.qml";
        QTest::newRow("equal length: alphabetical") << "Same.txt" << ":/" << "qrc:/apphelper/a/Same.txt";
        QTest::newRow("below a given root") << "Target.qml" << ":/apphelper/deep"
                                            << "qrc:/apphelper/deep/nested/Target.qml";
        QTest::newRow("absent") << "Missing.qml" << ":/" << "";
        QTest::newRow("a folder is not a file") << "Dir.qml" << ":/" << "";
        QTest::newRow("no wildcards") << "*.txt" << ":/" << "";
        QTest::newRow("case matters") << "target.qml" << ":/" << "";
        QTest::newRow("root outside the resources") << "Top.txt" << QDir::tempPath() << "";
        QTest::newRow("empty name") << "" << ":/" << "";
    }
    void findInResources()
    {
        QFETCH(QString, fileName);
        QFETCH(QString, root);
        QFETCH(QString, expected);
        const QUrl url = AppHelper::findInResources(fileName, root);
        QCOMPARE(url.toString(), expected);
        QCOMPARE(m_console.size(), expected.isEmpty() ? 1 : 0);
        if (!expected.isEmpty())
            QVERIFY(QFile::exists(QLatin1Char(':') + url.path()));
    }

    void secondInstance_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<bool>("startGoesOn");
        QTest::newRow("none") << "none" << true;
        QTest::newRow("running") << "running" << false;
        QTest::newRow("killed, socket file left behind") << "killed" << true;
    }
    void secondInstance()
    {
        QFETCH(QString, first);
        QFETCH(bool, startGoesOn);
        const QString name = uniqueAppName();
        std::unique_ptr<Child> instance;
        if (first != QLatin1String("none"))
            QVERIFY((instance = startInstance(name, "accept")));
        if (first == QLatin1String("killed")) {
            instance->process.kill();
            QVERIFY(instance->process.waitForFinished());
            QVERIFY(QFileInfo::exists(QDir::temp().filePath(AppHelper::instanceSocketName(name))));
        }
        QCOMPARE(AppHelper::checkAndCloseIfAppsRunning({ name }, name, HandedArguments), startGoesOn);
        if (!startGoesOn)
            QVERIFY(instance->waitFor("activate " + jsonArray(HandedArguments)));
        // A start that goes on takes the channel over; a live instance keeps it.
        InstanceChannel channel(name);
        QCOMPARE(channel.listen(), startGoesOn);
    }

    void secondInstanceBeforeApplicationObject()
    {
        const QString name = uniqueAppName();
        InstanceChannel channel(name);
        QVERIFY(channel.listen());
        QSignalSpy activations(&channel, &InstanceChannel::activationRequested);
        Child second({ QStringLiteral("--child-second"), name });
        QTRY_COMPARE_WITH_TIMEOUT(activations.size(), 1, 10000);
        QCOMPARE(activations.first().first().toStringList(), HandedArguments);
        QTRY_COMPARE_WITH_TIMEOUT(second.process.state(), QProcess::NotRunning, 10000);
        QCOMPARE(second.process.exitCode(), 20);
        const QByteArray errors = second.process.readAllStandardError();
        QVERIFY2(!errors.contains("QSocketNotifier") && !errors.contains("QObject"), errors.constData());
    }

    void siblings_data()
    {
        QTest::addColumn<QString>("sibling");
        QTest::addColumn<QString>("consoleLine");
        QTest::newRow("closes when asked") << "accept" << "was running and has closed";
        QTest::newRow("keeps running") << "refuse" << "was asked to close but still runs";
        QTest::newRow("not running") << "absent" << "";
    }
    void siblings()
    {
        QFETCH(QString, sibling);
        QFETCH(QString, consoleLine);
        const QString own = uniqueAppName();
        const QString name = uniqueAppName();
        std::unique_ptr<Child> instance;
        if (sibling != QLatin1String("absent"))
            QVERIFY((instance = startInstance(name, qPrintable(sibling))));
        QVERIFY(AppHelper::checkAndCloseIfAppsRunning({ uniqueAppName(), own, name }, own, { QStringLiteral("-x") }));
        const QStringList aboutIt = m_console.filter(name + QLatin1Char(' '));
        QCOMPARE(aboutIt.size(), consoleLine.isEmpty() ? 0 : 1);
        if (!instance)
            return;
        QVERIFY2(aboutIt.first().contains(consoleLine), qPrintable(aboutIt.first()));
        QVERIFY(instance->waitFor("close"));
        QVERIFY(!instance->output.contains("activate"));
        QCOMPARE(instance->process.waitForFinished(sibling == QLatin1String("accept") ? 10000 : 0),
                 sibling == QLatin1String("accept"));
    }

    void malformedInput_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("answer"); // empty: the connection is dropped unanswered
        QTest::addColumn<int>("activations");
        QTest::addColumn<int>("closes");
        const QByteArray refused = "\"ok\":false";
        QTest::newRow("activate") << line("{'request':'activate','arguments':['a b','']}")
                                  << QByteArray("{\"ok\":true}") << 1 << 0;
        QTest::newRow("activate without arguments") << line("{'request':'activate'}")
                                                    << QByteArray("{\"ok\":true}") << 1 << 0;
        QTest::newRow("close") << line("{'request':'close','from':'X'}")
                               << QByteArray("{\"ok\":true}") << 0 << 1;
        QTest::newRow("not JSON") << QByteArray("hello\n") << refused << 0 << 0;
        QTest::newRow("empty line") << QByteArray("\n") << refused << 0 << 0;
        QTest::newRow("JSON array") << QByteArray("[1,2]\n") << refused << 0 << 0;
        QTest::newRow("binary") << QByteArray("\0\xff\xfe{\n", 5) << refused << 0 << 0;
        QTest::newRow("unknown request") << line("{'request':'explode'}") << refused << 0 << 0;
        QTest::newRow("arguments not strings")
            << line("{'request':'activate','arguments':['a',1,null]}") << refused << 0 << 0;
        QTest::newRow("arguments an object")
            << line("{'request':'activate','arguments':{'a':'b'}}") << refused << 0 << 0;
        QTest::newRow("only the first line counts")
            << "junk\n" + line("{'request':'close'}") << refused << 0 << 0;
        QTest::newRow("oversized, no line end") << QByteArray(200 * 1024, 'x') << QByteArray() << 0 << 0;
        QTest::newRow("oversized valid line")
            << "{\"request\":\"activate\",\"arguments\":[\"" + QByteArray(70 * 1024, 'a') + "\"]}\n"
            << QByteArray() << 0 << 0;
    }
    void malformedInput()
    {
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, answer);
        QFETCH(int, activations);
        QFETCH(int, closes);
        const QString name = uniqueAppName();
        InstanceChannel channel(name);
        QVERIFY(channel.listen());
        QSignalSpy activationRequests(&channel, &InstanceChannel::activationRequested);
        QSignalSpy closeRequests(&channel, &InstanceChannel::closeRequested);
        const QByteArray received = exchange(name, payload);
        QVERIFY2(answer.isEmpty() ? received.isEmpty() : received.contains(answer) && received.endsWith('\n'),
                 received.constData());
        QCOMPARE(activationRequests.size(), activations);
        QCOMPARE(closeRequests.size(), closes);
        QCOMPARE(m_console.size(), answer.contains("true") && closes == 0 ? 0 : 1);
        // Still serving afterwards.
        QVERIFY(exchange(name, line("{'request':'close'}")).contains("\"ok\":true"));
        QCOMPARE(closeRequests.size(), closes + 1);
    }

    void keepScreenAwake_data()
    {
        QTest::addColumn<QString>("desktop"); // where a screen saver answers
        QTest::addColumn<bool>("kept");
        QTest::addColumn<int>("inhibitCalls"); // two requests in a row: a failed one is tried again
        QTest::newRow("no screen-saver service") << "" << false << 2;
        QTest::newRow("service at /org/freedesktop/ScreenSaver") << "/org/freedesktop/ScreenSaver" << true << 1;
        QTest::newRow("service at /ScreenSaver only") << "/ScreenSaver" << true << 2;
        QTest::newRow("no session bus") << "none" << false << 0;
    }
    void keepScreenAwake()
    {
        QFETCH(QString, desktop);
        QFETCH(bool, kept);
        QFETCH(int, inhibitCalls);
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()
            || QStandardPaths::findExecutable(QStringLiteral("dbus-monitor")).isEmpty())
            QSKIP("dbus-daemon or dbus-monitor is not installed");
        PrivateBus bus;
        QVERIFY(bus.start());
        FakeScreenSaver screenSaver;
        if (desktop.startsWith(QLatin1Char('/'))) {
            QVERIFY(bus.connection().registerService(QStringLiteral("org.freedesktop.ScreenSaver")));
            QVERIFY(bus.connection().registerObject(desktop, &screenSaver, QDBusConnection::ExportAllSlots));
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           desktop == QLatin1String("none") ? QStringLiteral("unix:path=") + bus.dir.filePath("none")
                                                             : bus.address);
        Child child({ QStringLiteral("--child-keep-awake") }, environment);
        QTRY_COMPARE_WITH_TIMEOUT(child.process.state(), QProcess::NotRunning, 20000);
        const QJsonObject result = QJsonDocument::fromJson(child.process.readAllStandardOutput()).object();
        QCOMPARE(result.value("kept").toBool(), kept);
        QCOMPARE(result.value("keptAgain").toBool(), kept);
        QVERIFY(result.value("released").toBool());
        QCOMPARE(result.value("console").toArray().size(), kept ? 0 : 2);

        QVERIFY(bus.mark("End"));
        const QString seen = bus.monitorOutput();
        QCOMPARE(seen.count(QRegularExpression(QStringLiteral("member=Inhibit\\n\\s*string \"OrvexPro\""))),
                 inhibitCalls);
        const QRegularExpression release(QStringLiteral("path=%1; interface=org.freedesktop.ScreenSaver; "
                                                        "member=UnInhibit\\n\\s*uint32 42").arg(desktop));
        QCOMPARE(seen.count(QRegularExpression(QStringLiteral("member=UnInhibit"))), kept ? 1 : 0);
        QCOMPARE(seen.contains(release), kept);
    }

    void webEngineEnvironment_data()
    {
        QTest::addColumn<bool>("root");
        QTest::addColumn<QByteArray>("sandboxBefore"); // null: unset
        QTest::addColumn<QByteArray>("flagsBefore");
        QTest::addColumn<QByteArray>("sandboxAfter");
        QTest::addColumn<QByteArray>("flagsAfter");
        const QByteArray unset;
        QTest::newRow("root") << true << unset << unset << QByteArray("1") << QByteArray("--disable-gpu --no-sandbox");
        QTest::newRow("user") << false << unset << unset << unset << QByteArray("--disable-gpu");
        QTest::newRow("root, own flags kept") << true << unset << QByteArray("--enable-logging") << QByteArray("1")
                                              << QByteArray("--enable-logging");
        QTest::newRow("root, own sandbox choice kept") << true << QByteArray("0") << unset << QByteArray("0")
                                                       << QByteArray("--disable-gpu --no-sandbox");
        QTest::newRow("user, empty flags are a choice") << false << unset << QByteArray("") << unset << QByteArray("");
    }
    void webEngineEnvironment()
    {
        const auto set = [](const char* name, const QByteArray& value) {
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
        };
        QFETCH(bool, root);
        QFETCH(QByteArray, sandboxBefore);
        QFETCH(QByteArray, flagsBefore);
        QFETCH(QByteArray, sandboxAfter);
        QFETCH(QByteArray, flagsAfter);
        const QByteArray savedSandbox = qgetenv("QTWEBENGINE_DISABLE_SANDBOX");
        const QByteArray savedFlags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
        set("QTWEBENGINE_DISABLE_SANDBOX", sandboxBefore);
        set("QTWEBENGINE_CHROMIUM_FLAGS", flagsBefore);
        const QString description = WebEngineEnvironment::prepare(root);
        const QByteArray sandbox = qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX")
            ? qgetenv("QTWEBENGINE_DISABLE_SANDBOX") : QByteArray();
        const QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
        set("QTWEBENGINE_DISABLE_SANDBOX", savedSandbox);
        set("QTWEBENGINE_CHROMIUM_FLAGS", savedFlags);
        QCOMPARE(sandbox.isNull(), sandboxAfter.isNull());
        QCOMPARE(sandbox, sandboxAfter);
        QCOMPARE(flags, flagsAfter);
        QVERIFY(description.contains(QString::fromUtf8(flags)));
    }
};

int main(int argc, char** argv)
{
    if (argc > 1 && qstrncmp(argv[1], "--child-", 8) == 0)
        return runChild(argc, argv);
    QCoreApplication app(argc, argv);
    TestAppHelper test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_apphelper.moc"
