#include "server/BaseFoundDeviceCommand.h"

#include "core/CortexCore.h"

QMap<QString, QString> BaseFoundDeviceCommand::selectionArguments(const QMap<QString, QString>& args)
{
    QMap<QString, QString> mapped = args;
    for (auto it = args.cbegin(); it != args.cend(); ++it) {
        const QString key = it.key().toLower();
        const QString target = key == QLatin1String("sn") ? QStringLiteral("sn")
            : (key == QLatin1String("index") || key == QLatin1String("id")) ? QStringLiteral("id")
                                                                             : QString();
        if (!target.isEmpty() && !args.contains(target) && !mapped.contains(target))
            mapped.insert(target, it.value());
    }
    return mapped;
}

bool BaseFoundDeviceCommand::chooseDevice(CortexCore* node, const QMap<QString, QString>& args,
                                          QJsonObject& response, const QString& negativeIndexText,
                                          DeviceInfo& chosen)
{
    const QList<DeviceInfo> found = node->getFoundDevices();
    if (found.isEmpty()) {
        setError(response, QStringLiteral("There are no devices to choose from"));
        return false;
    }
    QMap<QString, QString> mapped = selectionArguments(args);
    QString name;
    const QVariant value = getAnyArgumentOrErrorIfNeeded({ QStringLiteral("id"), QStringLiteral("sn") }, name,
                                                         response, mapped);
    if (!value.isValid())
        return false;
    const QString text = value.toString().trimmed();

    if (name == QLatin1String("id")) {
        bool isNumber = false;
        const int index = text.toInt(&isNumber, 10);
        if (!isNumber) {
            setError(response, QStringLiteral("Index must be a number, '%1' given").arg(text));
            return false;
        }
        if (index < 0 && !negativeIndexText.isEmpty()) {
            setError(response, negativeIndexText);
            return false;
        }
        if (index < 0 || index >= found.size()) {
            setError(response, QStringLiteral("Index is out of range"));
            return false;
        }
        chosen = found[index];
        return true;
    }

    if (text.size() < 2) {
        setError(response, QStringLiteral("Provided serial number is too short"));
        return false;
    }
    for (const DeviceInfo& info : found) {
        if (info.serialNumber.compare(text, Qt::CaseInsensitive) == 0) {
            chosen = info;
            return true;
        }
    }
    setError(response, QStringLiteral("Device with serial number '%1' not found").arg(text));
    return false;
}

QMap<QString, QString> BaseFoundDeviceCommand::selectionArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("SN"), tr("Serial number of Orvex device") },
                        { QStringLiteral("index"), tr("Index of Orvex device (from 'listDevices' command)") } });
}
