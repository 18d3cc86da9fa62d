#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Sends what one engine grab hands out under "data"; needs a started device and, while
// checkGrabMode is set, the node's data-grab mode.
class BaseGrabDataCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit BaseGrabDataCommand(DataServerContext* context, QObject* parent = nullptr,
                                 HTWSCommandCategory* category = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;

protected:
    virtual QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) = 0;
    bool m_checkGrabMode = true;
};
