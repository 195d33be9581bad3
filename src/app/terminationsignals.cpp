#include "terminationsignals.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler may do little more than write to a file.
int pipeEnds[2] = { -1, -1 }; // read by the event loop, written by the handler

int openPipe()
{
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
        pipeEnds[0] = pipeEnds[1] = -1;
    }
    return pipeEnds[0];
}

void setHandlers(void (*handler)(int))
{
    struct sigaction action { };
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

extern "C" void tellEventLoop(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals()
    : m_notifier(openPipe(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier.setEnabled(false);
        Q_EMIT requested();
    });
    if (pipeEnds[1] >= 0) {
        setHandlers(tellEventLoop);
    }
}

TerminationSignals::~TerminationSignals()
{
    setHandlers(SIG_DFL);
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}
