#pragma once

#include "core/DeviceInfo.h"

#include <QStringList>

// How the engine lists a headset found over Bluetooth: which advertised names it accepts,
// the serial number inside the name, and the channel mode its channel count implies.
class HeadsetDescriptor
{
public:
    // Lower-case name prefixes of the headsets the engine accepts, in order.
    static const QStringList& allowedDevices();
    static bool isAllowedName(const QString& name);

    // The text between the first "(" and the last ")", when the name has a prefix before the
    // "(" and at least two characters inside; empty otherwise.
    static QString serialNumberFromName(const QString& name);

    // Sampling rate of the one channel mode a channel count implies; 0 when it has none.
    static float channelModeRate(int channelCount);

    // The listing of a discovered headset whose device object reports `channelCount`.
    static DeviceInfo describe(const QString& name, int channelCount);
};
