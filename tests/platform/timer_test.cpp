// SPDX-License-Identifier: MIT
#include "platform/qt/timer.h"

#include <gtest/gtest.h>

#include <string>

namespace plyra {
namespace {

TEST(ManualClock, FiresTimersAtTheirDeadlinesInOrder)
{
    ManualClock clock;
    std::string fired;
    Timer once([&] { fired += "o" + std::to_string(clock.now()) + " "; });
    once.setSingleShot(true);
    once.setInterval(100);
    Timer every([&] { fired += "e" + std::to_string(clock.now()) + " "; });
    every.setInterval(40);
    once.start();
    every.start();
    clock.advance(99);
    EXPECT_EQ(fired, "e40 e80 ");
    EXPECT_TRUE(once.isActive());
    clock.advance(30);
    EXPECT_EQ(fired, "e40 e80 o100 e120 ");
    EXPECT_FALSE(once.isActive());
    EXPECT_EQ(clock.now(), 129);

    // Starting again counts from now; a stopped timer never fires.
    once.start();
    clock.advance(50);
    once.start();
    every.stop();
    clock.advance(99);
    EXPECT_EQ(fired, "e40 e80 o100 e120 e160 ");
    clock.advance(1);
    EXPECT_EQ(fired, "e40 e80 o100 e120 e160 o279 ");
}

} // namespace
} // namespace plyra
