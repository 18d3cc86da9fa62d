#include "server/commands/SpectrumFrequencies.h"

#include "core/CortexCore.h"

#include <QJsonArray>

SpectrumFrequencies::SpectrumFrequencies(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool SpectrumFrequencies::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                         QMap<QString, QString>&)
{
    QJsonArray frequencies;
    for (float frequency : node->getCurrentSpectrumFrequencies())
        frequencies.append(double(frequency));
    response.insert(QStringLiteral("frequencies"), frequencies);
    return true;
}

QString SpectrumFrequencies::getDescription()
{
    return tr("Returns the frequency of every bin of the current spectrum (Hz)");
}

QMap<QString, QString> SpectrumFrequencies::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("frequencies"), tr("Array of bin frequencies in Hz") } });
}
