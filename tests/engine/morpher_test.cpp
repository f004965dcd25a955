// SPDX-License-Identifier: MIT
#include "engine/morpher.h"

#include "engine/morph_test_support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace plyra {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::makeLine;
using test::staticLine;

unsigned expectedWorkers() { const unsigned n = std::thread::hardware_concurrency(); return n >= 1 ? n : 2; }

/// Polls `done` every millisecond for at most 5 s; answers how long it waited.
template <typename Done>
Clock::duration waitUntil(Done done)
{
    const auto start = Clock::now();
    while (!done() && Clock::now() - start < 5s)
        std::this_thread::sleep_for(1ms);
    return Clock::now() - start;
}

std::vector<MorphLine::Ptr> someLines(int n)
{
    std::vector<MorphLine::Ptr> lines;
    for (int k = 0; k < n; ++k) {
        const float y = 0.1f + 0.8f * static_cast<float>(k) / static_cast<float>(n);
        lines.push_back(makeLine({0.1f, y}, {0.9f, y}, {0.15f, y + 0.02f}, {0.85f, y - 0.03f}));
    }
    return lines;
}

TEST(MorpherLines, CopiesTheLinesSoLaterEditsChangeNothing)
{
    auto first = makeLine({0.1f, 0.2f}, {0.3f, 0.4f}, {0.5f, 0.6f}, {0.7f, 0.8f});
    auto second = staticLine({0.2f, 0.2f}, {0.8f, 0.2f});
    first->attachLineAtEnd(second, nullptr);
    const Morpher::Ptr morpher = Morpher::create(Image(), Image(), {first, second});
    ASSERT_EQ(morpher->morphLines().size(), 2u);
    const MorphLine& copy = *morpher->morphLines()[0];
    EXPECT_NE(&copy, first.get());
    EXPECT_EQ(copy.endPoints(), first->endPoints());
    EXPECT_FALSE(copy.attachedLineAtEnd());
    EXPECT_FALSE(morpher->morphLines()[1]->attachedLineAtStart());

    const auto before = test::computeField({first, second}, 0.5f, 64.0f, 48.0f, 8.0f);
    first->setEndPoint({0.9f, 0.9f}, 1, nullptr);
    EXPECT_EQ(copy.endPoint(1), (Point{0.7f, 0.8f}));
    const auto job = MorphCalculationJob::create(0.5f, {64.0f, 48.0f}, 8.0f);
    morpher->processMorphCalculationJob(*job);
    EXPECT_EQ(job->coords(), before.coords);
}

TEST(MorpherLines, FillsLineCoordinatesAtATime)
{
    const Morpher::Ptr morpher = Morpher::create(
        Image(), Image(), {makeLine({0.0f, 0.0f}, {0.3f, 0.4f}, {1.0f, 1.0f}, {1.0f, 0.0f}), staticLine({0.5f, 0.5f}, {0.5f, 0.5f})});
    LineCoords c[2];
    morpher->fillDestLineCoordinates(c, 0.0f);
    EXPECT_EQ(c[0].start, (Point{0.0f, 0.0f}));
    EXPECT_EQ(c[0].end, (Point{0.3f, 0.4f}));
    EXPECT_FLOAT_EQ(c[0].length, 0.5f);
    EXPECT_EQ(c[1].length, 0.0f);
    morpher->fillDestLineCoordinates(c, 0.5f);
    EXPECT_EQ(c[0].start, (Point{0.5f, 0.5f}));
    EXPECT_FLOAT_EQ(c[0].end.x, 0.65f);
    EXPECT_FLOAT_EQ(c[0].end.y, 0.2f);
    EXPECT_FLOAT_EQ(c[0].length, std::sqrt(0.15f * 0.15f + 0.3f * 0.3f));
}

TEST(MorpherTransform, DirectTransformCarriesTheLineFromT1ToT2)
{
    const auto line = makeLine({0.1f, 0.2f}, {0.4f, 0.6f}, {0.3f, 0.1f}, {0.3f, 0.9f});
    const AffineTransform m = Morpher::transformFromTime(0.0f, 1.0f, *line);
    // Read as x' = m11·x + m12·y + tX, y' = m21·x + m22·y + tY. Across the line distances
    // stay: the last pair is a point 0.1 to the left of the first segment.
    const auto map = [&](Point p) { return Point{m.m11 * p.x + m.m12 * p.y + m.tX, m.m21 * p.x + m.m22 * p.y + m.tY}; };
    const std::pair<Point, Point> cases[] = {
        {line->startPoint(0), {0.3f, 0.1f}}, {line->endPoint(0), {0.3f, 0.9f}}, {{0.1f - 0.08f, 0.2f + 0.06f}, {0.3f - 0.1f, 0.1f}}};
    for (const auto& [from, to] : cases) {
        EXPECT_NEAR(map(from).x, to.x, 1e-6f);
        EXPECT_NEAR(map(from).y, to.y, 1e-6f);
    }
    for (const auto& other : someLines(5)) {
        const AffineTransform same = Morpher::transformFromTime(0.3f, 0.3f, *other);
        const float expected[] = {1, 0, 0, 1, 0, 0};
        const float actual[] = {same.m11, same.m12, same.m21, same.m22, same.tX, same.tY};
        for (int k = 0; k < 6; ++k)
            EXPECT_NEAR(actual[k], expected[k], 1e-6f) << k;
    }
    // A line without length at t1 answers the translation of its start.
    const auto point = makeLine({0.5f, 0.5f}, {0.5f, 0.5f}, {0.6f, 0.7f}, {0.9f, 0.7f});
    EXPECT_EQ(Morpher::transformFromTime(0.0f, 1.0f, *point),
              (AffineTransform{1.0f, 0.0f, 0.0f, 1.0f, 0.6f - 0.5f, 0.7f - 0.5f}));
}

TEST(MorpherQueue, WorkersStartWithAJobListWaitIdleAndLeaveAfterClearing)
{
    std::weak_ptr<Morpher> weak;
    {
        const Morpher::Ptr morpher = Morpher::create(Image(), Image(), {});
        weak = morpher;
        EXPECT_EQ(morpher->condition(), Morpher::MorpherConditionNoThreads);
        EXPECT_EQ(morpher->startedWorkerCount(), 0u);
        morpher->runMorphCalculationJobs({});
        EXPECT_EQ(morpher->startedWorkerCount(), expectedWorkers());
        const int now = morpher->condition();
        EXPECT_TRUE(now == Morpher::MorpherConditionJobsQueued || now == Morpher::MorpherConditionQueueEmpty) << now;
        waitUntil([&] { return morpher->condition() == Morpher::MorpherConditionQueueEmpty; });
        EXPECT_EQ(morpher->condition(), Morpher::MorpherConditionQueueEmpty);
        morpher->clearJobQueue();
        EXPECT_EQ(morpher->condition(), Morpher::MorpherConditionStop);
        // A stopped morpher starts new workers for new jobs.
        const auto job = MorphCalculationJob::create(0.2f, {32.0f, 32.0f}, 4.0f);
        morpher->runMorphCalculationJobs({job});
        EXPECT_EQ(morpher->startedWorkerCount(), 2 * expectedWorkers());
        job->waitUntilDone();
        morpher->clearJobQueue();
    }
    // Every worker leaves within about a second of its last wait, and with the last one
    // the morpher goes.
    EXPECT_LT(waitUntil([&] { return weak.expired(); }), 2500ms);
    EXPECT_TRUE(weak.expired());
}

TEST(MorpherQueue, ComputesEveryJobWithTheTrackImagesAndThenWaitsIdle)
{
    const Image first = Image::fromBitmap(Bitmap(4, 4));
    const Morpher::Ptr morpher = Morpher::create(first, Image(), someLines(4));
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (int i = 0; i < 7; ++i)
        jobs.push_back(MorphCalculationJob::create(static_cast<float>(i) / 6.0f, {64.0f, 48.0f}, 6.0f));
    auto withNull = jobs;
    withNull.push_back(nullptr); // skipped
    morpher->runMorphCalculationJobs(withNull);
    for (const auto& job : jobs) {
        EXPECT_TRUE(job->track0Image() == first); // the morpher's track images
        EXPECT_TRUE(job->track1Image().isNull());
        job->waitUntilDone();
        EXPECT_TRUE(job->isDone());
        EXPECT_EQ(job->progress(), 1.0f);
        EXPECT_EQ(job->coords().size(), 4u * (12 + 1) * (9 + 1));
        // The same frame computed here, on this thread, gives the same field.
        const auto direct = test::computeField(someLines(4), job->time(), 64.0f, 48.0f, 6.0f);
        EXPECT_EQ(job->coords(), direct.coords);
        EXPECT_EQ(job->maxDisplacement0(), direct.job->maxDisplacement0());
    }
    waitUntil([&] { return morpher->condition() == Morpher::MorpherConditionQueueEmpty; });
    EXPECT_EQ(morpher->condition(), Morpher::MorpherConditionQueueEmpty);
    EXPECT_TRUE(morpher->morphJobs().empty());

    // More jobs wake the idle workers.
    const auto late = MorphCalculationJob::create(0.5f, {32.0f, 32.0f}, 4.0f);
    morpher->runMorphCalculationJobs({late});
    late->waitUntilDone();
    EXPECT_EQ(morpher->startedWorkerCount(), expectedWorkers());
    morpher->clearJobQueue();
}

TEST(MorpherQueue, ClearingAbortsQueuedJobsWhileRunningJobsComplete)
{
    std::weak_ptr<Morpher> weak;
    std::vector<MorphCalculationJob::Ptr> jobs; // each keeps a worker busy for a while
    for (std::size_t i = 0; i < expectedWorkers() + 3; ++i)
        jobs.push_back(MorphCalculationJob::create(0.5f, {1920.0f, 1080.0f}, 3.0f));
    std::vector<MorphCalculationJob::Ptr> snapshot;
    {
        const Morpher::Ptr morpher = Morpher::create(Image(), Image(), someLines(30));
        weak = morpher;
        morpher->runMorphCalculationJobs(jobs);
        snapshot = morpher->morphJobs();
        // Each worker takes one slow job at a time, so at least three are still queued.
        EXPECT_GE(snapshot.size(), 3u);
        EXPECT_TRUE(!snapshot.empty() && snapshot.back() == jobs.back());
        morpher->clearJobQueue();
        EXPECT_TRUE(morpher->morphJobs().empty());
    }
    std::size_t aborted = 0;
    for (const auto& job : jobs)
        aborted += job->abort() ? 1 : 0;
    EXPECT_GE(aborted, 3u);
    EXPECT_TRUE(jobs.back()->abort());
    EXPECT_GE(snapshot.size(), aborted); // the snapshot did not follow the clearing
    for (const auto& job : jobs) {
        if (!job->abort())
            job->waitUntilDone(); // a job being computed runs to its end
    }
    EXPECT_LT(waitUntil([&] { return weak.expired(); }), 2500ms);
    for (const auto& job : jobs) {
        EXPECT_NE(job->isDone(), job->abort());
        if (job->abort()) {
            EXPECT_EQ(job->progress(), 0.0f);
            EXPECT_TRUE(job->coords().empty());
        }
    }
}

} // namespace
} // namespace plyra
