#include "server/commands/SetMontage.h"

#include "core/CortexCore.h"
#include "services/TextHelper.h"

SetMontage::SetMontage(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool SetMontage::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    if (node->isRecording()) {
        setError(response, QStringLiteral("Cannot change montage while recording is on"));
        return false;
    }
    QString key = QStringLiteral("channelNames");
    const QList<QString> names = TextHelper::splitAndTrim(argumentCaseInsensitive(args, key, QString()));
    if (names.isEmpty()) {
        setError(response, QStringLiteral("Provide 'channelNames' argument"));
        return false;
    }
    node->setMontageChannelNames(names);
    return true;
}

QMap<QString, QString> SetMontage::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("channelNames"), tr("Array of channels names") } });
}
