#include "app/WebEngineEnvironment.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {
constexpr char SandboxVariable[] = "QTWEBENGINE_DISABLE_SANDBOX";
constexpr char FlagsVariable[] = "QTWEBENGINE_CHROMIUM_FLAGS";
} // namespace

QString WebEngineEnvironment::prepare()
{
#ifdef Q_OS_UNIX
    return prepare(::geteuid() == 0);
#else
    return prepare(false);
#endif
}

QString WebEngineEnvironment::prepare(bool runningAsRoot)
{
    // The engine's sandbox refuses to run as root and the engine would not start at all.
    if (runningAsRoot && !qEnvironmentVariableIsSet(SandboxVariable))
        qputenv(SandboxVariable, "1");
    // Without a usable GPU the engine's GPU process fails; software drawing always works.
    if (!qEnvironmentVariableIsSet(FlagsVariable))
        qputenv(FlagsVariable, runningAsRoot ? "--disable-gpu --no-sandbox" : "--disable-gpu");

    return QStringLiteral("Web engine: %1=%2, %3=\"%4\"")
        .arg(QLatin1String(SandboxVariable), qEnvironmentVariable(SandboxVariable, QStringLiteral("(unset)")),
             QLatin1String(FlagsVariable), qEnvironmentVariable(FlagsVariable));
}
