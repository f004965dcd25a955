// SPDX-License-Identifier: MIT
#include "app/termination_signals.h"

#include "platform/stop_request.h"
#include "platform/termination_signals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace plyra {
namespace {

int s_pipe[2] = {-1, -1};

extern "C" void forwardSignal(int signalNumber)
{
    // Long work on the main thread (an image being read) gives up at its next check,
    // so that the event loop, and with it the quit, comes promptly.
    StopRequest::request();
    const char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(s_pipe[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, s_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(s_pipe[0], &byte, 1) == 1)
            emit terminationRequested(byte);
    });
    struct sigaction action = {};
    action.sa_handler = forwardSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    m_signals = terminationSignalsToHandle();
    for (int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        if (sigismember(&m_signals, signalNumber))
            ::sigaction(signalNumber, &action, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    for (int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        if (sigismember(&m_signals, signalNumber))
            ::signal(signalNumber, SIG_DFL);
    delete m_notifier;
    for (int& fd : s_pipe) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
}

} // namespace plyra
