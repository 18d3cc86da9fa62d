#include "server/commands/ContinueRecord.h"

#include "core/CortexCore.h"

ContinueRecord::ContinueRecord(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool ContinueRecord::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    if (!node->isRecording()) {
        setError(response, notRecordingError(node));
        return false;
    }
    if (!node->isRecordPaused()) {
        setError(response, QStringLiteral("Record is not paused"));
        return false;
    }
    return node->continueRecord();
}
