// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

namespace plyra {

/// The main thread's event loop as the notification queue and the undo manager see it:
/// work registered for the end of the current pass runs once the pass is over.
/// Without an event loop (tests, plyra-render) nothing runs until endPass() is called;
/// the Qt binding (platform/qt/qt_run_loop.h) calls it at the next pass of the Qt loop.
/// Threads: main thread only.
class RunLoop {
public:
    static RunLoop& main();

    /// Runs fn once at the end of the current pass, after the work registered before it.
    void callAtEndOfPass(std::function<void()> fn);
    /// Ends the pass: runs the work registered so far. Work registered meanwhile waits
    /// for the next pass. Returns the number of calls made.
    int endPass();
    /// Ends passes until no work is left (at most maxPasses); returns the passes run.
    int runUntilIdle(int maxPasses = 100);
    bool hasPendingWork() const { return !m_pending.empty(); }

    /// Called whenever work is registered while none was pending, so that an event loop
    /// can schedule endPass(). None by default.
    void setWakeUp(std::function<void()> wakeUp) { m_wakeUp = std::move(wakeUp); }

private:
    std::vector<std::function<void()>> m_pending;
    std::function<void()> m_wakeUp;
};

} // namespace plyra
