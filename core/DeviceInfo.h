#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include "services/OrderedJson.h"

// Description of one found or virtual device, as listed by the engine and the API.
struct DeviceInfo
{
    QString name;
    QString secondName;
    QString serialNumber;
    QString model;
    qint32 maxChannels = 0;
    qint32 preferredChannelCount = 8;
    qint32 currentChannelCount = 0;
    qint32 battery = -1;
    QMap<qint32, float> channelModes; // channel count -> sampling rate, Hz
    QList<QString> channelNames;

    // The second name, the current channel count and the channel names stay out of the JSON
    // form on purpose: clients select devices by name and mode only.
    QJsonObject toJson() const
    {
        QJsonObject json;
        json.insert(QStringLiteral("name"), name);
        json.insert(QStringLiteral("serialNumber"), serialNumber);
        json.insert(QStringLiteral("model"), model);
        json.insert(QStringLiteral("preferredChannelCount"), preferredChannelCount);
        json.insert(QStringLiteral("maxChannels"), maxChannels);
        json.insert(QStringLiteral("battery"), battery);
        QJsonArray modes;
        for (auto it = channelModes.cbegin(); it != channelModes.cend(); ++it) {
            QJsonObject mode;
            mode.insert(QStringLiteral("channels"), it.key());
            mode.insert(QStringLiteral("frequency"), double(it.value()));
            modes.append(mode);
        }
        json.insert(QStringLiteral("channelModes"), modes);
        return json;
    }

    // toJson() written with its keys in the order clients read them.
    QByteArray toJsonText() const
    {
        static const QStringList order = { QStringLiteral("name"), QStringLiteral("serialNumber"),
                                           QStringLiteral("model"), QStringLiteral("preferredChannelCount"),
                                           QStringLiteral("maxChannels"), QStringLiteral("battery"),
                                           QStringLiteral("channelModes") };
        return OrderedJson::serialize(toJson(), order);
    }
};

Q_DECLARE_METATYPE(DeviceInfo)
