// SPDX-License-Identifier: MIT
#include "platform/stop_request.h"

#include <atomic>

namespace plyra {
namespace {

// Lock-free, so that a signal handler may set it.
std::atomic<bool> g_stopRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

} // namespace

void StopRequest::request()
{
    g_stopRequested.store(true, std::memory_order_relaxed);
}

bool StopRequest::isRequested()
{
    return g_stopRequested.load(std::memory_order_relaxed);
}

void StopRequest::clear()
{
    g_stopRequested.store(false, std::memory_order_relaxed);
}

} // namespace plyra
