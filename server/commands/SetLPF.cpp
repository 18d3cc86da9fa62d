#include "server/commands/SetLPF.h"

SetLPF::SetLPF(DataServerContext* context, QObject* parent)
    : BaseSetFilterCommand(context, parent)
{
}

void SetLPF::setFilterValue(float&, float& lpf, float&, float&, float value)
{
    lpf = value;
}

QString SetLPF::settingsKey() const
{
    return QStringLiteral("LPF");
}

QString SetLPF::getDescription()
{
    return tr("Low-pass filter");
}
