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
    int channels = -1;
    QString key = QStringLiteral("channels");
    const QString channelsText = argumentCaseInsensitive(args, key, QString()).trimmed();
    if (!channelsText.isEmpty()) {
        bool isNumber = false;
        channels = channelsText.toInt(&isNumber, 10);
        if (!isNumber || channels < 1) {
            setError(response, QStringLiteral("Number of channels should be a positive integer, '%1' given")
                                   .arg(channelsText));
            return false;
        }
    }
    DeviceInfo chosen;
    if (!chooseDevice(node, args, response, QString(), chosen))
        return false;

    // The engine refuses to start the device it already runs; a new channel count restarts it.
    if (node->isDeviceStarted() && node->getCurrentDevice().name == chosen.name) {
        if (channels < 0 || channels == node->getCurrentDevice().currentChannelCount)
            return true;
        node->stopDevice();
    }
    if (!node->startDevice(chosen, {}, channels)) {
        setError(response, QStringLiteral("Device '%1' could not be started").arg(chosen.name));
        return false;
    }
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
