#include "app/TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

int TerminationSignals::s_pipe[2] = { -1, -1 };

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (s_pipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, s_pipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(s_pipe[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(s_pipe[1], &byte, 1);
        Q_EMIT received();
    });
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

// Only a write is safe inside a signal handler; the notifier does the rest.
void TerminationSignals::onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(s_pipe[0], &byte, 1);
}
