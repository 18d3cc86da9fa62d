#include "server/commands/FilteredData.h"

#include "core/CortexCore.h"

FilteredData::FilteredData(DataServerContext* context, QObject* parent)
    : BaseDataCommand(context, parent)
{
}

QList<QList<float>> FilteredData::getData(CortexCore* node, QMap<QString, QString>&)
{
    return node->getFilteredData();
}

QString FilteredData::getDescription()
{
    return tr("Get channel-wise filtered samples (not more than 'StorageTime' ago) (if the device is on)");
}

QMap<QString, QString> FilteredData::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("data"), tr("Channel-wise samples (uV)") } });
}
