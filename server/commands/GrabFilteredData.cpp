#include "server/commands/GrabFilteredData.h"

#include "core/CortexCore.h"

GrabFilteredData::GrabFilteredData(DataServerContext* context, QObject* parent)
    : BaseGrabDataCommand(context, parent)
{
}

QList<QList<float>> GrabFilteredData::getData(CortexCore* node, QMap<QString, QString>&)
{
    return node->grabFilteredData();
}

QString GrabFilteredData::getDescription()
{
    return tr("Grab (clear queue) channel-wise filtered samples (not more than 'StorageTime' ago) (if the device is on and 'DataGrabMode' is enabled)");
}

QMap<QString, QString> GrabFilteredData::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("data"), tr("Channel-wise samples (uV)") } });
}
