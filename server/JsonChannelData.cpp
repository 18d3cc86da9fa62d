#include "server/JsonChannelData.h"

#include <QJsonObject>

#include <cmath>

double JsonChannelData::truncateToHundredths(float value)
{
    const float scaled = value * 100.0f;
    return double(std::trunc(scaled)) / 100.0;
}

QJsonArray JsonChannelData::truncatedChannels(const QList<QList<float>>& channels)
{
    QJsonArray result;
    for (const QList<float>& channel : channels) {
        QJsonArray values;
        for (float sample : channel)
            values.append(truncateToHundredths(sample));
        result.append(values);
    }
    return result;
}

QJsonArray JsonChannelData::channels(const QList<QList<float>>& channels)
{
    QJsonArray result;
    for (const QList<float>& channel : channels) {
        QJsonArray values;
        for (float sample : channel)
            values.append(double(sample));
        result.append(values);
    }
    return result;
}

QJsonArray JsonChannelData::timestamped(const QList<TimestampedData>& history)
{
    QJsonArray result;
    for (const TimestampedData& entry : history) {
        QJsonObject item;
        item.insert(QStringLiteral("t"), entry.timestamp);
        item.insert(QStringLiteral("d"), channels(entry.data));
        result.append(item);
    }
    return result;
}
