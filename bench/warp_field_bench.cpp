// SPDX-License-Identifier: MIT
// The warp field of one 1920 × 1080 frame at spacing 7 with 100 lines, on one core.

#include "bench_workload.h"
#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "engine/warp_field.h"
#include "engine/warp_field_internal.h"

#include <benchmark/benchmark.h>
#include <hwy/targets.h>

#include <string>

namespace plyra {
namespace {

constexpr float kWidth = 1920.0f;
constexpr float kHeight = 1080.0f;
constexpr float kInterval = 7.0f;

WarpLines linesAt(const Morpher& morpher, float t)
{
    const std::size_t n = morpher.morphLines().size();
    WarpLines lines;
    lines.toFirst.resize(n);
    lines.toLast.resize(n);
    lines.atTime.resize(n);
    morpher.fillTransMatrixes(lines.toFirst.data(), 0.0f, t);
    morpher.fillTransMatrixes(lines.toLast.data(), 1.0f, t);
    morpher.fillDestLineCoordinates(lines.atTime.data(), t);
    for (const MorphLine::Ptr& line : morpher.morphLines()) {
        lines.dissolveStart.push_back(line->dissolveStartTime());
        lines.dissolveEnd.push_back(line->dissolveEndTime());
    }
    return lines;
}

// The whole job as a worker runs it: per-line arrays, buffer, grid, bounds, progress.
void BM_ProcessJob1080p(benchmark::State& state)
{
    const Morpher::Ptr morpher = Morpher::create(Image(), Image(), bench::benchLines(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        const auto job = MorphCalculationJob::create(0.5f, {kWidth, kHeight}, kInterval);
        morpher->processMorphCalculationJob(*job);
        benchmark::DoNotOptimize(job->coords().data());
    }
    const GridSize grid = warpGridSize(kWidth, kHeight, kInterval);
    state.counters["nodes"] = static_cast<double>(grid.nodeCount());
    state.counters["lineEvals/s"] = benchmark::Counter(
        static_cast<double>(grid.nodeCount()) * static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
    state.SetLabel(warp::simdTargetName());
}
BENCHMARK(BM_ProcessJob1080p)->Arg(100)->Arg(10)->Unit(benchmark::kMillisecond)->MinTime(1.0);

// The grid loop alone, SIMD and the scalar reference.
void gridLoop(benchmark::State& state, bool simd)
{
    const Morpher::Ptr morpher = Morpher::create(Image(), Image(), bench::benchLines(100));
    const GridSize grid = warpGridSize(kWidth, kHeight, kInterval);
    const WarpField field(linesAt(*morpher, 0.5f), 0.5f, kWidth, kHeight, grid);
    std::vector<float> coords(4 * (grid.nx + 1) * (grid.ny + 1));
    for (auto _ : state) {
        const WarpFieldBounds bounds = simd ? field.compute(coords.data()) : field.computeScalar(coords.data());
        benchmark::DoNotOptimize(bounds);
        benchmark::ClobberMemory();
    }
    state.SetLabel(simd ? warp::simdTargetName() : "scalar");
}

// The SIMD loop on every instruction set this processor has, widest first.
void registerPerTarget()
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        const std::string name = std::string("BM_GridLoopSimd/") + hwy::TargetName(target);
        benchmark::RegisterBenchmark(name.c_str(), [target](benchmark::State& state) {
            hwy::SetSupportedTargetsForTest(target);
            gridLoop(state, true);
            hwy::SetSupportedTargetsForTest(0);
        })->Unit(benchmark::kMillisecond)->MinTime(1.0);
    }
}

void BM_GridLoopScalar(benchmark::State& state)
{
    gridLoop(state, false);
}
BENCHMARK(BM_GridLoopScalar)->Unit(benchmark::kMillisecond)->MinTime(1.0);

} // namespace

void registerPerTargetBenchmarks()
{
    registerPerTarget();
}

} // namespace plyra

int main(int argc, char** argv)
{
    plyra::registerPerTargetBenchmarks();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
