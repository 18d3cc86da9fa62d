#pragma once

#include "app/CommandLineOptions.h"

// A run without a window: the engine, the command interface and the files the options ask for.
class HeadlessRun
{
public:
    // The whole run, from the application object to the exit code.
    static int exec(int& argc, char** argv, const CommandLineOptions& options);
};
