// SPDX-License-Identifier: MIT
#include "render/easing.h"
#include "render/movie_schedule.h"
#include "render/render_settings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace plyra {
namespace {

// The curve's y where its x is u, found without Newton's method: the curve sampled
// densely along its parameter, then interpolated between the two samples around u.
double bezierByBracketing(double x1, double y1, double x2, double y2, double u)
{
    const auto at = [](double a, double b, double s) {
        return 3 * (1 - s) * (1 - s) * s * a + 3 * (1 - s) * s * s * b + s * s * s;
    };
    constexpr int kSamples = 200000;
    double previousX = 0;
    double previousY = 0;
    for (int k = 1; k <= kSamples; ++k) {
        const double s = static_cast<double>(k) / kSamples;
        const double x = at(x1, x2, s);
        const double y = at(y1, y2, s);
        if (x >= u)
            return previousY + (y - previousY) * (u - previousX) / (x - previousX);
        previousX = x;
        previousY = y;
    }
    return 1.0;
}

TEST(Easing, EachCurveMeetsTheBezierAtItsDefiningPoints)
{
    const struct { Easing easing; double x1, y1, x2, y2; } curves[] = {
        {Easing::EaseIn, 0.42, 0, 1, 1}, {Easing::EaseOut, 0, 0, 0.58, 1}, {Easing::EaseInOut, 0.42, 0, 0.58, 1}};
    for (const auto& c : curves) {
        for (const double u : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            const double expected = u == 0.0 || u == 1.0 ? u : bezierByBracketing(c.x1, c.y1, c.x2, c.y2, u);
            EXPECT_NEAR(easedProgress(c.easing, u), expected, 1e-7) << static_cast<int>(c.easing) << " at " << u;
        }
    }
    EXPECT_EQ(easedProgress(Easing::EaseIn, 0.0), 0.0);
    EXPECT_EQ(easedProgress(Easing::EaseInOut, 1.0), 1.0);
    EXPECT_NEAR(easedProgress(Easing::EaseInOut, 0.5), 0.5, 1e-12); // symmetric
    EXPECT_EQ(easedProgress(Easing::Linear, 0.3), 0.3);
}

TEST(Easing, ShapesTheFrameTimesWithinTheRangeWhicheverTheDirection)
{
    const std::vector<float> eased = frameTimes(5, {0.2f, 0.6f}, false, Easing::EaseIn);
    const std::vector<float> back = frameTimes(5, {0.2f, 0.6f}, true, Easing::EaseIn);
    for (std::size_t i = 0; i < 5; ++i) {
        const double progress = easedProgress(Easing::EaseIn, static_cast<double>(i) / 4.0);
        EXPECT_FLOAT_EQ(eased[i], static_cast<float>(0.2 + 0.6 * progress)) << i;
        // Reversed, the movie still starts slowly, from the end of the range.
        EXPECT_FLOAT_EQ(back[i], static_cast<float>(0.8 - 0.6 * progress)) << i;
    }
    EXPECT_EQ(eased.front(), 0.2f);
    EXPECT_EQ(back.front(), 0.8f);
    // Linear keeps the times of documents that store no easing, to the bit.
    EXPECT_EQ(frameTimes(7, {0.1f, 0.7f}, true, Easing::Linear), frameTimes(7, {0.1f, 0.7f}, true));
}

TEST(MovieSchedule, HoldsLengthenTheEndsAndPingPongRunsBack)
{
    const struct {
        std::uint32_t frames;
        MovieTiming timing;
        std::vector<ScheduledFrame> movie; // at 10 frames per second: 60 a frame
        std::vector<std::uint32_t> sequence;
    } cases[] = {
        {3, {}, {{0, 60}, {1, 60}, {2, 60}}, {0, 1, 2}},
        {3, {Easing::Linear, 0.5, 0.25, false}, {{0, 360}, {1, 60}, {2, 210}}, {0, 0, 0, 0, 0, 0, 1, 2, 2, 2, 2}},
        {3, {Easing::Linear, 0, 0, true}, {{0, 60}, {1, 60}, {2, 60}, {1, 60}, {0, 60}}, {0, 1, 2, 1, 0}},
        {3, {Easing::Linear, 0.1, 0.2, true}, {{0, 120}, {1, 60}, {2, 180}, {1, 60}, {0, 60}}, {0, 0, 1, 2, 2, 2, 1, 0}},
        {1, {Easing::Linear, 0.1, 0.1, true}, {{0, 180}}, {0, 0, 0}},
        {0, {Easing::Linear, 1, 1, true}, {}, {}},
    };
    for (const auto& c : cases) {
        const MovieSchedule schedule(c.frames, 10.0f, c.timing);
        std::vector<ScheduledFrame> movie;
        std::int64_t start = 0;
        for (std::size_t k = 0; k < schedule.movieFrameCount(); ++k) {
            EXPECT_EQ(schedule.movieFrameStart(k), start) << c.frames << " frames, frame " << k;
            movie.push_back(schedule.movieFrame(k));
            start += movie.back().duration;
        }
        EXPECT_EQ(movie, c.movie) << c.frames << " frames";
        EXPECT_EQ(schedule.movieDuration(), start) << c.frames << " frames";
        std::vector<std::uint32_t> sequence;
        for (std::size_t k = 0; k < schedule.sequenceFileCount(); ++k)
            sequence.push_back(schedule.sequenceSource(k));
        EXPECT_EQ(sequence, c.sequence) << c.frames << " frames";
        for (std::uint32_t frame = 0; frame < c.frames; ++frame)
            EXPECT_EQ(sequence[schedule.firstSequenceFile(frame)], frame);
    }
}

} // namespace
} // namespace plyra
