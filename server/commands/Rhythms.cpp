#include "server/commands/Rhythms.h"

#include "core/CortexCore.h"

#include <QJsonArray>

Rhythms::Rhythms(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool Rhythms::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const QList<QString> names = node->getCurrentMontageChannelNames();
    const QList<StandartRhythmSample> rhythms = node->getLastStandartRhythms();
    QJsonArray channels;
    for (qsizetype i = 0; i < rhythms.size(); ++i) {
        QJsonObject channel = rhythms[i].toJson();
        channel.insert(QStringLiteral("channel"), names.value(i));
        channels.append(channel);
    }
    response.insert(QStringLiteral("rhythms"), channels);
    return true;
}

QString Rhythms::getDescription()
{
    return tr("Get last 'alpha', 'beta', 'delta', 'gamma', 'theta' and 't' for timestamp for every device channel "
              "(if the device is on and metering started)");
}

QMap<QString, QString> Rhythms::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("rhythms"),
                          tr("Array of {\"channel\", \"alpha\", \"beta\", \"delta\", \"gamma\", \"theta\", \"t\"}, "
                             "one per channel") } });
}
