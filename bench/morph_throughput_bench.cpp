// SPDX-License-Identifier: MIT
// Whole frames as the render controllers make them: a morpher with its workers computes
// the warp fields while the main thread only polls isDone and turns each finished job into
// an 8-bit bitmap (outputImage + conversion). Two generated 1920 × 1080 pictures and 100
// lines from a fixed seed.
//   MovieJobList48:   48 frames at 1920 × 1080, spacing 7, from job creation to the last
//                     bitmap; reports frames per second.
//   PreviewStrip5:    5 cells of 200 × 150 at spacing 6 (the preview strip's), from the
//                     hand-over of the jobs until every cell is a bitmap.
//   MovieFields48:    the same 48 warp fields alone, until every job is done.
//   RenderOneFrame:   outputImage + conversion of one finished 1920 × 1080 job, on all
//                     cores and on one.
//   LongJobList500:   500 frames at 1920 × 1080, each bitmap dropped once made (as the
//                     movie writer does); reports the peak resident memory and the most
//                     finished-but-unconsumed jobs at any time.

#include "bench_workload.h"
#include "engine/image_conversion.h"
#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <thread>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

struct Pictures {
    Image first = bench::texturedImage(1920, 1080, 1);
    Image last = bench::texturedImage(1920, 1080, 2);
    std::vector<MorphLine::Ptr> lines = bench::benchLines(100);
};

const Pictures& pictures()
{
    static const Pictures p;
    return p;
}

std::vector<MorphCalculationJob::Ptr> jobList(int frames, Size size, float interval)
{
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (int i = 0; i < frames; ++i)
        jobs.push_back(MorphCalculationJob::create(frames > 1 ? float(i) / float(frames - 1) : 0.0f, size, interval));
    return jobs;
}

/// What the main thread saw while it polled.
struct PollStats {
    int frames = 0;
    long emptyPolls = 0;          ///< passes that found no finished job
    double longestIsDoneUs = 0.0; ///< the slowest single isDone call
    std::size_t mostWaiting = 0;  ///< finished jobs not yet turned into bitmaps, at most
};

/// Turns every job into a bitmap as soon as it is done, in any order, never waiting for
/// a job; each bitmap is dropped once made.
PollStats consume(std::vector<MorphCalculationJob::Ptr> jobs)
{
    PollStats stats;
    std::deque<MorphCalculationJob::Ptr> pending(jobs.begin(), jobs.end());
    jobs.clear();
    while (!pending.empty()) {
        std::size_t done = 0;
        for (auto it = pending.begin(); it != pending.end();) {
            const auto start = Clock::now();
            const bool isDone = (*it)->isDone();
            stats.longestIsDoneUs = std::max(
                stats.longestIsDoneUs, std::chrono::duration<double, std::micro>(Clock::now() - start).count());
            if (!isDone) {
                ++it;
                continue;
            }
            ++done;
            stats.mostWaiting = std::max(stats.mostWaiting, done);
            const std::optional<Bitmap> frame = bitmapFromImage((*it)->outputImage());
            benchmark::DoNotOptimize(frame->data());
            ++stats.frames;
            it = pending.erase(it);
        }
        if (done == 0) {
            ++stats.emptyPolls;
            std::this_thread::yield();
        }
    }
    return stats;
}

void report(benchmark::State& state, const PollStats& stats)
{
    state.counters["emptyPolls"] = double(stats.emptyPolls);
    state.counters["longestIsDone_us"] = stats.longestIsDoneUs;
    state.counters["mostWaiting"] = double(stats.mostWaiting);
}

void BM_MovieJobList48(benchmark::State& state)
{
    const Pictures& p = pictures();
    PollStats last;
    for (auto _ : state) {
        const Morpher::Ptr morpher = Morpher::create(p.first, p.last, p.lines);
        auto jobs = jobList(48, {1920.0f, 1080.0f}, 7.0f);
        morpher->runMorphCalculationJobs(jobs);
        last = consume(std::move(jobs));
        morpher->clearJobQueue();
    }
    state.counters["fps"] = benchmark::Counter(48.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    report(state, last);
}
BENCHMARK(BM_MovieJobList48)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

void BM_MovieFields48(benchmark::State& state)
{
    const Pictures& p = pictures();
    for (auto _ : state) {
        const Morpher::Ptr morpher = Morpher::create(p.first, p.last, p.lines);
        auto jobs = jobList(48, {1920.0f, 1080.0f}, 7.0f);
        morpher->runMorphCalculationJobs(jobs);
        for (const auto& job : jobs)
            job->waitUntilDone();
        morpher->clearJobQueue();
    }
    state.counters["fps"] = benchmark::Counter(48.0 * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_MovieFields48)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

void BM_RenderOneFrame(benchmark::State& state)
{
    const Pictures& p = pictures();
    const Morpher::Ptr morpher = Morpher::create(p.first, p.last, p.lines);
    const auto job = MorphCalculationJob::create(0.5f, {1920.0f, 1080.0f}, 7.0f);
    job->setTrack0Image(p.first);
    job->setTrack1Image(p.last);
    morpher->processMorphCalculationJob(*job);
    RenderOptions options;
    options.maxThreads = static_cast<int>(state.range(0));
    for (auto _ : state) {
        const std::optional<Bitmap> frame = bitmapFromImage(job->outputImage(), options);
        benchmark::DoNotOptimize(frame->data());
    }
    state.SetLabel(state.range(0) == 0 ? "all cores" : "one thread");
}
BENCHMARK(BM_RenderOneFrame)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

void BM_PreviewStrip5(benchmark::State& state)
{
    const Pictures& p = pictures();
    PollStats last;
    double fieldsMs = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        const Morpher::Ptr morpher = Morpher::create(p.first, p.last, p.lines);
        auto jobs = jobList(5, {200.0f, 150.0f}, 6.0f);
        // The workers are running and idle, as they are after the strip's first frames.
        morpher->runMorphCalculationJobs({});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        state.ResumeTiming();
        const auto start = Clock::now();
        morpher->runMorphCalculationJobs(jobs);
        for (const auto& job : jobs)
            job->waitUntilDone();
        fieldsMs += std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        last = consume(std::move(jobs));
        state.PauseTiming();
        morpher->clearJobQueue();
        state.ResumeTiming();
    }
    state.counters["fields_ms"] = fieldsMs / double(state.iterations());
    report(state, last);
}
BENCHMARK(BM_PreviewStrip5)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

double peakResidentMiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

void BM_LongJobList500(benchmark::State& state)
{
    const Pictures& p = pictures();
    // One frame first, so that the pictures, their caches and the thread pools are part
    // of the peak before and not of the job list's.
    {
        const Morpher::Ptr warm = Morpher::create(p.first, p.last, p.lines);
        auto jobs = jobList(1, {1920.0f, 1080.0f}, 7.0f);
        warm->runMorphCalculationJobs(jobs);
        consume(std::move(jobs));
        warm->clearJobQueue();
    }
    const double before = peakResidentMiB();
    PollStats last;
    for (auto _ : state) {
        const Morpher::Ptr morpher = Morpher::create(p.first, p.last, p.lines);
        auto jobs = jobList(500, {1920.0f, 1080.0f}, 7.0f);
        morpher->runMorphCalculationJobs(jobs);
        last = consume(std::move(jobs));
        morpher->clearJobQueue();
    }
    const GridSize grid = warpGridSize(1920.0f, 1080.0f, 7.0f);
    state.counters["fieldKiB"] = double((grid.nx + 1) * (grid.ny + 1) * 16) / 1024.0;
    state.counters["peakBefore_MiB"] = before;
    state.counters["peak_MiB"] = peakResidentMiB();
    state.counters["fps"] = benchmark::Counter(500.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    report(state, last);
}
BENCHMARK(BM_LongJobList500)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

} // namespace
} // namespace plyra

BENCHMARK_MAIN();
