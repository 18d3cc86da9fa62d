#pragma once

#include "core/TimestampedData.h"

#include <QJsonArray>
#include <QList>

// The JSON forms of channel data in replies.
class JsonChannelData
{
public:
    // One inner array per channel; every sample cut (not rounded) to two decimals, so that
    // 12.3456 is sent as 12.34 and -0.019 as -0.01.
    static QJsonArray truncatedChannels(const QList<QList<float>>& channels);
    // One inner array per channel at full float precision (spectra carry small values).
    static QJsonArray channels(const QList<QList<float>>& channels);
    // [{"t": ms since the epoch, "d": channels}, ...] at full precision.
    static QJsonArray timestamped(const QList<TimestampedData>& history);

    static double truncateToHundredths(float value);
};
