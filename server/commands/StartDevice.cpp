#include "server/commands/StartDevice.h"

#include "core/CortexCore.h"

StartDevice::StartDevice(DataServerContext* context, QObject* parent)
    : BaseFoundDeviceCommand(0, context, parent)
{
}

bool StartDevice::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    if (node->getFoundDevices().isEmpty()) {
        setError(response, QStringLiteral("There are no devices to choose from"));
        return false;
    }
    // Absent: the device's preferred count (-1). Given: read as a base-10 integer, with 0 for
    // text that is not one; the engine's start rules deal with counts it cannot use.
    int channels = -1;
    QString key = QStringLiteral("channels");
    const QString channelsText = argumentCaseInsensitive(args, key, QString()).trimmed();
    if (!channelsText.isEmpty())
        channels = channelsText.toInt(nullptr, 10);
    DeviceInfo chosen;
    if (!chooseDevice(node, args, response, QString(), chosen))
        return false;

    // The engine's start rules decide, and say why on the console: the device it already runs
    // keeps running as it is, whatever channel count is asked for. The request itself was valid.
    node->startDevice(chosen, {}, channels);
    return true;
}

QString StartDevice::getDescription()
{
    return tr("Starts device by serial number (use 'startDevice?SN=XXXX') or by index from 'listdevices' command "
              "(use 'startDevice?index=X')");
}

QMap<QString, QString> StartDevice::getArgumentDescriptions()
{
    QMap<QString, QString> descriptions = selectionArgumentDescriptions();
    descriptions.insert(QStringLiteral("channels"),
                        tr("[Optional] Number of channels (less channels - higher data frequency)"));
    return descriptions;
}
