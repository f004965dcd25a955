// SPDX-License-Identifier: MIT
#include "render/async_movie_writer.h"

#include "platform/log.h"
#include "platform/movie_test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

/// Queues one 16 × 16 MPEG-4 image of `duration` 600ths.
void add(AsyncMovieWriter& writer, int64_t duration = 30)
{
    writer.asyncAddImage(RgbaImage(16, 16), {duration, 600, 0}, AddImageAttributes{fourCharCode("mp4v"), 512});
}

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

/// Polls `condition` for up to two seconds; true once it holds.
template <typename Condition>
bool eventually(Condition condition)
{
    const auto deadline = Clock::now() + std::chrono::seconds(2);
    while (Clock::now() < deadline && !condition())
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return condition();
}

TEST(AsyncMovieWriter, FirstImageIsAppendedBeforeTheCallReturns)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.waitForAsyncImageAddToFinish(); // no queue yet: returns at once
    add(writer);
    EXPECT_EQ(frameCount(writer), 1u);
    EXPECT_FALSE(writer.queueCondition()); // no worker for the first image
    add(writer);
    EXPECT_TRUE(writer.queueCondition());
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(frameCount(writer), 2u);
}

TEST(AsyncMovieWriter, TenImagesAreAppendedInTheOrderAdded)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    for (int i = 1; i <= 10; ++i)
        add(writer, i);
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(durations(writer), (std::vector<int64_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(writer.numberOfImagesInQueue(), 0u);
}

TEST(AsyncMovieWriter, PlayWaitsForQueuedImagesThenTheWorkerStops)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    add(writer);
    for (int i = 0; i < 3; ++i)
        writer.asyncAddImage(RgbaImage(16, 16), {30, 600, 0}, std::nullopt);
    writer.play();
    EXPECT_EQ(frameCount(writer), 4u);
    writer.lock();
    EXPECT_TRUE(writer.movie().isPlaying());
    writer.unlock();
    EXPECT_TRUE(eventually([&] { return writer.queueCondition() == AsyncMovieWriter::WorkerExited; }));

    // The next add starts a new worker, and the next wait sees its image.
    add(writer);
    EXPECT_NE(writer.queueCondition(), AsyncMovieWriter::WorkerExited);
    writer.stop();
    EXPECT_EQ(frameCount(writer), 5u);
}

TEST(AsyncMovieWriter, QueueEmptiesWhenTheWorkerTakesABatch)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    add(writer);
    writer.lock(); // the worker can take a batch but cannot write it
    add(writer);
    EXPECT_TRUE(eventually([&] { return writer.numberOfImagesInQueue() == 0; }));
    EXPECT_EQ(writer.movie().lastVideoTrack()->media()->sampleCount(), 1u);
    // The worker waits for the movie with its batch; new images stay queued meanwhile.
    add(writer);
    add(writer);
    EXPECT_EQ(writer.numberOfImagesInQueue(), 2u);
    writer.unlock();
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(frameCount(writer), 4u);
}

TEST(AsyncMovieWriter, WriteTakesTheMovieAsItIsWithoutWaiting)
{
    test::ScratchFolder folder;
    AsyncMovieWriter writer(Movie::createInMemory());
    add(writer);
    writer.lock();
    add(writer);
    add(writer);
    // Under the movie lock, as writeToFile() does it: the queued images are not in yet.
    EXPECT_TRUE(writer.movie().writeToFile(folder.file("one.mov")).ok());
    writer.unlock();
    auto samplesIn = [&](const char* name) {
        auto movie = Movie::open(folder.file(name));
        return movie && movie->lastVideoTrack() ? movie->lastVideoTrack()->media()->sampleCount() : 0;
    };
    EXPECT_EQ(samplesIn("one.mov"), 1u);
    const MovieStatus status = writer.writeToFile(folder.file("some.mov"));
    EXPECT_TRUE(status.ok()) << status.message;
    writer.waitForAsyncImageAddToFinish();
    EXPECT_TRUE(writer.writeToFile(folder.file("all.mov")).ok());
    EXPECT_EQ(samplesIn("all.mov"), 3u);
}

TEST(AsyncMovieWriter, RepeatedStopsAndAddsLoseNothing)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    add(writer);
    for (size_t round = 0, added = 1; round < 40; ++round) {
        add(writer);
        writer.waitForAsyncImageAddToFinish(); // asks the worker to stop
        add(writer); // may land while it leaves
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
            add(writer, 7);
    });
    add(writer);
    add(writer);
    writer.waitForAsyncImageAddToFinish(); // asks the worker to stop
    ASSERT_TRUE(eventually([&] { return exits.load() >= 1; }));
    writer.waitForAsyncImageAddToFinish();
    EXPECT_EQ(durations(writer), (std::vector<int64_t>{30, 30, 7}));
    EXPECT_EQ(writer.numberOfImagesInQueue(), 0u);
}

TEST(AsyncMovieWriter, ProducersOnSeveralThreadsLoseNothing)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    add(writer);
    std::vector<std::thread> producers;
    for (int t = 0; t < 3; ++t) {
        producers.emplace_back([&writer] {
            for (int i = 0; i < 5; ++i)
                add(writer);
        });
    }
    for (auto& producer : producers)
        producer.join();
    writer.gotoBeginning();
    EXPECT_EQ(frameCount(writer), 16u);
}

TEST(AsyncMovieWriter, PositioningWaitsForTheQueueAndActsOnTheMovie)
{
    AsyncMovieWriter writer(Movie::createInMemory());
    for (int i = 0; i < 4; ++i)
        add(writer);
    auto now = [&writer] {
        writer.lock();
        const int64_t time = writer.movie().currentTime().value;
        writer.unlock();
        return time;
    };
    writer.stepForward(); // waits for all four first
    EXPECT_EQ(now(), 30);
    writer.gotoEnd();
    EXPECT_EQ(now(), 120);
    writer.stepBackward();
    EXPECT_EQ(now(), 60);
}

TEST(AsyncMovieWriter, TearingDownWhileTheWorkerWaitsOrHasImagesQueuedEndsIt)
{
    LogCapture capture;
    const auto start = Clock::now();
    {
        AsyncMovieWriter writer(Movie::createInMemory());
        add(writer);
        add(writer);
        ASSERT_TRUE(eventually([&] { return writer.queueCondition() == AsyncMovieWriter::BatchWritten; }));
    }
    // The worker polls every 0.2 seconds; allow a wide margin for slow (sanitizer) builds.
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), 3.0);
    // Attach, detach, enter and exit always succeed here: nothing is logged.
    EXPECT_EQ(capture.count("returned"), 0);

    AsyncMovieWriter queued(Movie::createInMemory());
    for (int i = 0; i < 6; ++i)
        add(queued); // whatever the worker is doing when `queued` goes, it must not hang or crash
}

TEST(AsyncMovieWriter, FailedAppendsAreLogged)
{
    LogCapture capture;
    AsyncMovieWriter writer(Movie::createInMemory());
    writer.asyncAddImage(RgbaImage(), {30, 600, 0}, AddImageAttributes{fourCharCode("mp4v"), 512});
    EXPECT_EQ(capture.count("Could not append an image to the movie"), 1);
    EXPECT_EQ(frameCount(writer), 0u);
}

} // namespace
} // namespace plyra
