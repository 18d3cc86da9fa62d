#pragma once

#include "core/DeviceInfo.h"
#include "dsp/MontageChannel.h"

#include <QList>
#include <QStringList>

// The montages the engine builds by itself when a device starts without one.
class DefaultMontage
{
public:
    // 10-20 electrode names for the channel counts devices offer; "Ch1".."ChN" otherwise.
    static QStringList standardChannelNames(int channelCount);

    // One montage channel per input; "EMG", "ECG" and "Omega" get their own filters.
    static QList<MontageChannel> forChannelNames(const QStringList& names);

    // The automatic montage for a device: one channel per input, and for the belt devices
    // (names beginning with "Co") an "EMG" channel on the first input and, for "Corvanta-2",
    // "ECG" and "Omega" on the second.
    static QList<MontageChannel> forDevice(const DeviceInfo& info, const QStringList& channelNames);

    static MontageChannel channel(const QString& name, int input);
};
