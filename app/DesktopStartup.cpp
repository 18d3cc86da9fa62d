#include "app/DesktopStartup.h"

#include "app/AppHelper.h"
#include "app/InstanceChannel.h"
#include "app/OSHelper.h"
#include "app/OrvexAppCommon.h"
#include "app/OrvexModel.h"
#include "app/ProgramSetup.h"
#include "app/TerminationSignals.h"
#include "app/WebEngineEnvironment.h"
#include "app/ui/UiModel.h"
#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "services/GlobalConsoleWriter.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQmlError>
#include <QQmlContext>
#include <QQuickWindow>
#include <QScreen>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

DesktopStartup::DesktopStartup(int& argc, char** argv, const CommandLineOptions& options)
    : m_argc(argc)
    , m_argv(argv)
    , m_options(options)
{
    m_sinceStart.start();
}

DesktopStartup::~DesktopStartup()
{
    finish();
    m_termination.reset();
    m_qml.reset();
    m_model.reset();
    m_instance.reset();
    m_app.reset();
    m_common.reset();
}

QStringList DesktopStartup::makerApplications()
{
    return { QStringLiteral("OrvexPro"),    QStringLiteral("OrvexLite"),  QStringLiteral("OrvexStudio"),
             QStringLiteral("OrvexSleep"),  QStringLiteral("OrvexFocus"), QStringLiteral("OrvexKids"),
             QStringLiteral("OrvexTrainer"), QStringLiteral("OrvexLab") };
}

bool DesktopStartup::start(int& exitCode)
{
    // 1. The web views' engine and OpenGL for the scene graph, before any application object.
    const QString webEngine = WebEngineEnvironment::prepare();
    QtWebEngineQuick::initialize();
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    // 2. What the whole run shares.
    m_common = std::make_unique<OrvexAppCommon>();
    // 3. Web views share OpenGL contexts with the scene graph.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    m_app = std::make_unique<QApplication>(m_argc, m_argv);
    ProgramSetup::installMessageHandler(m_options.verbose);
    GlobalConsole::writeLine(webEngine);
    // 4. A running instance of ours takes over this start; siblings are asked to close.
    if (!AppHelper::checkAndCloseIfAppsRunning(makerApplications(), QString::fromLatin1(OrvexAppCommon::applicationName()),
                                               QCoreApplication::arguments())) {
        exitCode = 0;
        return false;
    }
    m_instance = std::make_unique<InstanceChannel>(QString::fromLatin1(OrvexAppCommon::applicationName()));
    m_instance->listen();
    // 5. The settings, then the model that owns engine and command interface.
    m_model = std::make_unique<OrvexModel>(new OrvexSettings);
    if (!m_options.settings.isEmpty()) {
        if (const int code = ProgramSetup::applySettings(*m_model, m_options)) {
            exitCode = code;
            return false;
        }
    }
    if (const int code = ProgramSetup::startCommandInterface(*m_model, m_options)) {
        exitCode = code;
        return false;
    }
    // 6. The engine's recording and device events reach the model before anything else.
    connectEngineEvents();
    // 7. The declarative engine, told where the window fits.
    m_qml = std::make_unique<QQmlApplicationEngine>();
    exposeInitialGeometry();
    // 8. The icon.
    setWindowIcon();
    // 9. Name and version; the screens' model carries them as the window title.
    const QString displayName = QCoreApplication::applicationName() + QStringLiteral(" ") + AppHelper::appVersion();
    QGuiApplication::setApplicationDisplayName(displayName);
    m_ui = m_model->createUiModel(displayName);
    m_qml->rootContext()->setContextProperty(QStringLiteral("ui"), m_ui);
    // 10. The interface file.
    const QString file = interfaceFile();
    // 11. No screen saver over a running session.
    m_keepingAwake = OSHelper::keepScreenAwake(true);
    // 12. Load, saying so while it takes.
    const QString loading = QCoreApplication::translate("Generic", "Loading UI");
    GlobalConsole::setStatus(QStringLiteral("UI"), loading);
    // Errors of the interface file are what its author needs to see, even without --verbose.
    QStringList errors;
    const auto collect = QObject::connect(m_qml.get(), &QQmlApplicationEngine::warnings, m_qml.get(),
                                          [&errors](const QList<QQmlError>& warnings) {
                                              for (const QQmlError& warning : warnings)
                                                  errors.append(warning.toString());
                                          });
    m_qml->load(file.startsWith(QLatin1String("qrc:")) ? QUrl(file) : QUrl::fromLocalFile(file));
    QObject::disconnect(collect);
    GlobalConsole::clearStatus(QStringLiteral("UI"));
    // 13. No window, no program.
    if (m_qml->rootObjects().isEmpty()) {
        for (const QString& error : std::as_const(errors))
            ProgramSetup::fail(error);
        ProgramSetup::fail(QStringLiteral("the interface %1 could not be loaded").arg(file));
        exitCode = -1;
        return false;
    }
    watchFirstFrame();
    QObject::connect(m_instance.get(), &InstanceChannel::activationRequested, m_ui, [this] { raiseWindow(); });
    // A sibling may ask us to close; a recording in progress is worth more than its start.
    QObject::connect(m_instance.get(), &InstanceChannel::closeRequested, m_app.get(), [this] {
        if (m_ui->closeNeedsConfirmation()) {
            GlobalConsole::writeLine(QStringLiteral("A sibling application asked us to close: refused while recording"));
            return;
        }
        quitCleanly();
    });
    QObject::connect(m_model.get(), &OrvexModel::closeRequested, m_app.get(), [this] { quitCleanly(); });
    m_termination = std::make_unique<TerminationSignals>();
    QObject::connect(m_termination.get(), &TerminationSignals::received, m_app.get(), [this] { quitCleanly(); });
    QObject::connect(m_app.get(), &QCoreApplication::aboutToQuit, m_app.get(), [this] { finish(); });
    startDevices();
    return true;
}

int DesktopStartup::exec()
{
    const int code = QApplication::exec();
    finish();
    return code;
}

QQuickWindow* DesktopStartup::window() const
{
    if (!m_qml || m_qml->rootObjects().isEmpty())
        return nullptr;
    return qobject_cast<QQuickWindow*>(m_qml->rootObjects().first());
}

// Asked from outside (a client, a signal, a sibling): the window would ask before ending a
// recording, so the recording is closed first.
void DesktopStartup::quitCleanly()
{
    finish();
    QCoreApplication::quit();
}

// A second start of the program shows this one instead.
void DesktopStartup::raiseWindow()
{
    GlobalConsole::writeLine(QStringLiteral("Another start asked for the window: raising it"));
    if (QQuickWindow* shown = window()) {
        shown->show();
        shown->raise();
        shown->requestActivate();
    }
}

void DesktopStartup::connectEngineEvents()
{
    CortexCore* engine = m_model->engine();
    OrvexModel* model = m_model.get();
    QObject::connect(engine, &CortexCore::recordStarted, model, &OrvexModel::onRecordStarted, Qt::DirectConnection);
    QObject::connect(engine, &CortexCore::recordStopped, model, &OrvexModel::onRecordStopped, Qt::DirectConnection);
    QObject::connect(engine, &CortexCore::deviceStopped, model, &OrvexModel::onDeviceStopped, Qt::DirectConnection);
}

void DesktopStartup::exposeInitialGeometry()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect(0, 0, 1280, 720);
    QQmlContext* context = m_qml->rootContext();
    context->setContextProperty(QStringLiteral("initialX"), available.x());
    context->setContextProperty(QStringLiteral("initialY"), available.y());
    context->setContextProperty(QStringLiteral("initialWidth"), available.width());
    context->setContextProperty(QStringLiteral("initialHeight"), available.height());
}

void DesktopStartup::setWindowIcon()
{
    const QString icon = QStringLiteral(":/") + QStringLiteral("/Images/icon.png");
    if (!QFile::exists(icon))
        return;
    kxDebug() << QStringLiteral("SET icon");
    QApplication::setWindowIcon(QIcon(icon));
}

// The built-in interface, or a developer's file given with --ui.
QString DesktopStartup::interfaceFile() const
{
    if (!m_options.uiFile.isEmpty())
        return QFileInfo(m_options.uiFile).absoluteFilePath();
    QString name = QStringLiteral("secondpage.qml");
    name.replace(QStringLiteral("secondpage.qml"), QStringLiteral("secondpage6.qml"));
    return AppHelper::findInResources(name).toString();
}

void DesktopStartup::watchFirstFrame()
{
    QQuickWindow* shown = window();
    if (!shown)
        return;
    auto connection = std::make_shared<QMetaObject::Connection>();
    // Swapped on the render thread and reported here, possibly several times before the
    // disconnection is seen: the first one counts.
    *connection = QObject::connect(shown, &QQuickWindow::frameSwapped, shown, [this, connection] {
        QObject::disconnect(*connection);
        if (m_firstFrameMs >= 0)
            return;
        m_firstFrameMs = m_sinceStart.elapsed();
        GlobalConsole::writeLine(QStringLiteral("First frame after %1 ms").arg(m_firstFrameMs));
    });
}

// The search runs at start; the favourite starts when it is found, or the device asked for.
void DesktopStartup::startDevices()
{
    DevicesController* devices = m_ui->devices();
    if (!m_options.deviceGiven) {
        devices->startSearch();
        return;
    }
    const QString& device = m_options.device;
    if (device == QLatin1String("none"))
        return;
    if (device == QLatin1String("generator")) {
        devices->startWhenFound(QStringLiteral("GeneratorDevice"));
    } else if (device == QLatin1String("headset-sim")) {
        devices->startWhenFound(m_model->virtualDevicesSettings()->getHeadsetSimName());
    } else {
        devices->setFilePlayerPath(QFileInfo(device).absoluteFilePath());
        devices->startWhenFound(QStringLiteral("EDFVirtualDevice"));
    }
    devices->startSearch();
}

// However the program ends: the recording is closed, the screen saver released.
void DesktopStartup::finish()
{
    if (m_finished || !m_model)
        return;
    m_finished = true;
    if (m_ui)
        m_ui->prepareToQuit();
    if (m_keepingAwake)
        OSHelper::keepScreenAwake(false);
}
