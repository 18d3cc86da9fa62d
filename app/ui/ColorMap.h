#pragma once

#include <QRgb>

// A perceptually ordered colour scale from dark blue through teal and green to yellow:
// brightness grows evenly with the value, so weak and strong activity read apart in grey too.
class ColorMap
{
public:
    // Colour of t in [0, 1] (clamped).
    static QRgb at(double t);
};
