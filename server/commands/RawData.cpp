#include "server/commands/RawData.h"

#include "core/CortexCore.h"

RawData::RawData(DataServerContext* context, QObject* parent)
    : BaseDataCommand(context, parent)
{
}

QList<QList<float>> RawData::getData(CortexCore* node, QMap<QString, QString>&)
{
    return node->getRawData();
}

QString RawData::getDescription()
{
    return tr("Grab (clear queue) channel-wise unfiltered device samples (not more than 'StorageTime' ago) (if the device is on)");
}

QMap<QString, QString> RawData::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("data"), tr("Channel-wise samples (uV)") } });
}
