#include "app/ui/AutoMaximum.h"

#include <cmath>

namespace {
constexpr double Fall = 0.1;     // share of the distance to a lower peak covered per update
constexpr double Headroom = 1.1; // room above the peak so the line does not touch the top
}

double AutoMaximum::update(double peak)
{
    if (peak > 0 && std::isfinite(peak))
        m_smoothed = peak > m_smoothed ? peak : m_smoothed + Fall * (peak - m_smoothed);
    return m_smoothed > 0 ? roundUp(m_smoothed * Headroom) : 1.0;
}

double AutoMaximum::roundUp(double value)
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double mantissa = value / power;
    const double step = mantissa <= 1 + 1e-9 ? 1 : mantissa <= 2 + 1e-9 ? 2 : mantissa <= 5 + 1e-9 ? 5 : 10;
    return step * power;
}
