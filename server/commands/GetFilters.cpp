#include "server/commands/GetFilters.h"

#include "core/CortexCore.h"

GetFilters::GetFilters(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(0, context, parent)
{
}

bool GetFilters::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    float hpf = 0, lpf = 0, bsf = 0, bsf2 = 0;
    node->getFilters(hpf, lpf, bsf, bsf2);
    response.insert(QStringLiteral("LPF"), double(lpf));
    response.insert(QStringLiteral("HPF"), double(hpf));
    response.insert(QStringLiteral("BSF"), double(bsf));
    response.insert(QStringLiteral("BSF2"), double(bsf2));
    return true;
}

QString GetFilters::getDescription()
{
    return tr("Returns filters values");
}

QMap<QString, QString> GetFilters::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("LPF"), tr("low-pass filter (LPF) value (Hz)") },
                        { QStringLiteral("HPF"), tr("high-pass filter (HPF) value (Hz)") },
                        { QStringLiteral("BSF"), tr("band-stop filter (BSF) value") },
                        { QStringLiteral("BSF2"), tr("secondary BSF value (Hz)") } });
}
