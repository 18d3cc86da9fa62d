#pragma once

#include <QObject>

// Ctrl+C and SIGTERM delivered through the event loop, so a run ends cleanly with its files
// closed instead of dying inside a write.
class TerminationSignals : public QObject
{
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);

Q_SIGNALS:
    void received();

private:
    static void onSignal(int);
    static int s_pipe[2];
};
