#pragma once

#include <QJsonObject>
#include <QtGlobal>

// One set of rhythm powers; -1 means "not computed".
struct StandartRhythmSample
{
    float alpha = -1;
    float beta = -1;
    float gamma = -1;
    float delta = -1;
    float theta = -1;
    float extra = -1; // carried along, never published
    qint64 timestamp = 0;

    QJsonObject toJson() const
    {
        QJsonObject json;
        json.insert(QStringLiteral("alpha"), double(alpha));
        json.insert(QStringLiteral("beta"), double(beta));
        json.insert(QStringLiteral("theta"), double(theta));
        json.insert(QStringLiteral("delta"), double(delta));
        json.insert(QStringLiteral("gamma"), double(gamma));
        json.insert(QStringLiteral("t"), timestamp);
        return json;
    }
};
