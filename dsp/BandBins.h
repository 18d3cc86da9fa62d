#pragma once

#include <QtGlobal>

#include <cmath>

// The bins of a spectrum that fall into a frequency band [lower, upper], both ends included,
// where bin i lies at i × step. Spectrum steps such as 0.1 Hz are not exact in floating point,
// so a bin within 1/1000 of a step outside the band still counts: a band end that falls on a
// bin always includes it. A step that is not a positive number selects no bin.
class BandBins
{
public:
    static constexpr double Margin = 1e-3; // in bins

    BandBins(double lower, double upper, double step)
    {
        if (!(step > 0.0) || !std::isfinite(step) || !(lower <= upper))
            return;
        m_first = std::ceil(lower / step - Margin);
        m_last = std::floor(upper / step + Margin);
    }

    bool contains(int bin) const { return bin >= m_first && bin <= m_last; }

private:
    double m_first = 1.0;
    double m_last = 0.0;
};
