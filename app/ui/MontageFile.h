#pragma once

#include "dsp/MontageChannel.h"

#include <QList>
#include <QString>
#include <QStringList>

// Montage files as the user loads and saves them: XML (the engine's own form) or, for a path
// ending in ".json", the JSON form of a named montage. The channel type (a ChannelType value)
// rides in MontageChannel::userTag; only JSON keeps it. JSON also keeps the reference input,
// offset and visual scale as extra keys of each channel, which readers of the plain form ignore.
class MontageFile
{
public:
    static bool save(const QString& path, const QList<MontageChannel>& channels, float frequency, QString& error);
    // False with `error` set for a file that cannot be read, is damaged or has no channels.
    static bool load(const QString& path, QList<MontageChannel>& channels, QString& error);

    static bool isJson(const QString& path);
    // The channel types' texts in ChannelType order ("EEG", "ECG", ...).
    static QStringList typeNames();
};
