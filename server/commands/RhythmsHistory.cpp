#include "server/commands/RhythmsHistory.h"

#include "core/CortexCore.h"

#include <QJsonArray>

RhythmsHistory::RhythmsHistory(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice | RequiresGrabMode, context, parent)
{
}

bool RhythmsHistory::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const QList<QString> names = node->getCurrentMontageChannelNames();
    const QList<QList<StandartRhythmSample>> grabbed = node->grabLastStandartRhythms();
    QJsonArray channels;
    for (qsizetype i = 0; i < grabbed.size(); ++i) {
        QJsonArray history;
        for (const StandartRhythmSample& sample : grabbed[i])
            history.append(sample.toJson());
        QJsonObject channel;
        channel.insert(QStringLiteral("channel"), names.value(i));
        channel.insert(QStringLiteral("history"), history);
        channels.append(channel);
    }
    response.insert(QStringLiteral("rhythms"), channels);
    return true;
}

QString RhythmsHistory::getDescription()
{
    return tr("Get timestamped list of 'alpha', 'beta', 'delta', 'gamma', 'theta' and 't' for timestamp for every "
              "device channel (if the device is on and metering started and 'DataGrabMode' is enabled)");
}

QMap<QString, QString> RhythmsHistory::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("rhythms"),
                          tr("Array of {\"channel\", \"history\": [{\"alpha\", \"beta\", \"delta\", \"gamma\", "
                             "\"theta\", \"t\"}, ...]}, one per channel") } });
}
