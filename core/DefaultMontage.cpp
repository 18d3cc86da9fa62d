#include "core/DefaultMontage.h"

QStringList DefaultMontage::standardChannelNames(int channelCount)
{
    switch (channelCount) {
    case 1: return { QStringLiteral("O1") };
    case 2: return { QStringLiteral("O1"), QStringLiteral("O2") };
    case 4: return { QStringLiteral("O1"), QStringLiteral("T3"), QStringLiteral("T4"), QStringLiteral("O2") };
    case 6:
        return { QStringLiteral("O1"), QStringLiteral("T3"), QStringLiteral("Fp1"),
                 QStringLiteral("Fp2"), QStringLiteral("T4"), QStringLiteral("O2") };
    case 8:
        return { QStringLiteral("O1"), QStringLiteral("T3"), QStringLiteral("C3"), QStringLiteral("Fp1"),
                 QStringLiteral("Fp2"), QStringLiteral("C4"), QStringLiteral("T4"), QStringLiteral("O2") };
    case 16:
        return { QStringLiteral("Fp1"), QStringLiteral("Fp2"), QStringLiteral("F7"), QStringLiteral("F3"),
                 QStringLiteral("F4"), QStringLiteral("F8"), QStringLiteral("T3"), QStringLiteral("C3"),
                 QStringLiteral("C4"), QStringLiteral("T4"), QStringLiteral("T5"), QStringLiteral("P3"),
                 QStringLiteral("P4"), QStringLiteral("T6"), QStringLiteral("O1"), QStringLiteral("O2") };
    case 21:
        return { QStringLiteral("Fp1"), QStringLiteral("Fp2"), QStringLiteral("F7"), QStringLiteral("F3"),
                 QStringLiteral("Fz"), QStringLiteral("F4"), QStringLiteral("F8"), QStringLiteral("T3"),
                 QStringLiteral("C3"), QStringLiteral("Cz"), QStringLiteral("C4"), QStringLiteral("T4"),
                 QStringLiteral("T5"), QStringLiteral("P3"), QStringLiteral("Pz"), QStringLiteral("P4"),
                 QStringLiteral("T6"), QStringLiteral("O1"), QStringLiteral("O2"), QStringLiteral("A1"),
                 QStringLiteral("A2") };
    default: {
        QStringList names;
        for (int i = 1; i <= channelCount; ++i)
            names.append(QStringLiteral("Ch%1").arg(i));
        return names;
    }
    }
}

MontageChannel DefaultMontage::channel(const QString& name, int input)
{
    // Non-EEG signals need other bands than the engine's EEG filters.
    if (name.compare(QStringLiteral("EMG"), Qt::CaseInsensitive) == 0)
        return MontageChannel(name, input, -1, 100.0, 20.0, 0, 1.0, 1.0, 0);
    if (name.compare(QStringLiteral("ECG"), Qt::CaseInsensitive) == 0)
        return MontageChannel(name, input, -1, 40.0, 0.5, 0, 1.0, 1.0, 0);
    if (name.compare(QStringLiteral("Omega"), Qt::CaseInsensitive) == 0)
        return MontageChannel(name, input, -1, 1.0, 0.05, 0, 1.0, 1.0, 0);
    return MontageChannel(name, input, -1, 0, 0, 0, 1.0, 1.0, 0);
}

QList<MontageChannel> DefaultMontage::forChannelNames(const QStringList& names)
{
    QList<MontageChannel> montage;
    for (int i = 0; i < names.size(); ++i)
        montage.append(channel(names[i], i));
    return montage;
}

QList<MontageChannel> DefaultMontage::forDevice(const DeviceInfo& info, const QStringList& channelNames)
{
    QList<MontageChannel> montage = forChannelNames(channelNames);
    if (!info.name.startsWith(QStringLiteral("Co"), Qt::CaseInsensitive) || channelNames.isEmpty())
        return montage;
    montage.append(channel(QStringLiteral("EMG"), 0));
    if (info.name.startsWith(QStringLiteral("Corvanta-2"), Qt::CaseInsensitive) && channelNames.size() > 1) {
        montage.append(channel(QStringLiteral("ECG"), 1));
        montage.append(channel(QStringLiteral("Omega"), 1));
    }
    return montage;
}
