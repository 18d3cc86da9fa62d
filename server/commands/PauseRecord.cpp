#include "server/commands/PauseRecord.h"

#include "core/CortexCore.h"

PauseRecord::PauseRecord(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool PauseRecord::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    if (!node->isRecording()) {
        setError(response, notRecordingError(node));
        return false;
    }
    if (node->isRecordPaused()) {
        setError(response, QStringLiteral("Record is already paused"));
        return false;
    }
    return node->pauseRecord();
}
