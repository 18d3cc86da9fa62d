#include "app/ui/ColorMap.h"

#include <QColor>

#include <algorithm>
#include <array>
#include <cmath>

namespace {
constexpr int Steps = 256;
// Evenly spaced stops of the scale; the table interpolates between them.
constexpr std::array<QRgb, 9> Stops = { 0x440154, 0x472d7b, 0x3b528b, 0x2c728e, 0x21918c,
                                        0x28ae80, 0x5ec962, 0xaddc30, 0xfde725 };

std::array<QRgb, Steps> makeTable()
{
    std::array<QRgb, Steps> table {};
    for (int i = 0; i < Steps; ++i) {
        const double position = double(i) / (Steps - 1) * (Stops.size() - 1);
        const size_t k = std::min(size_t(position), Stops.size() - 2);
        const double t = position - double(k);
        const auto mix = [t](int a, int b) { return int(std::lround(a + (b - a) * t)); };
        table[size_t(i)] = qRgb(mix(qRed(Stops[k]), qRed(Stops[k + 1])), mix(qGreen(Stops[k]), qGreen(Stops[k + 1])),
                                mix(qBlue(Stops[k]), qBlue(Stops[k + 1])));
    }
    return table;
}
}

QRgb ColorMap::at(double t)
{
    static const std::array<QRgb, Steps> table = makeTable();
    const double clamped = std::isnan(t) ? 0.0 : std::clamp(t, 0.0, 1.0);
    return table[size_t(std::lround(clamped * (Steps - 1)))];
}
