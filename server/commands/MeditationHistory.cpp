#include "server/commands/MeditationHistory.h"

#include "core/CortexCore.h"

MeditationHistory::MeditationHistory(DataServerContext* context, QObject* parent)
    : BaseHistoryCommand(context, parent)
{
}

QList<TimestampedValue> MeditationHistory::getHistory(CortexCore* node, QMap<QString, QString>&)
{
    QList<TimestampedValue> history;
    for (const RhythmNormSample& reading : node->grabMetaIndexData(CortexCore::Meditation))
        history.append({ reading.timestamp, double(reading.level) });
    return history;
}

// The help text names meditation for both histories; clients show it as it stands.
QString MeditationHistory::getDescription()
{
    return tr("Get timestamped list of 'meditation' percentages  (if the device is on and metering started and "
              "'DataGrabMode' is enabled)");
}

QMap<QString, QString> MeditationHistory::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("history"), tr("Array of {\"t\": timestamp, \"v\": percent}") } });
}
