#include "app/ui/TraceGeometry.h"

#include "app/ui/TraceBuffer.h"

void TraceGeometry::setLayout(int columns, qint64 span)
{
    if (columns == this->columns() && span == this->span() && !m_samples.empty())
        return;
    m_decimator.setLayout(columns, span);
    // A picture reaches back at most one partial column more than its span.
    m_samples.assign(size_t(this->span() + this->span() / this->columns() + 2), 0.0f);
}

int TraceGeometry::fill(const TraceBuffer& buffer, int channel, qint64 end, QSGGeometry::Point2D* out)
{
    const qint64 first = m_decimator.firstSample(end);
    buffer.copy(channel, first, int(end - first), m_samples.data());
    m_decimator.run(m_samples.data(), end);
    return vertices(out);
}

// Rasterisers leave out the last pixel of a segment, so every segment of a column ends on a
// pixel that another segment starts from: the extremes lead to the last sample, and the last
// sample starts the segment to the next column, or a one-pixel cap where none follows.
int TraceGeometry::vertices(QSGGeometry::Point2D* out) const
{
    int n = 0;
    bool previous = false;
    float previousX = 0, previousY = 0;
    const auto cap = [&] {
        out[n++].set(previousX - 0.5f, previousY);
        out[n++].set(previousX + 0.5f, previousY);
    };
    for (int c = 0; c < columns(); ++c) {
        const MinMaxDecimator::Column& column = m_decimator.column(c);
        if (!column.valid)
            continue;
        const float x = float(c);
        if (column.joined) {
            out[n++].set(previousX, previousY);
            out[n++].set(x, column.first);
        } else if (previous) {
            cap();
        }
        if (column.minimum < column.maximum) {
            out[n++].set(x, column.minimum);
            out[n++].set(x, column.last);
            out[n++].set(x, column.maximum);
            out[n++].set(x, column.last);
        } else { // one pixel wide, so a lone sample shows too
            out[n++].set(x - 0.5f, column.minimum);
            out[n++].set(x + 0.5f, column.minimum);
        }
        previous = true;
        previousX = x;
        previousY = column.last;
    }
    if (previous)
        cap();
    return n;
}
