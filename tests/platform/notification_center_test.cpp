// SPDX-License-Identifier: MIT
#include "platform/notification_center.h"
#include "platform/run_loop.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

TEST(NotificationQueue, CoalescesByNameAndObjectOncePerPass)
{
    NotificationCenter center;
    NotificationQueue queue(center);
    std::vector<Notification> seen;
    center.addObserver("objectsUpdated", [&](const Notification& n) { seen.push_back(n); });
    center.addObserver("selectionUpdated", [&](const Notification& n) { seen.push_back(n); });

    int a = 0;
    int b = 0;
    for (int i = 0; i < 10; ++i)
        queue.enqueueAsSoonAsPossible({"objectsUpdated", i % 2 ? &a : &b});
    queue.enqueueAsSoonAsPossible({"selectionUpdated", &b});
    EXPECT_TRUE(seen.empty()); // nothing before the pass ends
    RunLoop::main().endPass();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].name, "objectsUpdated");
    EXPECT_EQ(seen[0].object, &b);
    EXPECT_EQ(seen[1].object, &a);
    EXPECT_EQ(seen[2].name, "selectionUpdated");

    queue.enqueueAsSoonAsPossible({"objectsUpdated", &b});
    RunLoop::main().endPass();
    EXPECT_EQ(seen.size(), 4u);
}

TEST(NotificationQueue, EnqueuedWhileDeliveringGoesToTheNextPass)
{
    NotificationCenter center;
    NotificationQueue queue(center);
    int deliveries = 0;
    center.addObserver("objectsUpdated", [&](const Notification&) {
        if (++deliveries == 1)
            queue.enqueueAsSoonAsPossible({"objectsUpdated", nullptr});
    });
    queue.enqueueAsSoonAsPossible({"objectsUpdated", nullptr});
    RunLoop::main().endPass();
    EXPECT_EQ(deliveries, 1);
    RunLoop::main().endPass();
    EXPECT_EQ(deliveries, 2);
}

TEST(NotificationCenter, ObserversFollowTheirObjectAndAreRemoved)
{
    NotificationCenter center;
    int owner = 0;
    int calls = 0;
    int other = 0;
    const auto id = center.addObserver("x", [&](const Notification&) { ++calls; });
    center.addObserver("x", [&](const Notification&) { ++calls; }, &owner);
    center.addObserver("y", [&](const Notification&) { ++calls; }, &owner);
    center.addObserver("x", [&](const Notification&) { calls += 100; }, &owner, &other);
    center.post({"x", &calls});
    EXPECT_EQ(calls, 2);
    center.post({"x", &other});
    EXPECT_EQ(calls, 104);
    calls = 2;
    center.removeObserver(id);
    center.post({"x", nullptr});
    EXPECT_EQ(calls, 3);
    center.removeObserversOwnedBy(&owner);
    center.post({"x", nullptr});
    center.post({"y", nullptr});
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(center.observerCount("x"), 0);
}

TEST(NotificationQueue, FlushPostsPendingWithoutAnEventLoop)
{
    NotificationCenter center;
    NotificationQueue queue(center);
    int calls = 0;
    center.addObserver("z", [&](const Notification&) { ++calls; });
    queue.enqueueAsSoonAsPossible({"z", nullptr});
    EXPECT_TRUE(queue.isPending("z", nullptr));
    queue.flush();
    EXPECT_EQ(calls, 1);
    RunLoop::main().endPass(); // the scheduled pass finds nothing left
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace plyra
