// SPDX-License-Identifier: MIT
#include "render/async_movie_writer.h"

#include "platform/log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

RgbaImage frame()
{
    RgbaImage image(16, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            uint8_t* p = image.pixel(x, y);
            p[0] = static_cast<uint8_t>(x * 16);
            p[1] = static_cast<uint8_t>(y * 16);
            p[3] = 255;
        }
    return image;
}

const AddImageAttributes kMpeg4{fourCharCode("mp4v"), 512};

/// The writer's frame durations, read under its movie lock.
std::vector<int64_t> durations(AsyncMovieWriter& writer)
{
    std::vector<int64_t> result;
    writer.lock();
    if (const MovieTrack* track = writer.movie().lastVideoTrack()) {
        for (size_t i = 0; i < track->media()->sampleCount(); ++i)
            result.push_back(track->media()->sample(i).duration);
    }
    writer.unlock();
    return result;
}

size_t frameCount(AsyncMovieWriter& writer)
{
    return durations(writer).size();
}

/// Polls `condition` for up to `seconds`; true once it holds.
template <typename Condition>
bool eventually(Condition condition, double seconds = 2.0)
{
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < deadline) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return condition();
}

TEST(AsyncMovieWriter, FirstImageIsAppendedBeforeTheCallReturns)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    EXPECT_FALSE(writer.queueCondition());
    writer.waitForAsyncImageAddToFinish(); // no queue yet: returns at once
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    EXPECT_EQ(frameCount(writer), 1u);
    EXPECT_FALSE(writer.queueCondition()); // no worker for the first image
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    EXPECT_TRUE(writer.queueCondition());
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(frameCount(writer), 2u);
}

TEST(AsyncMovieWriter, TenImagesAreAppendedInTheOrderAdded)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    for (int i = 1; i <= 10; ++i)
        writer.asyncAddImage(frame(), {i, 600, 0}, kMpeg4);
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(durations(writer), (std::vector<int64_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(writer.numberOfImagesInQueue(), 0u);
}

TEST(AsyncMovieWriter, PlayWaitsForQueuedImagesThenTheWorkerStops)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    for (int i = 0; i < 3; ++i)
        writer.asyncAddImage(frame(), {30, 600, 0}, std::nullopt);
    writer.play();
    EXPECT_EQ(frameCount(writer), 4u);
    writer.lock();
    EXPECT_TRUE(writer.movie().isPlaying());
    writer.unlock();
    EXPECT_TRUE(eventually([&] { return writer.queueCondition() == AsyncMovieWriter::WorkerExited; }));

    // The next add starts a new worker, and the next wait sees its image.
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    EXPECT_NE(writer.queueCondition(), AsyncMovieWriter::WorkerExited);
    writer.stop();
    EXPECT_EQ(frameCount(writer), 5u);
}

TEST(AsyncMovieWriter, QueueEmptiesWhenTheWorkerTakesABatch)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.lock(); // the worker can take a batch but cannot write it
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    EXPECT_TRUE(eventually([&] { return writer.numberOfImagesInQueue() == 0; }));
    EXPECT_EQ(writer.movie().lastVideoTrack()->media()->sampleCount(), 1u);
    // The worker waits for the movie with its batch; new images stay queued meanwhile.
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    EXPECT_EQ(writer.numberOfImagesInQueue(), 2u);
    writer.unlock();
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(frameCount(writer), 4u);
}

TEST(AsyncMovieWriter, WriteTakesTheMovieAsItIsWithoutWaiting)
{
    const auto folder = std::filesystem::temp_directory_path() / "plyra_async_writer_test";
    std::filesystem::create_directories(folder);
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.lock();
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    // Under the movie lock, as writeToFile() does it: the queued images are not in yet.
    EXPECT_TRUE(writer.movie().writeToFile((folder / "one.mov").string()).ok());
    writer.unlock();
    auto written = Movie::open((folder / "one.mov").string());
    ASSERT_TRUE(written);
    EXPECT_EQ(written->lastVideoTrack()->media()->sampleCount(), 1u);

    const MovieStatus status = writer.writeToFile((folder / "some.mov").string());
    EXPECT_TRUE(status.ok()) << status.message;
    writer.waitForAsyncImageAddToFinish();
    EXPECT_TRUE(writer.writeToFile((folder / "all.mov").string()).ok());
    auto all = Movie::open((folder / "all.mov").string());
    ASSERT_TRUE(all);
    EXPECT_EQ(all->lastVideoTrack()->media()->sampleCount(), 3u);
    std::filesystem::remove_all(folder);
}

TEST(AsyncMovieWriter, RepeatedStopsAndAddsLoseNothing)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    size_t added = 1;
    for (int round = 0; round < 40; ++round) {
        writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
        writer.waitForAsyncImageAddToFinish(); // asks the worker to stop
        writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4); // may land while it leaves
        added += 2;
        writer.waitForAsyncImageAddToFinish();
        ASSERT_EQ(frameCount(writer), added) << "round " << round;
    }
}

TEST(AsyncMovieWriter, ImageQueuedWhileTheWorkerLeavesIsStillAppended)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    std::atomic<int> exits{0};
    writer.setBeforeWorkerExitHook([&] {
        // The worker has seen the stop request and not yet reported its exit.
        if (exits.fetch_add(1) == 0)
            writer.asyncAddImage(frame(), {7, 600, 0}, kMpeg4);
    });
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.waitForAsyncImageAddToFinish(); // asks the worker to stop
    ASSERT_TRUE(eventually([&] { return exits.load() >= 1; }));
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(durations(writer), (std::vector<int64_t>{30, 30, 7}));
    EXPECT_EQ(writer.numberOfImagesInQueue(), 0u);
}

TEST(AsyncMovieWriter, ProducersOnSeveralThreadsLoseNothing)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    std::vector<std::thread> producers;
    for (int t = 0; t < 3; ++t) {
        producers.emplace_back([&writer] {
            for (int i = 0; i < 5; ++i)
                writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
        });
    }
    for (auto& producer : producers)
        producer.join();
    writer.gotoBeginning();
    EXPECT_EQ(frameCount(writer), 16u);
}

TEST(AsyncMovieWriter, PositioningOperationsActOnTheWrittenMovie)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    for (int i = 0; i < 4; ++i)
        writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.stepForward(); // waits for all four first
    auto now = [&writer] {
        writer.lock();
        const int64_t time = writer.movie().currentTime().value;
        writer.unlock();
        return time;
    };
    EXPECT_EQ(now(), 30);
    writer.gotoEnd();
    EXPECT_EQ(now(), 120);
    writer.stepBackward();
    EXPECT_EQ(now(), 60);
    writer.setCurrentTime({45, 600, 0});
    EXPECT_EQ(now(), 45);
    writer.lock();
    writer.movie().setSelection({{10, 600, 0}, {20, 600, 0}});
    writer.movie().setPosterTime({90, 600, 0});
    writer.unlock();
    writer.gotoPreviousSelectionPoint();
    EXPECT_EQ(now(), 30);
    writer.gotoNextSelectionPoint();
    EXPECT_EQ(now(), 30);
    writer.gotoPosterTime();
    EXPECT_EQ(now(), 90);
    writer.gotoBeginning();
    EXPECT_EQ(now(), 0);
    writer.disableIdling();
    EXPECT_TRUE(writer.tryLock());
    writer.unlock();
}

TEST(AsyncMovieWriter, TearingDownWhileTheWorkerWaitsEndsItPromptly)
{
    LogCapture capture;
    const auto start = Clock::now();
    {
        AsyncMovieWriter writer(Movie::createInMemory());
        writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
        writer.asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
        ASSERT_TRUE(eventually([&] { return writer.queueCondition() == AsyncMovieWriter::BatchWritten; }));
    }
    // The worker polls every 0.2 seconds; allow a wide margin for slow (sanitizer) builds.
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), 3.0);
    // Attach, detach, enter and exit always succeed here: nothing is logged.
    EXPECT_EQ(capture.count("returned"), 0);
}

TEST(AsyncMovieWriter, TearingDownDropsImagesStillQueued)
{
    auto writer = std::make_unique<AsyncMovieWriter>(Movie::createInMemory());
    writer->asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    for (int i = 0; i < 5; ++i)
        writer->asyncAddImage(frame(), {30, 600, 0}, kMpeg4);
    writer.reset(); // must neither hang nor crash, whatever the worker was doing
    SUCCEED();
}

TEST(AsyncMovieWriter, FailedAppendsAreLogged)
{
    LogCapture capture;
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(RgbaImage(), {30, 600, 0}, kMpeg4);
    EXPECT_EQ(capture.count("Could not append an image to the movie"), 1);
    EXPECT_EQ(frameCount(writer), 0u);
}

} // namespace
} // namespace plyra
