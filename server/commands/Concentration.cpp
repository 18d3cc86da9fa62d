#include "server/commands/Concentration.h"

#include "core/CortexCore.h"
#include "server/commands/ControlValues.h"

Concentration::Concentration(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool Concentration::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    response.insert(QStringLiteral("concentration"), ControlValues::indexLevel(node, CortexCore::Concentration));
    return true;
}

QString Concentration::getDescription()
{
    return tr("Get current 'concentration' percentage  ('-1' if the device is unavailable)");
}

QMap<QString, QString> Concentration::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("concentration"), tr("Percent of 'concentration'") } });
}
