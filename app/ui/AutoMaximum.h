#pragma once

// An automatic axis top that follows the data without jumping about: it rises at once to a
// round value above a new peak, so nothing is clipped, and falls back slowly.
class AutoMaximum
{
public:
    // Feeds the peak of the data now shown; returns the axis top (1, 2 or 5 times a power of ten).
    double update(double peak);
    void reset() { m_smoothed = 0; }
    // The smallest of 1, 2, 5 times a power of ten that is >= value (> 0).
    static double roundUp(double value);

private:
    double m_smoothed = 0;
};
