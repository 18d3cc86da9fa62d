#pragma once

// What every start of the program shares for as long as it runs: the application's name and
// version, the types the interface uses, and the console's last lines at the end.
class OrvexAppCommon
{
public:
    OrvexAppCommon();
    ~OrvexAppCommon();

    OrvexAppCommon(const OrvexAppCommon&) = delete;
    OrvexAppCommon& operator=(const OrvexAppCommon&) = delete;

    static const char* applicationName() { return "OrvexPro"; }
};
