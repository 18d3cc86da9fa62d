#pragma once

#include <QString>

// One channel of a montage as the engine applies it to a running device: which inputs form
// the signal, its filters, its scales and how it is shown. Persisted by MontageList.
class MontageChannel
{
public:
    int group1 = -1;         // input index of the active electrode
    int group2 = -1;         // input index of the reference, -1 = none
    double lowPass = 0.0;    // Hz, 0 = off
    int lowPassOrder = 4;
    double highPass = 0.0;   // Hz, 0 = off
    int highPassOrder = 4;
    double bandStop = 0.0;   // Hz, 0 = off
    int userTag = 0;         // free for the caller; not written to montage files
    double scale = 1.0;
    double visualScale = 1.0;
    double offset = 0.0;
    QString name;
    QString color;
    int filterType = 1;

    MontageChannel() = default;
    MontageChannel(QString name, int g1, int g2, double lp, double hp, double bs, double scale,
                   double visualScale, double offset);
    MontageChannel(const MontageChannel&) = default;
    MontageChannel(MontageChannel&&) noexcept = default;
    MontageChannel& operator=(const MontageChannel&) = default;
    MontageChannel& operator=(MontageChannel&&) noexcept = default;

    bool operator==(const MontageChannel& other) const;
    bool operator!=(const MontageChannel& other) const { return !(*this == other); }
};
