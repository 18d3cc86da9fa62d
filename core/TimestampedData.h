#pragma once

#include <QList>
#include <QtGlobal>

// A block of values with the moment it was produced (ms since the Unix epoch).
struct TimestampedData
{
    TimestampedData() = default;
    TimestampedData(qint64 timestamp, QList<QList<float>> data)
        : timestamp(timestamp)
        , data(std::move(data))
    {
    }

    qint64 timestamp = 0;
    QList<QList<float>> data;
};
