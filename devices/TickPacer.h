#pragma once

#include <QtGlobal>

// Wall-clock pacing of the virtual devices: how many samples are due on a timer tick.
class TickPacer
{
public:
    // The first tick (lastTickTime 0) only stamps the time and yields 0. Afterwards the elapsed
    // time in samples plus the carried fraction is cut to whole samples and the fraction is
    // carried into the next tick, so no sample is lost.
    static qint32 samplesDue(qint64 now, float samplesPerMs, qint64& lastTickTime, float& carry);
};
