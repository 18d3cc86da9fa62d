#include "app/ui/MinMaxDecimator.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
qint64 floorDiv(qint64 a, qint64 b)
{
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)));
}
}

void MinMaxDecimator::setLayout(int columns, qint64 span)
{
    m_columns.assign(size_t(std::max(columns, 1)), Column());
    m_span = std::max<qint64>(span, 1);
}

qint64 MinMaxDecimator::firstColumn(qint64 end) const
{
    return floorDiv((end - 1) * columns(), m_span) - columns() + 1;
}

qint64 MinMaxDecimator::columnStart(qint64 absoluteColumn) const
{
    return -floorDiv(-absoluteColumn * m_span, columns());
}

void MinMaxDecimator::run(const float* samples, qint64 end)
{
    // Column a starts at sample ceil(a * span / columns); the quotient and remainder of a * span
    // are stepped along, so the loop needs no division.
    const qint64 n = columns(), step = m_span / n, stepRest = m_span % n;
    const qint64 column0 = firstColumn(end);
    qint64 whole = floorDiv(column0 * m_span, n), rest = column0 * m_span - whole * n;
    const qint64 first = whole + (rest > 0);
    bool previous = false; // a valid column came before
    bool gap = false;      // a NaN came after the last valid sample
    constexpr float inf = std::numeric_limits<float>::infinity();
    m_minimum = inf;
    m_maximum = -inf;
    qint64 from = 0;
    for (int c = 0; c < n; ++c) {
        whole += step;
        rest += stepRest;
        if (rest >= n) {
            rest -= n;
            ++whole;
        }
        const qint64 to = std::min(whole + (rest > 0), end) - first;
        Column& column = m_columns[size_t(c)];
        column.valid = false;
        if (to <= from)
            continue; // no sample falls here: fewer samples than columns
        // A comparison with NaN is false, so NaN never becomes an extreme.
        float lo = inf, hi = -inf;
        for (qint64 i = from; i < to; ++i) {
            const float v = samples[i];
            lo = v < lo ? v : lo;
            hi = v > hi ? v : hi;
        }
        if (!(lo <= hi)) {
            gap = true;
            from = to;
            continue;
        }
        qint64 f = from, l = to - 1;
        while (std::isnan(samples[f]))
            ++f;
        while (std::isnan(samples[l]))
            --l;
        column = Column { lo, hi, samples[f], samples[l], true, previous && !gap && f == from };
        previous = true;
        gap = l != to - 1;
        m_minimum = lo < m_minimum ? lo : m_minimum;
        m_maximum = hi > m_maximum ? hi : m_maximum;
        from = to;
    }
    if (!previous)
        m_minimum = m_maximum = std::numeric_limits<float>::quiet_NaN();
}
