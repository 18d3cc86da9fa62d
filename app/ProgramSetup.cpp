#include "app/ProgramSetup.h"

#include "app/OrvexModel.h"
#include "settings/KxSettings.h"
#include "settings/OrvexSettings.h"

#include <cstdio>

namespace {
bool s_verbose = false;

// The console echoes every item as debug output, and the platform's Bluetooth layer warns
// when there is no adapter. On a terminal only our own failure lines belong on stderr.
void messageHandler(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (!s_verbose && type != QtCriticalMsg && type != QtFatalMsg)
        return;
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
}
}

void ProgramSetup::fail(const QString& message)
{
    std::fprintf(stderr, "orvexpro: %s\n", qUtf8Printable(message));
}

void ProgramSetup::installMessageHandler(bool verbose)
{
    s_verbose = verbose;
    qInstallMessageHandler(messageHandler);
}

int ProgramSetup::applySettings(OrvexModel& model, const CommandLineOptions& options)
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
int ProgramSetup::startCommandInterface(OrvexModel& model, const CommandLineOptions& options)
{
    if (options.noApi || !model.settings()->getAPIEnabled())
        return 0;
    QString error;
    if (model.startDataServer(options.apiPort, error))
        return 0;
    fail(error);
    return options.apiPort ? 1 : 0;
}
