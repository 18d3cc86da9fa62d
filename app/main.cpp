#include "app/CommandLineOptions.h"
#include "app/DesktopStartup.h"
#include "app/HeadlessRun.h"
#include "app/ProgramSetup.h"

#include <QStringList>

namespace {
bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}
}

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    CommandLineOptions options;
    QString error;
    if (!CommandLineOptions::parse(arguments, options, error)) {
        ProgramSetup::fail(error);
        return 2;
    }
    if (options.runsWithoutWindow())
        return HeadlessRun::exec(argc, argv, options);
    if (!hasDisplay()) {
        ProgramSetup::fail(QStringLiteral("no display: running without a window (--headless)"));
        return HeadlessRun::exec(argc, argv, options);
    }
    DesktopStartup startup(argc, argv, options);
    int exitCode = 0;
    if (!startup.start(exitCode))
        return exitCode;
    return startup.exec();
}
