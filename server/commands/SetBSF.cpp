#include "server/commands/SetBSF.h"

SetBSF::SetBSF(DataServerContext* context, QObject* parent)
    : BaseSetFilterCommand(context, parent)
{
}

void SetBSF::setFilterValue(float&, float&, float& bsf, float&, float value)
{
    bsf = value;
}

QString SetBSF::settingsKey() const
{
    return QStringLiteral("BSF");
}

QString SetBSF::getDescription()
{
    return tr("Band-stop filter");
}
