#pragma once

// Operating-system services the program asks for but can live without.
class OSHelper
{
public:
    // How long the desktop gets to answer a screen-saver request; start-up never waits longer.
    static constexpr int DesktopCallTimeoutMs = 1000;

    OSHelper() = delete;

    // While `keep` is true the desktop does not blank the screen or lock the session; false
    // releases that again (also done by the desktop when the process ends). False plus one
    // console line when the desktop offers no such service; the program goes on either way.
    static bool keepScreenAwake(bool keep = true);

private:
    static bool inhibit();
    static bool release();
};
