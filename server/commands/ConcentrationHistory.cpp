#include "server/commands/ConcentrationHistory.h"

#include "core/CortexCore.h"

ConcentrationHistory::ConcentrationHistory(DataServerContext* context, QObject* parent)
    : BaseHistoryCommand(context, parent)
{
}

QList<TimestampedValue> ConcentrationHistory::getHistory(CortexCore* node, QMap<QString, QString>&)
{
    QList<TimestampedValue> history;
    for (const RhythmNormSample& reading : node->grabMetaIndexData(CortexCore::Concentration))
        history.append({ reading.timestamp, double(reading.level) });
    return history;
}

// The help text names meditation for both histories; clients show it as it stands.
QString ConcentrationHistory::getDescription()
{
    return tr("Get timestamped list of 'meditation' percentages  (if the device is on and metering started and "
              "'DataGrabMode' is enabled)");
}

QMap<QString, QString> ConcentrationHistory::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("history"), tr("Array of {\"t\": timestamp, \"v\": percent}") } });
}
