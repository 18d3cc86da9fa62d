#include "app/HeadlessRun.h"

#include "app/HeadlessSession.h"
#include "app/OrvexModel.h"
#include "app/ProgramSetup.h"
#include "app/TerminationSignals.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>

int HeadlessRun::exec(int& argc, char** argv, const CommandLineOptions& options)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("OrvexPro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVEX_VERSION));
    if (options.help) {
        std::fputs(qUtf8Printable(CommandLineOptions::usage()), stdout);
        return 0;
    }
    if (options.version) {
        std::printf("OrvexPro %s\n", ORVEX_VERSION);
        return 0;
    }
    ProgramSetup::installMessageHandler(options.verbose);

    OrvexModel model;
    if (const int code = ProgramSetup::applySettings(model, options))
        return code;
    if (options.printSettings) {
        std::fputs(QJsonDocument(model.allCapabilities()).toJson(QJsonDocument::Indented).constData(), stdout);
        return 0;
    }
    if (const int code = ProgramSetup::startCommandInterface(model, options))
        return code;

    HeadlessSession session(&model, options);
    QObject::connect(&session, &HeadlessSession::finished, &app, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&model, &OrvexModel::closeRequested, &session, [&session] { session.finish(0); });
    QString error;
    if (!session.start(error)) {
        ProgramSetup::fail(error);
        return 1;
    }
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, &session, [&session] { session.finish(0); });
    return app.exec();
}
