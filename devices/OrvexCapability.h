#pragma once

#include <QList>
#include <QString>

// What a headset model offers, looked up by its advertised name.
struct OrvexCapability
{
    QString prefix; // advertised name prefix, compared without regard to case
    int channelCount = 0;
    QList<QString> channelNames;
};
