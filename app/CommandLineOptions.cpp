#include "app/CommandLineOptions.h"

namespace {
bool takeValue(const QStringList& arguments, int& i, QString& value, QString& error)
{
    const QString& option = arguments[i];
    if (i + 1 >= arguments.size()) {
        error = QStringLiteral("option %1 needs a value").arg(option);
        return false;
    }
    value = arguments[++i];
    return true;
}
}

bool CommandLineOptions::parse(const QStringList& arguments, CommandLineOptions& options, QString& error)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        QString value;
        if (argument == QLatin1String("--headless")) {
            options.headless = true;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            options.help = true;
        } else if (argument == QLatin1String("--version")) {
            options.version = true;
        } else if (argument == QLatin1String("--print-settings")) {
            options.printSettings = true;
        } else if (argument == QLatin1String("--verbose")) {
            options.verbose = true;
        } else if (argument == QLatin1String("--device")) {
            if (!takeValue(arguments, i, options.device, error))
                return false;
            options.deviceGiven = true;
            const bool file = options.device.endsWith(QLatin1String(".edf"), Qt::CaseInsensitive)
                || options.device.endsWith(QLatin1String(".bdf"), Qt::CaseInsensitive);
            if (options.device != QLatin1String("generator") && options.device != QLatin1String("headset-sim")
                && options.device != QLatin1String("none") && !file) {
                error = QStringLiteral("unknown device '%1' (generator, headset-sim, none, or an .edf or .bdf file)")
                            .arg(options.device);
                return false;
            }
        } else if (argument == QLatin1String("--duration")) {
            if (!takeValue(arguments, i, value, error))
                return false;
            bool ok = false;
            options.durationSeconds = value.toDouble(&ok);
            if (!ok || options.durationSeconds <= 0 || options.durationSeconds > 1e7) {
                error = QStringLiteral("--duration needs a positive number of seconds, not '%1'").arg(value);
                return false;
            }
        } else if (argument == QLatin1String("--speed")) {
            if (!takeValue(arguments, i, value, error))
                return false;
            bool ok = false;
            options.speed = value.toDouble(&ok);
            if (!ok || options.speed < 0 || options.speed > 1000) {
                error = QStringLiteral("--speed needs a factor from 0 to 1000, not '%1'").arg(value);
                return false;
            }
        } else if (argument == QLatin1String("--csv")) {
            if (!takeValue(arguments, i, options.csvPath, error))
                return false;
        } else if (argument == QLatin1String("--record")) {
            if (!takeValue(arguments, i, options.recordPath, error))
                return false;
            options.record = true;
        } else if (argument == QLatin1String("--csv-metrics")) {
            if (!takeValue(arguments, i, options.csvMetricsPath, error))
                return false;
        } else if (argument == QLatin1String("--api-port")) {
            if (!takeValue(arguments, i, value, error))
                return false;
            bool ok = false;
            options.apiPort = value.toInt(&ok);
            if (!ok || options.apiPort < 1 || options.apiPort > 65535) {
                error = QStringLiteral("--api-port needs a port from 1 to 65535, not '%1'").arg(value);
                return false;
            }
        } else if (argument == QLatin1String("--ui")) {
            if (!takeValue(arguments, i, options.uiFile, error))
                return false;
        } else if (argument == QLatin1String("--no-api")) {
            options.noApi = true;
        } else if (argument == QLatin1String("--set")) {
            if (!takeValue(arguments, i, value, error))
                return false;
            const qsizetype equals = value.indexOf(QLatin1Char('='));
            if (equals < 1) {
                error = QStringLiteral("--set needs Key=Value, not '%1'").arg(value);
                return false;
            }
            options.settings.append({ value.left(equals).trimmed(), value.mid(equals + 1) });
        } else {
            error = QStringLiteral("unknown option '%1' (see --help)").arg(argument);
            return false;
        }
    }
    if (options.device == QLatin1String("none") && (options.record || !options.csvPath.isEmpty()
                                                     || !options.csvMetricsPath.isEmpty())) {
        error = QStringLiteral("--record, --csv and --csv-metrics need a device; --device none starts none");
        return false;
    }
    if (options.speed != 1
        && (options.device == QLatin1String("generator") || options.device == QLatin1String("headset-sim")
            || options.device == QLatin1String("none"))) {
        error = QStringLiteral("--speed applies to a recording played with --device FILE");
        return false;
    }
    return true;
}

QString CommandLineOptions::usage()
{
    return QStringLiteral(
        "Usage: orvexpro [options]            the window\n"
        "       orvexpro --headless [options] streaming without a window\n"
        "Without a display, and with --duration, --record, --csv, --csv-metrics or --speed,\n"
        "the run has no window.\n"
        "\n"
        "  --device generator|headset-sim|none|FILE.edf|FILE.bdf\n"
        "                       the device to stream: the signal generator (default without a\n"
        "                       window; the window starts none unless asked), a simulated\n"
        "                       Bluetooth headset (faults: the HeadsetSim... settings), none\n"
        "                       (API clients choose with startSearch and startDevice), or a\n"
        "                       recording played in real time, looping\n"
        "  --speed FACTOR       playback speed of a recording: 1 real time (default), 0 every\n"
        "                       sample once as fast as possible, then exit\n"
        "  --duration SECONDS   stop, close the files and exit 0 after that much streaming\n"
        "                       (default: until interrupted with Ctrl+C)\n"
        "  --record PATH        record while streaming: PATH.edf (filtered channels), PATH.oxd\n"
        "                       (raw samples) and PATH.log; a trailing .edf is cut off\n"
        "  --csv PATH           write the filtered montage channels as CSV while streaming\n"
        "  --csv-metrics PATH   write one CSV row per spectrum step: every channel's rhythm\n"
        "                       shares, meditation, concentration and the custom algorithms\n"
        "  --api-port N         answer API commands over HTTP on port N (default: the APIPort\n"
        "                       setting, 2336); WebSocket clients connect on port 1336\n"
        "  --no-api             do not open the command interface\n"
        "  --set Key=Value      change a setting for this run (repeatable; see --print-settings)\n"
        "  --print-settings     print every setting with its type, value and range as JSON\n"
        "  --verbose            echo the engine's console on stderr\n"
        "  --ui FILE            the window's interface from FILE instead of the built-in one\n"
        "  --version            print the version\n"
        "  --help               print this help\n"
        "\n"
        "Exit codes: 0 success, 1 runtime failure, 2 bad command line.\n");
}
