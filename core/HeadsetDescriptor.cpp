#include "core/HeadsetDescriptor.h"

#include "services/GlobalConsoleWriter.h"

const QStringList& HeadsetDescriptor::allowedDevices()
{
    static const QStringList prefixes = { QStringLiteral("orvex"), QStringLiteral("ox"),
                                          QStringLiteral("corvanta"), QStringLiteral("kelvo"),
                                          QStringLiteral("zentra"), QStringLiteral("zen-tra") };
    return prefixes;
}

bool HeadsetDescriptor::isAllowedName(const QString& name)
{
    if (name.isEmpty())
        return false;
    for (const QString& prefix : allowedDevices()) {
        if (name.startsWith(prefix, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

QString HeadsetDescriptor::serialNumberFromName(const QString& name)
{
    const qsizetype open = name.indexOf(QLatin1Char('('));
    const qsizetype close = name.lastIndexOf(QLatin1Char(')'));
    if (open >= 1 && close > open + 2)
        return name.mid(open + 1, close - open - 1);
    return QString();
}

float HeadsetDescriptor::channelModeRate(int channelCount)
{
    switch (channelCount) {
    case 1: return 1000.0f;
    case 2: return 500.0f;
    case 4:
    case 6:
    case 8: return 125.0f;
    case 16:
    case 21: return 250.0f;
    default: return 0.0f;
    }
}

DeviceInfo HeadsetDescriptor::describe(const QString& name, int channelCount)
{
    DeviceInfo info;
    info.name = name;
    info.model = QStringLiteral("Orvex");
    info.maxChannels = channelCount;
    info.preferredChannelCount = channelCount;
    info.currentChannelCount = channelCount;
    info.battery = -1;
    const float rate = channelModeRate(channelCount);
    if (rate > 0)
        info.channelModes.insert(channelCount, rate);
    info.serialNumber = serialNumberFromName(name);

    // The belt devices stream fewer channels than they can carry; start them as they prefer.
    if (name.startsWith(QStringLiteral("Corvanta-2"), Qt::CaseInsensitive)) {
        info.preferredChannelCount = 2;
    } else if (name.startsWith(QStringLiteral("CoV"), Qt::CaseInsensitive)
               || name.startsWith(QStringLiteral("Co"), Qt::CaseInsensitive)) {
        kxDebug() << QStringLiteral("COV prefer 1 ") + name;
        info.preferredChannelCount = 1;
    }
    return info;
}
