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

int TraceGeometry::vertices(QSGGeometry::Point2D* out) const
{
    int n = 0;
    float previousX = 0, previousY = 0;
    for (int c = 0; c < columns(); ++c) {
        const MinMaxDecimator::Column& column = m_decimator.column(c);
        if (!column.valid)
            continue;
        const float x = float(c);
        if (column.joined) {
            out[n++].set(previousX, previousY);
            out[n++].set(x, column.first);
        }
        if (column.minimum < column.maximum) {
            out[n++].set(x, column.minimum);
            out[n++].set(x, column.maximum);
        } else {
            // A flat column still shows one pixel, even when no segment joins it.
            out[n++].set(x - 0.5f, column.minimum);
            out[n++].set(x + 0.5f, column.minimum);
        }
        previousX = x;
        previousY = column.last;
    }
    return n;
}
