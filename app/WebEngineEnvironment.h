#pragma once

#include <QString>

// The environment the embedded web engine reads when it starts; prepared before the engine is
// initialised, and only where the user has not chosen otherwise.
class WebEngineEnvironment
{
public:
    WebEngineEnvironment() = delete;

    // Returns one line for the console describing what the engine will run with.
    static QString prepare();
    // The same for a given privilege, so that both cases can be exercised by one user.
    static QString prepare(bool runningAsRoot);
};
