#include "server/commands/CurrentDeviceInfo.h"

#include "core/CortexCore.h"

#include <QJsonArray>

CurrentDeviceInfo::CurrentDeviceInfo(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool CurrentDeviceInfo::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const QJsonObject state = describe(node);
    for (auto it = state.constBegin(); it != state.constEnd(); ++it)
        response.insert(it.key(), it.value());
    return true;
}

QJsonObject CurrentDeviceInfo::describe(CortexCore* node)
{
    float hpf = 0, lpf = 0, bsf = 0, bsf2 = 0;
    node->getFilters(hpf, lpf, bsf, bsf2);
    const QList<QString> channels = node->getCurrentMontageChannelNames();
    QJsonArray quality;
    for (int value : node->getSignalQuality())
        quality.append(value);

    QJsonObject state;
    state.insert(QStringLiteral("searching"), node->isSearchingDevices());
    state.insert(QStringLiteral("currentChannels"), int(channels.size()));
    state.insert(QStringLiteral("currentFrequency"), double(node->getCurrentDeviceFrequency()));
    state.insert(QStringLiteral("currentChannelsNames"), QJsonArray::fromStringList(channels));
    state.insert(QStringLiteral("quality"), quality);
    state.insert(QStringLiteral("LPF"), double(lpf));
    state.insert(QStringLiteral("HPF"), double(hpf));
    state.insert(QStringLiteral("BSF"), double(bsf));
    state.insert(QStringLiteral("BSF2"), double(bsf2));
    state.insert(QStringLiteral("isRecording"), node->isRecording());
    state.insert(QStringLiteral("recordDuration"), double(node->currentRecordDuration()));
    state.insert(QStringLiteral("device"), deviceJson(node));
    return state;
}

QJsonValue CurrentDeviceInfo::deviceJson(CortexCore* node)
{
    if (!node->isDeviceStarted())
        return QJsonValue(QJsonValue::Null);
    const DeviceInfo info = node->getCurrentDevice();
    QJsonObject device = info.toJson();
    device.insert(QStringLiteral("currentChannelCount"), info.currentChannelCount);
    AbstractDevice* current = node->currentDevice();
    device.insert(QStringLiteral("channelNames"),
                  QJsonArray::fromStringList(current ? current->channelNames() : info.channelNames));
    device.insert(QStringLiteral("frequency"), double(node->getCurrentDeviceFrequency()));
    return device;
}

QString CurrentDeviceInfo::getDescription()
{
    return tr("Information about current device, e.g. current sampling rate (frequency), channel names and signal "
              "quality");
}

QMap<QString, QString> CurrentDeviceInfo::getReturnsDescriptions()
{
    return createArgs(
        { { QStringLiteral("searching"), tr("is the application currently searching for devices") },
          { QStringLiteral("currentChannels"), tr("number of channels") },
          { QStringLiteral("currentFrequency"), tr("current device frequency") },
          { QStringLiteral("currentChannelsNames"), tr("list of channels names") },
          { QStringLiteral("quality"), tr("per channel quality array in percents, where <20 - bad signal, <90 - "
                                          "average quality, >90 - good (acceptable) signal") },
          { QStringLiteral("LPF"), tr("low-pass filter (LPF) value (Hz)") },
          { QStringLiteral("HPF"), tr("high-pass filter (HPF) value (Hz)") },
          { QStringLiteral("BSF"), tr("band-stop filter (BSF) value") },
          { QStringLiteral("BSF2"), tr("secondary BSF value (Hz)") },
          { QStringLiteral("isRecording"), tr("shows if recording is in progress") },
          { QStringLiteral("recordDuration"), tr("duration of the current record") },
          { QStringLiteral("device"), tr("device information") } });
}
