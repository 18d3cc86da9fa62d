#include "server/JsonChannelData.h"

#include <QJsonObject>

#include <cmath>

double JsonChannelData::truncateToHundredths(float value)
{
    const float scaled = value * 100.0f;
    return double(std::trunc(scaled)) / 100.0;
}

namespace {

template<typename Convert>
QJsonArray channelArrays(const QList<QList<float>>& channels, Convert convert)
{
    QJsonArray result;
    for (const QList<float>& channel : channels) {
        QJsonArray values;
        for (float sample : channel)
            values.append(convert(sample));
        result.append(values);
    }
    return result;
}

} // namespace

QJsonArray JsonChannelData::truncatedChannels(const QList<QList<float>>& channels)
{
    return channelArrays(channels, truncateToHundredths);
}

QJsonArray JsonChannelData::channels(const QList<QList<float>>& channels)
{
    return channelArrays(channels, [](float sample) { return double(sample); });
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
