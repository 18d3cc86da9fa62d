#pragma once

#include <QtGlobal>

// Where live traces should end at a given moment. Devices deliver blocks (a headset 25 per
// second, the generator 20), so traces that jump with every block scroll in steps and at the
// block rate. The clock lets the shown end glide at the sampling rate instead, one typical
// block behind the newest sample, so every frame shows a little more and no sample is skipped.
class ScrollClock
{
public:
    // A block arrived: `written` samples per channel so far, at `nowMs`.
    void arrived(qint64 written, double nowMs);
    void reset();
    // The end sample to show at `nowMs` for a stream of `rate` Hz that has `written` samples:
    // never past them, never backwards, never more than a few blocks behind.
    qint64 endAt(double nowMs, double rate, qint64 written);
    // Blocks arrived within the last second.
    bool isLive(double nowMs) const;

private:
    static constexpr double LiveWithinMs = 1000;
    static constexpr double BlocksBehindAtMost = 3;

    qint64 m_lastWritten = 0;
    double m_lastMs = -1;
    double m_blockSamples = 0; // typical block, smoothed
    qint64 m_shown = 0;
};
