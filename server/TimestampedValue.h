#pragma once

#include <QtGlobal>

// One reading of a history reply: {"t": timestamp, "v": value}.
struct TimestampedValue
{
    qint64 timestamp = 0; // ms since the Unix epoch
    double value = 0;
};
