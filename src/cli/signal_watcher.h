// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

namespace plyra {

/// Turns SIGINT, SIGTERM and SIGHUP into a stop request (StopRequest) that plyra-render
/// sees between frames, read chunks and the stages of an image load. When the program
/// has not ended within a grace period after the first signal (a decoder busy inside one
/// huge image), or at a second signal, it removes the temporary files still listed
/// (TemporaryFiles) and exits at once with 130, so that an interrupt always ends the run
/// promptly and leaves nothing behind. A signal already ignored when the program starts
/// (nohup, a background job of a script) stays ignored.
/// Threads: construct on the main thread before any other thread starts: the signals are
/// blocked in every thread and taken by a thread of the watcher's own.
class SignalWatcher {
public:
    explicit SignalWatcher(std::chrono::milliseconds grace);
    ~SignalWatcher();
    SignalWatcher(const SignalWatcher&) = delete;
    SignalWatcher& operator=(const SignalWatcher&) = delete;

private:
    void watch();
    [[noreturn]] static void exitNow();

    sigset_t m_signals{};
    std::chrono::milliseconds m_grace;
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

} // namespace plyra
