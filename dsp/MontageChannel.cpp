#include "dsp/MontageChannel.h"

#include <utility>

MontageChannel::MontageChannel(QString name, int g1, int g2, double lp, double hp, double bs,
                               double scale, double visualScale, double offset)
    : group1(g1)
    , group2(g2)
    , lowPass(lp)
    , highPass(hp)
    , bandStop(bs)
    , scale(scale)
    , visualScale(visualScale)
    , offset(offset)
    , name(std::move(name))
{
}

bool MontageChannel::operator==(const MontageChannel& other) const
{
    return group1 == other.group1 && group2 == other.group2 && lowPass == other.lowPass
        && lowPassOrder == other.lowPassOrder && highPass == other.highPass
        && highPassOrder == other.highPassOrder && bandStop == other.bandStop
        && userTag == other.userTag && scale == other.scale && visualScale == other.visualScale
        && offset == other.offset && name == other.name && color == other.color
        && filterType == other.filterType;
}
