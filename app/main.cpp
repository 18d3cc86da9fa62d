#include "app/HeadlessOptions.h"
#include "app/HeadlessSession.h"
#include "app/OrvexModel.h"
#include "settings/KxSettings.h"
#include "settings/OrvexSettings.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {
bool s_verbose = false;
int s_signalPipe[2] = { -1, -1 };

void fail(const QString& message)
{
    std::fprintf(stderr, "orvexpro: %s\n", qUtf8Printable(message));
}

// The console echoes every item as debug output, and the platform's Bluetooth layer warns
// when there is no adapter. On a terminal session only our own failure lines belong on
// stderr, unless --verbose asks for everything.
void messageHandler(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (!s_verbose && type != QtCriticalMsg && type != QtFatalMsg)
        return;
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
}

void onTerminationSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(s_signalPipe[0], &byte, 1);
}

// Ctrl+C and SIGTERM end the session cleanly, closing the files, through the event loop.
void watchTerminationSignals(HeadlessSession* session)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, s_signalPipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(s_signalPipe[1], QSocketNotifier::Read, session);
    QObject::connect(notifier, &QSocketNotifier::activated, session, [session] { session->finish(0); });
    std::signal(SIGINT, onTerminationSignal);
    std::signal(SIGTERM, onTerminationSignal);
}

int applySettings(OrvexModel& model, const HeadlessOptions& options)
{
    model.setPersistent(false);
    for (const auto& [key, value] : options.settings) {
        KxSettings* owner = model.settingsOwning(key);
        if (!owner) {
            fail(QStringLiteral("unknown setting '%1' (see --print-settings)").arg(key));
            return 2;
        }
        if (!owner->setTextValue(key, value)) {
            fail(QStringLiteral("invalid value '%1' for setting %2 (see its type and range with --print-settings)")
                     .arg(value, key));
            return 2;
        }
    }
    return 0;
}

// The API is part of a normal run; a busy default port only costs the API, an explicitly
// requested one that cannot be used ends the run.
int startCommandInterface(OrvexModel& model, const HeadlessOptions& options)
{
    if (options.noApi || !model.settings()->getAPIEnabled())
        return 0;
    QString error;
    if (model.startDataServer(options.apiPort, error))
        return 0;
    fail(error);
    return options.apiPort ? 1 : 0;
}
}

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("OrvexPro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVEX_VERSION));

    HeadlessOptions options;
    QString error;
    if (!HeadlessOptions::parse(QCoreApplication::arguments(), options, error)) {
        fail(error);
        return 2;
    }
    if (options.help) {
        std::fputs(qUtf8Printable(HeadlessOptions::usage()), stdout);
        return 0;
    }
    if (options.version) {
        std::printf("OrvexPro %s\n", ORVEX_VERSION);
        return 0;
    }
    s_verbose = options.verbose;
    qInstallMessageHandler(messageHandler);

    OrvexModel model;
    if (const int code = applySettings(model, options))
        return code;
    if (options.printSettings) {
        std::fputs(QJsonDocument(model.allCapabilities()).toJson(QJsonDocument::Indented).constData(), stdout);
        return 0;
    }
    if (!options.headless)
        std::fprintf(stderr, "orvexpro: this build has no screens yet; running without a window\n");

    if (const int code = startCommandInterface(model, options))
        return code;

    HeadlessSession session(&model, options);
    QObject::connect(&session, &HeadlessSession::finished, &app, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&model, &OrvexModel::closeRequested, &session, [&session] { session.finish(0); });
    if (!session.start(error)) {
        fail(error);
        return 1;
    }
    watchTerminationSignals(&session);
    return app.exec();
}
