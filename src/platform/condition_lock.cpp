// SPDX-License-Identifier: MIT
#include "platform/condition_lock.h"

#include <cassert>

namespace plyra {

ConditionLock::ConditionLock(int condition)
    : m_condition(condition)
{
}

void ConditionLock::lock()
{
    std::unique_lock guard(m_mutex);
    m_changed.wait(guard, [this] { return !m_held; });
    m_held = true;
}

bool ConditionLock::lockBefore(Clock::time_point deadline)
{
    std::unique_lock guard(m_mutex);
    if (!m_changed.wait_until(guard, deadline, [this] { return !m_held; }))
        return false;
    m_held = true;
    return true;
}

void ConditionLock::lockWhenCondition(int condition)
{
    std::unique_lock guard(m_mutex);
    m_changed.wait(guard, [&] { return !m_held && m_condition == condition; });
    m_held = true;
}

bool ConditionLock::lockWhenCondition(int condition, Clock::time_point deadline)
{
    std::unique_lock guard(m_mutex);
    if (!m_changed.wait_until(guard, deadline, [&] { return !m_held && m_condition == condition; }))
        return false;
    m_held = true;
    return true;
}

bool ConditionLock::tryLock()
{
    std::lock_guard guard(m_mutex);
    if (m_held)
        return false;
    m_held = true;
    return true;
}

bool ConditionLock::tryLockWhenCondition(int condition)
{
    std::lock_guard guard(m_mutex);
    if (m_held || m_condition != condition)
        return false;
    m_held = true;
    return true;
}

void ConditionLock::unlock()
{
    {
        std::lock_guard guard(m_mutex);
        assert(m_held);
        m_held = false;
    }
    m_changed.notify_all();
}

void ConditionLock::unlockWithCondition(int condition)
{
    {
        std::lock_guard guard(m_mutex);
        assert(m_held);
        m_held = false;
        m_condition = condition;
    }
    m_changed.notify_all();
}

int ConditionLock::condition() const
{
    std::lock_guard guard(m_mutex);
    return m_condition;
}

ConditionLock::Clock::time_point ConditionLock::deadlineIn(double seconds)
{
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

} // namespace plyra
