#include "server/commands/Meditation.h"

#include "core/CortexCore.h"
#include "server/commands/ControlValues.h"

Meditation::Meditation(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool Meditation::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    response.insert(QStringLiteral("meditation"), ControlValues::indexLevel(node, CortexCore::Meditation));
    return true;
}

QString Meditation::getDescription()
{
    return tr("Get current 'meditation' percentage ('-1' if the device is unavailable)");
}

QMap<QString, QString> Meditation::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("meditation"), tr("Percent of 'meditation'") } });
}
