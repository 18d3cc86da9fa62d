#pragma once

#include <QDateTime>

#include <functional>

// Where time-driven classes read "now" (ms since the Unix epoch); tests substitute their own.
using TimeSource = std::function<qint64()>;

inline qint64 systemTimeMs()
{
    return QDateTime::currentMSecsSinceEpoch();
}
