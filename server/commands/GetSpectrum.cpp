#include "server/commands/GetSpectrum.h"

#include "core/CortexCore.h"
#include "server/JsonChannelData.h"

GetSpectrum::GetSpectrum(DataServerContext* context, QObject* parent)
    : SpectrumGrabCommand(context, parent)
{
}

QJsonValue GetSpectrum::getSpectrum(CortexCore* node, QMap<QString, QString>&)
{
    return JsonChannelData::timestamped(node->getSpectrumData());
}

QString GetSpectrum::getDescription()
{
    return tr("Returns spectrum history not older than 'StorageTime' seconds.");
}

QString GetSpectrum::spectrumDescription() const
{
    return tr("Array of { t: timestamp, d: data } of channel-wise spectrum in uV");
}
