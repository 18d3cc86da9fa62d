#pragma once

#include <QString>

#include <utility>

// A named frequency band of the spectrum analyzer, in Hz. The band takes the bins from the
// first one at or above `from` up to, but not including, the first one at or above `to`.
class SpectrumRhythm
{
public:
    QString name;
    float from = 0;
    float to = 0;

    SpectrumRhythm() = default;
    SpectrumRhythm(QString rhythmName, float lower, float upper)
        : name(std::move(rhythmName)), from(lower), to(upper)
    {
    }

    bool operator==(const SpectrumRhythm& other) const
    {
        return name == other.name && from == other.from && to == other.to;
    }
    bool operator!=(const SpectrumRhythm& other) const { return !(*this == other); }
};
