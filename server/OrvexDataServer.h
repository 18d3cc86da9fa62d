#pragma once

#include "server/HTWSServer.h"

#include <QPointer>

class DataServerContext;

// The program's API server: the HTTP/WebSocket server with the whole command set, bound to
// the application's engine nodes. Pushes the control options to every WebSocket client when
// the application announces a change.
class OrvexDataServer : public HTWSServer
{
    Q_OBJECT
public:
    // The WebSocket side always uses port 1336; `wsPort` exists so tests can run side by side.
    OrvexDataServer(int httpPort, const QString& folder, DataServerContext* context, QObject* parent = nullptr,
                    int wsPort = 1336);

    // The registered ControlOptions command, shared by the push.
    static HTWSCommand* controlOptionsCommand();

public Q_SLOTS:
    void sendControlOptions();

private:
    void registerCommands();

    DataServerContext* m_context;
    QString m_reserved1;
    QString m_reserved2;
    static QPointer<HTWSCommand> s_controlOptions;
};
