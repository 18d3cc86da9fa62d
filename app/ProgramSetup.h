#pragma once

#include "app/CommandLineOptions.h"

class OrvexModel;

// The parts of a start that the window and the run without one share.
class ProgramSetup
{
public:
    ProgramSetup() = delete;

    // "orvexpro: <message>" on stderr: the one line a failure prints.
    static void fail(const QString& message);
    // Only our own failure lines on stderr, unless --verbose asks for the whole console.
    static void installMessageHandler(bool verbose);
    // Makes the run's settings temporary and applies the --set values; 0, or exit code 2 after
    // the reason on stderr.
    static int applySettings(OrvexModel& model, const CommandLineOptions& options);
    // The command interface; 0, or exit code 1 when an explicitly requested port is busy.
    static int startCommandInterface(OrvexModel& model, const CommandLineOptions& options);
};
