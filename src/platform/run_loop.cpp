// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"

namespace plyra {

RunLoop& RunLoop::main()
{
    static RunLoop loop;
    return loop;
}

void RunLoop::callAtEndOfPass(std::function<void()> fn)
{
    const bool wasIdle = m_pending.empty();
    m_pending.push_back(std::move(fn));
    if (wasIdle && m_wakeUp)
        m_wakeUp();
}

int RunLoop::endPass()
{
    // Work registered while this pass ends (a notification observer enqueuing another
    // notification) belongs to the next pass.
    std::vector<std::function<void()>> batch;
    batch.swap(m_pending);
    for (auto& fn : batch)
        fn();
    return static_cast<int>(batch.size());
}

int RunLoop::runUntilIdle(int maxPasses)
{
    int passes = 0;
    while (hasPendingWork() && passes < maxPasses) {
        endPass();
        ++passes;
    }
    return passes;
}

} // namespace plyra
