// SPDX-License-Identifier: MIT
#include "render/frame_conversion_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace plyra {
namespace {

Image solid(int width, std::uint8_t red)
{
    Bitmap bitmap(width, 2);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t* p = bitmap.row(y) + 4 * x;
            p[0] = red;
            p[1] = p[2] = 0;
            p[3] = 255;
        }
    return Image::fromBitmap(std::move(bitmap));
}

TEST(FrameConversionQueue, RendersInTheOrderHandedOverOnItsOwnThread)
{
    std::mutex mutex;
    std::vector<int> widths;
    std::vector<std::thread::id> threads;
    FrameConversionQueue queue([&](std::optional<Bitmap> bitmap) {
        std::lock_guard guard(mutex);
        widths.push_back(bitmap ? bitmap->width() : -1);
        threads.push_back(std::this_thread::get_id());
    });
    for (int width = 1; width <= 20; ++width)
        queue.push(solid(width, static_cast<std::uint8_t>(width)));
    queue.push(Image()); // a null image gives no bitmap
    queue.waitUntilIdle();
    EXPECT_EQ(queue.pending(), 0u);
    ASSERT_EQ(widths.size(), 21u);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(widths[static_cast<std::size_t>(i)], i + 1);
    EXPECT_EQ(widths.back(), -1);
    for (std::thread::id id : threads)
        EXPECT_NE(id, std::this_thread::get_id());
}

TEST(FrameConversionQueue, CountsWaitingFramesAndDropsThemWhenDestroyed)
{
    std::atomic<bool> release{false};
    std::atomic<bool> entered{false};
    std::atomic<int> delivered{0};
    std::thread releaser;
    {
        FrameConversionQueue queue([&](std::optional<Bitmap>) {
            entered = true;
            while (!release)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ++delivered;
        });
        for (int i = 0; i < 5; ++i)
            queue.push(solid(4, 10));
        // The first is in hand (held by the sink), four wait: all five count as pending.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!entered && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(queue.pending(), 5u);
        releaser = std::thread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            release = true;
        });
    }
    releaser.join();
    // The frame in hand reached the sink; the waiting ones were dropped.
    EXPECT_EQ(delivered.load(), 1);
}

} // namespace
} // namespace plyra
