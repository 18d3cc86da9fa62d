#include "server/commands/GrabSpectrum.h"

#include "core/CortexCore.h"
#include "server/JsonChannelData.h"

GrabSpectrum::GrabSpectrum(DataServerContext* context, QObject* parent)
    : SpectrumGrabCommand(context, parent)
{
}

QJsonValue GrabSpectrum::getSpectrum(CortexCore* node, QMap<QString, QString>&)
{
    return JsonChannelData::timestamped(node->grabSpectrumData());
}

QString GrabSpectrum::getDescription()
{
    return tr("Returns spectrum history and clears the buffer. The buffer contains data not older than 'StorageTime' seconds.");
}

QString GrabSpectrum::spectrumDescription() const
{
    return tr("Array of { t: timestamp, d: data } of channel-wise spectrum in uV");
}
