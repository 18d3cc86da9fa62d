#include "devices/TickPacer.h"

#include <cmath>

qint32 TickPacer::samplesDue(qint64 now, float samplesPerMs, qint64& lastTickTime, float& carry)
{
    if (lastTickTime == 0) {
        lastTickTime = now;
        return 0;
    }
    const float x = float(now - lastTickTime) * samplesPerMs + carry;
    const float n = std::floor(x);
    lastTickTime = now;
    if (!(n < 2147483648.0f) || !std::isfinite(n)) {
        // A clock jump too large to represent: drop the gap rather than overflow.
        carry = 0;
        return 0;
    }
    carry = x - n;
    // A clock that went backwards produces nothing until it catches up.
    return n > 0 ? qint32(n) : 0;
}
