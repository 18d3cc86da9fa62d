#include "server/commands/LastSpectrum.h"

#include "core/CortexCore.h"
#include "server/JsonChannelData.h"

LastSpectrum::LastSpectrum(DataServerContext* context, QObject* parent)
    : SpectrumGrabCommand(context, parent)
{
}

QJsonValue LastSpectrum::getSpectrum(CortexCore* node, QMap<QString, QString>&)
{
    return JsonChannelData::channels(node->getLastSpectrum());
}

QString LastSpectrum::getDescription()
{
    return tr("Returns last calculated spectrum in uV");
}

QString LastSpectrum::spectrumDescription() const
{
    return tr("Channel-wise data of spectrum in uV");
}
