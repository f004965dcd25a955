// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace plyra {

/// A lock that carries an integer condition: it can be taken only when the condition
/// has a given value, and is released with a new condition.
/// Threads: any thread; unlock from the thread that holds the lock.
class ConditionLock {
public:
    using Clock = std::chrono::steady_clock;

    explicit ConditionLock(int condition = 0);
    ConditionLock(const ConditionLock&) = delete;
    ConditionLock& operator=(const ConditionLock&) = delete;

    void lock();
    /// Takes the lock in any condition; false when the deadline passes first.
    bool lockBefore(Clock::time_point deadline);
    void lockWhenCondition(int condition);
    /// Takes the lock once the condition has the value; false when the deadline passes first.
    bool lockWhenCondition(int condition, Clock::time_point deadline);
    bool tryLock();
    bool tryLockWhenCondition(int condition);

    void unlock();
    void unlockWithCondition(int condition);

    /// The current condition; read it while holding the lock.
    int condition() const;

    static Clock::time_point deadlineIn(double seconds);

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_held = false;
    int m_condition;
};

} // namespace plyra
