#pragma once

#include "app/ui/MinMaxDecimator.h"

#include <QSGGeometry>

#include <vector>

class TraceBuffer;

// Turns the window of one trace channel into line-segment vertices: per pixel column vertical
// segments spanning minimum to maximum, and a segment joining it to the previous column unless
// a gap lies between. x is the column index, y is in sample units; a matrix maps both to
// pixels. A plain class, so the cost of a frame can be measured without a window.
class TraceGeometry
{
public:
    // A join (or a cap of the column before), and two segments across the column's range.
    static constexpr int VerticesPerColumn = 6;

    // Allocates; `span` samples across `columns` columns.
    void setLayout(int columns, qint64 span);
    int columns() const { return m_decimator.columns(); }
    qint64 span() const { return m_decimator.span(); }
    int capacity() const { return columns() * VerticesPerColumn + 2; }

    // Fills `out` (capacity() vertices) with the picture of `channel` whose last column holds
    // sample end - 1. Returns the number of vertices used; allocates nothing.
    int fill(const TraceBuffer& buffer, int channel, qint64 end, QSGGeometry::Point2D* out);
    // Extremes of the last picture filled; NaN when it held no sample.
    float minimum() const { return m_decimator.minimum(); }
    float maximum() const { return m_decimator.maximum(); }

private:
    int vertices(QSGGeometry::Point2D* out) const;

    MinMaxDecimator m_decimator;
    std::vector<float> m_samples;
};
