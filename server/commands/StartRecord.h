#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Starts recording the streaming device. "path" (relative to the records folder, or absolute
// anywhere) names the main .edf file; a recording already there is refused, never overwritten.
// Without it the engine names the record after the current time. With "noinvoke" the request does not run the start itself: it is scheduled
// on the event loop and the reply comes at once.
class StartRecord : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit StartRecord(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;

    // A flag argument is set when present with any value but "0", "false", "no" or "off".
    static bool isFlagSet(QMap<QString, QString>& args, const QString& name);

private:
    bool recordPath(const QString& requested, QString& path, QJsonObject& response);
};
