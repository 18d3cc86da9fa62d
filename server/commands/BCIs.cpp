#include "server/commands/BCIs.h"

#include "server/DataServerContext.h"
#include "server/commands/ControlValues.h"

#include <QJsonArray>

BCIs::BCIs(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

// Nodes without a streaming device are listed too, with the indices at -1.
bool BCIs::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    QJsonArray results;
    const int nodeCount = context() ? context()->getNodeCount() : 0;
    for (int i = 0; i < nodeCount; ++i) {
        QJsonObject result = ControlValues::values(context()->getNode(i));
        result.insert(QStringLiteral("node"), i);
        results.append(result);
    }
    response.insert(QStringLiteral("results"), results);
    return true;
}

QString BCIs::getDescription()
{
    return tr("Get all available control values, by default the 'meditation' and 'concentration' values for all "
              "nodes");
}

QMap<QString, QString> BCIs::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("results"), tr("Array of BCI results for all nodes") } });
}
