#pragma once

#include "server/DataServerCommand.h"

class CortexCore;

// A command that works on one engine node, chosen by the "node" argument (0 by default),
// after the checks its flags ask for.
class BaseCortexCoreNodeCommand : public DataServerCommand
{
    Q_OBJECT
public:
    enum Flags { RequiresDevice = 1, RequiresGrabMode = 2 };

    BaseCortexCoreNodeCommand(int flags, DataServerContext* context, QObject* parent = nullptr,
                              HTWSCommandCategory* category = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    virtual bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                                QMap<QString, QString>& args) = 0;

    bool requiresDevice() const { return m_requiresDevice; }
    bool requiresGrabMode() const { return m_requiresGrabMode; }

    static QString grabModeErrorText();

protected:
    // Sets the grab-mode error and returns false when the node does not grab.
    static bool checkGrabMode(CortexCore* node, QJsonObject& response);
    // "Record has not been started", with the last recording error (a failed write that ended
    // the recording, or a refused start) when there is one.
    static QString notRecordingError(const CortexCore* node);

private:
    bool m_requiresDevice;
    bool m_requiresGrabMode;
};
