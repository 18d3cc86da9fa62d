#pragma once

#include <QString>

// Stream-style front of the global console: every operand becomes one item of the empty type.
class GlobalConsoleWriter
{
public:
    GlobalConsoleWriter& operator<<(char value);
    GlobalConsoleWriter& operator<<(short value);
    GlobalConsoleWriter& operator<<(int value);
    GlobalConsoleWriter& operator<<(float value);
    GlobalConsoleWriter& operator<<(double value);
    GlobalConsoleWriter& operator<<(const char* text);
    GlobalConsoleWriter& operator<<(const QString& text);
};

GlobalConsoleWriter& kxDebug();
