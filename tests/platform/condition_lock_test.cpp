// SPDX-License-Identifier: MIT
#include "platform/condition_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace plyra {
namespace {

using namespace std::chrono_literals;

TEST(ConditionLock, TakesOnlyInTheAskedConditionAndUnlocksWithANewOne)
{
    ConditionLock lock(0);
    EXPECT_FALSE(lock.tryLockWhenCondition(1));
    EXPECT_TRUE(lock.tryLockWhenCondition(0));
    EXPECT_FALSE(lock.tryLock()); // held
    lock.unlockWithCondition(1);
    EXPECT_EQ(lock.condition(), 1);
    EXPECT_TRUE(lock.tryLockWhenCondition(1));
    lock.unlock();
    EXPECT_EQ(lock.condition(), 1);
}

TEST(ConditionLock, DeadlinesExpireAndAreMetByAnotherThread)
{
    ConditionLock lock(0);
    const auto start = ConditionLock::Clock::now();
    EXPECT_FALSE(lock.lockWhenCondition(2, ConditionLock::deadlineIn(0.05)));
    const auto waited = ConditionLock::Clock::now() - start;
    EXPECT_GE(waited, 50ms);
    EXPECT_LT(waited, 2s);

    // A deadline already past never waits, but still takes a free lock in the condition.
    EXPECT_TRUE(lock.lockWhenCondition(0, ConditionLock::Clock::now()));
    lock.unlock();

    std::thread setter([&] {
        std::this_thread::sleep_for(20ms);
        lock.lock();
        lock.unlockWithCondition(2);
    });
    EXPECT_TRUE(lock.lockWhenCondition(2, ConditionLock::deadlineIn(5.0)));
    lock.unlock();
    setter.join();
}

TEST(ConditionLock, LockBeforeDeadlineWaitsForTheHolder)
{
    ConditionLock lock(3);
    lock.lock();
    EXPECT_FALSE(lock.lockBefore(ConditionLock::deadlineIn(0.02)));
    std::thread releaser([&] {
        std::this_thread::sleep_for(20ms);
        lock.unlockWithCondition(4);
    });
    EXPECT_TRUE(lock.lockBefore(ConditionLock::deadlineIn(5.0)));
    EXPECT_EQ(lock.condition(), 4);
    lock.unlock();
    releaser.join();
}

TEST(ConditionLock, HandsOffBetweenProducerAndConsumer)
{
    ConditionLock lock(0);
    int shared = 0; // guarded by lock
    std::atomic<int> consumed{0};
    std::thread consumer([&] {
        for (int i = 0; i < 200; ++i) {
            lock.lockWhenCondition(1);
            consumed += shared;
            lock.unlockWithCondition(0);
        }
    });
    for (int i = 0; i < 200; ++i) {
        lock.lockWhenCondition(0);
        shared = 1;
        lock.unlockWithCondition(1);
    }
    consumer.join();
    EXPECT_EQ(consumed.load(), 200);
}

} // namespace
} // namespace plyra
