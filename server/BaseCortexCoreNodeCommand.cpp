#include "server/BaseCortexCoreNodeCommand.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"

BaseCortexCoreNodeCommand::BaseCortexCoreNodeCommand(int flags, DataServerContext* context, QObject* parent,
                                                     HTWSCommandCategory* category)
    : DataServerCommand(context, parent, category)
    , m_requiresDevice(flags & RequiresDevice)
    , m_requiresGrabMode(flags & RequiresGrabMode)
{
}

bool BaseCortexCoreNodeCommand::processCommand(Referrer referrer, QJsonObject& response,
                                               QMap<QString, QString>& args)
{
    bool isNumber = false;
    int index = args.value(QStringLiteral("node")).toInt(&isNumber, 10);
    if (!isNumber)
        index = 0;
    CortexCore* node = context() ? context()->getNode(index) : nullptr;
    if (index < 0 || !context() || index >= context()->getNodeCount() || !node) {
        setError(response, QStringLiteral("This node index does not exist"));
        return false;
    }
    if (m_requiresDevice && !node->isDeviceStarted()) {
        setError(response, QStringLiteral("Device is not connected"));
        return false;
    }
    if (m_requiresGrabMode && !checkGrabMode(node, response))
        return false;
    return processCommand(node, referrer, response, args);
}

QString BaseCortexCoreNodeCommand::grabModeErrorText()
{
    return QStringLiteral("For general optimisation this data is available in data grab mode only. Use command "
                          "'enableDataGrabMode' to start grabbing data history");
}

bool BaseCortexCoreNodeCommand::checkGrabMode(CortexCore* node, QJsonObject& response)
{
    if (node->isDataGrabModeEnabled())
        return true;
    setError(response, grabModeErrorText());
    return false;
}

QString BaseCortexCoreNodeCommand::notRecordingError(const CortexCore* node)
{
    const QString error = QStringLiteral("Record has not been started");
    if (node->lastRecordError().isEmpty())
        return error;
    return error + QStringLiteral(" (last recording error: ") + node->lastRecordError() + QLatin1Char(')');
}
