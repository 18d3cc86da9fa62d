#include "server/commands/GrabRawData.h"

#include "core/CortexCore.h"

GrabRawData::GrabRawData(DataServerContext* context, QObject* parent)
    : BaseGrabDataCommand(context, parent)
{
}

QList<QList<float>> GrabRawData::getData(CortexCore* node, QMap<QString, QString>&)
{
    return node->grabOriginalData();
}

QString GrabRawData::getDescription()
{
    return tr("Get channel-wise unfiltered device samples (not more than 'StorageTime' ago) (if the device is on and 'DataGrabMode' is enabled)");
}

QMap<QString, QString> GrabRawData::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("data"), tr("Channel-wise samples (uV)") } });
}
