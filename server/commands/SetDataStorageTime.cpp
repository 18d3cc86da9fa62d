#include "server/commands/SetDataStorageTime.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"

SetDataStorageTime::SetDataStorageTime(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool SetDataStorageTime::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    bool ok = false;
    const int seconds = args.value(QStringLiteral("value")).toInt(&ok, 10);
    // One unsigned comparison accepts 1..3599: 0 and negative values wrap to huge numbers.
    // The refusal text says 3600, and 3600 itself is refused; clients rely on both.
    if (!ok || unsigned(seconds) - 1u > 3598u) {
        setError(response, QStringLiteral("Provide a number between 1 and 3600 seconds"));
        return false;
    }
    const int nodeCount = context() ? context()->getNodeCount() : 0;
    for (int i = 0; i < nodeCount; ++i) {
        if (CortexCore* node = context()->getNode(i))
            node->setStorageTimeSeconds(seconds);
    }
    return true;
}

QString SetDataStorageTime::getDescription()
{
    return tr("Sets storage time (seconds) for data (including the data for 'DataGrabMode')");
}

QMap<QString, QString> SetDataStorageTime::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("value"), tr("1-3600 seconds") } });
}
