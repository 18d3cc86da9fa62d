#pragma once

#include <QtGlobal>

// One normalised index reading; `level` is the percentage the engine reports, -1 = no value.
struct RhythmNormSample
{
    float value = -1; // clamped input value
    float low = -1;
    float top = -1;
    float level = -1;
    bool flag = false;
    qint64 timestamp = 0;
};
