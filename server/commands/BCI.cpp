#include "server/commands/BCI.h"

#include "server/commands/ControlValues.h"

BCI::BCI(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool BCI::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const QJsonObject values = ControlValues::values(node);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        response.insert(it.key(), it.value());
    return true;
}

QString BCI::getDescription()
{
    return tr("Get all available control values, by default the 'meditation' and 'concentration' values");
}

QMap<QString, QString> BCI::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("meditation"), tr("Percent of 'meditation'") },
                        { QStringLiteral("concentration"), tr("Percent of 'concentration'") },
                        { QStringLiteral("mentalstate"), tr("Recognised mental state, -1 when none") } });
}
