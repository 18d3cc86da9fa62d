#include "server/commands/SetHPF.h"

SetHPF::SetHPF(DataServerContext* context, QObject* parent)
    : BaseSetFilterCommand(context, parent)
{
}

void SetHPF::setFilterValue(float& hpf, float&, float&, float&, float value)
{
    hpf = value;
}

QString SetHPF::settingsKey() const
{
    return QStringLiteral("HPF");
}

QString SetHPF::getDescription()
{
    return tr("High-pass filter");
}
