#pragma once

#include <QtGlobal>

#include <vector>

// Min/max decimation of a window of samples into pixel columns: each column keeps the extremes
// of its samples, so a one-sample spike still reaches the screen. Column boundaries are fixed in
// the absolute sample index space (sample k falls into column floor(k * columns / span)), so a
// scrolling picture keeps the contents of every column and does not shimmer.
class MinMaxDecimator
{
public:
    struct Column
    {
        float minimum = 0;
        float maximum = 0;
        float first = 0;     // first valid sample, where the line enters the column
        float last = 0;      // last valid sample, where it leaves
        bool valid = false;  // holds at least one valid (not NaN) sample
        bool joined = false; // continues the previous valid column without a NaN between them
    };

    // Allocates; `span` samples fill `columns` columns.
    void setLayout(int columns, qint64 span);
    int columns() const { return int(m_columns.size()); }
    qint64 span() const { return m_span; }

    // First sample of the picture whose last column holds sample end - 1.
    qint64 firstSample(qint64 end) const { return columnStart(firstColumn(end)); }
    // samples[i] is sample firstSample(end) + i, for every sample before `end`.
    void run(const float* samples, qint64 end);

    const Column& column(int c) const { return m_columns[size_t(c)]; }
    // Extremes of the whole picture; NaN when it holds no valid sample.
    float minimum() const { return m_minimum; }
    float maximum() const { return m_maximum; }

private:
    qint64 firstColumn(qint64 end) const;
    qint64 columnStart(qint64 absoluteColumn) const;

    std::vector<Column> m_columns;
    qint64 m_span = 1;
    float m_minimum = 0;
    float m_maximum = 0;
};
