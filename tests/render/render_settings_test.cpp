// SPDX-License-Identifier: MIT
#include "render/movie_codecs.h"
#include "render/render_settings.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

TEST(FrameTimes, SpreadOverTheRangeAndReversed)
{
    const std::vector<float> forward = frameTimes(5, {0.2f, 0.6f}, false);
    const std::vector<float> expected{0.2f, 0.35f, 0.5f, 0.65f, 0.8f};
    ASSERT_EQ(forward.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_FLOAT_EQ(forward[i], expected[i]) << i;

    const std::vector<float> backward = frameTimes(5, {0.2f, 0.6f}, true);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_FLOAT_EQ(backward[i], expected[4 - i]) << i;

    const std::vector<float> twenty = frameTimes(20, {0.0f, 1.0f}, false);
    EXPECT_EQ(twenty.front(), 0.0f);
    EXPECT_EQ(twenty.back(), 1.0f);
    const std::vector<float> twentyBack = frameTimes(20, {0.0f, 1.0f}, true);
    EXPECT_EQ(twentyBack.front(), 1.0f);
    EXPECT_EQ(twentyBack.back(), 0.0f);

    EXPECT_TRUE(frameTimes(0, {0.0f, 1.0f}, false).empty());
    EXPECT_EQ(frameTimes(1, {0.3f, 0.5f}, false), std::vector<float>{0.3f});
}

TEST(RenderSettings, ThresholdsDecideWhatIsAChange)
{
    RenderSettings s;
    EXPECT_TRUE(s.setFrameSize({400, 300}));
    EXPECT_FALSE(s.setFrameSize({400.5f, 300.5f})); // one pixel in total
    EXPECT_TRUE(s.setFrameSize({401.0f, 300.5f}));  // one and a half
    EXPECT_TRUE(s.setFramesPerSecond(20.0f));
    EXPECT_FALSE(s.setFramesPerSecond(20.0000005f));
    EXPECT_TRUE(s.setTimeRange({0.0f, 1.0f}));
    EXPECT_FALSE(s.setTimeRange({0.000004f, 1.000004f}));
    EXPECT_TRUE(s.setTimeRange({0.0f, 0.99998f}));
    EXPECT_TRUE(s.setNumberOfFrames(20));
    EXPECT_FALSE(s.setNumberOfFrames(20));
    EXPECT_TRUE(s.setReverse(true));
    EXPECT_FALSE(s.setReverse(true));
}

TEST(RenderSettings, InterpolationFactorAndProgress)
{
    EXPECT_EQ(interpolationFactorFromInterval(0), 7.0f);
    EXPECT_EQ(interpolationFactorFromInterval(1), 7.0f);
    EXPECT_EQ(interpolationFactorFromInterval(-3), 7.0f);
    EXPECT_EQ(interpolationFactorFromInterval(2), 2.0f);
    EXPECT_EQ(interpolationFactorFromInterval(12), 12.0f);
    EXPECT_EQ(interpolationFactorFromInterval(1, 6.0f), 6.0f);

    EXPECT_FLOAT_EQ(renderProgress(1, 1, 0.9f), 0.9f);
    EXPECT_FLOAT_EQ(renderProgress(1, 0, 0.0f), 1.0f);
    EXPECT_FLOAT_EQ(renderProgress(20, 11, 0.0f), 0.45f);
    EXPECT_FLOAT_EQ(renderProgress(20, 0, 0.0f), 1.0f);
}

TEST(RenderSettings, FrameSizeFollowsTheViewUnderTheRatioMode)
{
    const FrameSize view{400, 300};
    FrameSize wide = frameSizeForView(view, FrameRatioMode::AsFirstImage, true, 2.0f, 2.0f);
    EXPECT_FLOAT_EQ(wide.width, 400);
    EXPECT_FLOAT_EQ(wide.height, 200);
    FrameSize square = frameSizeForView(view, FrameRatioMode::AsFirstImage, true, 1.0f, 1.0f);
    EXPECT_FLOAT_EQ(square.width, 300);
    EXPECT_FLOAT_EQ(square.height, 300);
    FrameSize noLast = frameSizeForView(view, FrameRatioMode::AsLastImage, false, 0.0f, 1.5f);
    EXPECT_FLOAT_EQ(noLast.width, 400);
    EXPECT_FLOAT_EQ(noLast.height, 300);
    FrameSize free = frameSizeForView(view, FrameRatioMode::Free, true, 2.0f, 2.0f);
    EXPECT_FLOAT_EQ(free.width, 400);
    EXPECT_FLOAT_EQ(free.height, 300);
}

TEST(MovieCodecs, DurationsAtTimeScale600)
{
    EXPECT_EQ(frameDurationValue(20), 30);
    EXPECT_EQ(frameDurationValue(25), 24);
    EXPECT_EQ(frameDurationValue(30), 20);
    EXPECT_EQ(frameDurationValue(24), 25);
    EXPECT_EQ(frameDurationValue(1000), 0);
    EXPECT_EQ(frameDurationValue(0), 0);
    EXPECT_EQ(movieDurationValue(20, 20), 600);
    EXPECT_EQ(movieDurationValue(48, 25), 1152);
    EXPECT_EQ(movieDurationValue(48, 24), 1200);
    EXPECT_TRUE(isKnownCodec("rle "));
    EXPECT_FALSE(isKnownCodec("jpeg"));
    EXPECT_EQ(kQualityChoices[3].value, 768);
    EXPECT_STREQ(kCodecChoices[2].code, "mp4v");
}

} // namespace
} // namespace plyra
