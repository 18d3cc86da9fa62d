#pragma once

#include "core/DeviceInfo.h"
#include "server/BaseCortexCoreNodeCommand.h"

// A node command that picks one of the node's found devices by its position in the
// listDevices list ("id", documented as "index") or by its serial number ("sn", documented as
// "SN").
class BaseFoundDeviceCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    using BaseCortexCoreNodeCommand::BaseCortexCoreNodeCommand;

    // "SN" and "index" of the help texts, written in any case, become "sn" and "id"; HTTP query
    // keys keep their case, WebSocket keys arrive lower-cased. An exact "sn"/"id" wins.
    static QMap<QString, QString> selectionArguments(const QMap<QString, QString>& args);

protected:
    // Sets "error" and returns false when no found device fits the arguments. A negative
    // index is "out of range" unless `negativeIndexText` gives its own text.
    bool chooseDevice(CortexCore* node, const QMap<QString, QString>& args, QJsonObject& response,
                      const QString& negativeIndexText, DeviceInfo& chosen);

    static QMap<QString, QString> selectionArgumentDescriptions();
};
