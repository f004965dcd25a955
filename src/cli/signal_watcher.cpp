// SPDX-License-Identifier: MIT
#include "cli/signal_watcher.h"

#include "platform/stop_request.h"
#include "platform/temporary_files.h"
#include "platform/termination_signals.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <pthread.h>
#include <unistd.h>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

// How often the watcher looks whether the program has ended, or its grace has run out.
constexpr long kPollNanoseconds = 50'000'000;

} // namespace

SignalWatcher::SignalWatcher(std::chrono::milliseconds grace)
    : m_grace(grace)
{
    m_signals = terminationSignalsToHandle();
    // Threads started from here on inherit the mask: only the watcher takes the signals.
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
    m_thread = std::thread([this] { watch(); });
}

SignalWatcher::~SignalWatcher()
{
    m_done = true;
    m_thread.join();
}

void SignalWatcher::watch()
{
    std::optional<Clock::time_point> deadline;
    const timespec poll{0, kPollNanoseconds};
    while (!m_done) {
        const int signal = sigtimedwait(&m_signals, nullptr, &poll);
        if (signal > 0) {
            if (deadline)
                exitNow(); // asked twice: the user means it
            StopRequest::request();
            deadline = Clock::now() + m_grace;
        }
        if (deadline && Clock::now() > *deadline && !m_done)
            exitNow();
    }
}

void SignalWatcher::exitNow()
{
    TemporaryFiles::removeAll();
    static const char message[] = "plyra-render: interrupted; nothing was written\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message, sizeof message - 1);
    ::_exit(130);
}

} // namespace plyra
