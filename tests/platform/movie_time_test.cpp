// SPDX-License-Identifier: MIT
#include "platform/movie/movie.h"
#include "platform/movie/movie_playhead.h"

#include <gtest/gtest.h>

#include <thread>

namespace plyra {
namespace {

TEST(MovieTime, ConvertsBetweenScalesTruncatingTowardsZero)
{
    const MovieTime oneSecond{600, 600, 0};
    EXPECT_EQ(oneSecond.valueIn(1000), 1000);
    EXPECT_EQ((MovieTime{599, 600, 0}).valueIn(1), 0);
    EXPECT_EQ((MovieTime{-599, 600, 0}).valueIn(1), 0);
    EXPECT_EQ((MovieTime{30, 600, 0}).convertedTo(19200).value, 960);
    EXPECT_DOUBLE_EQ((MovieTime{1152, 600, 0}).seconds(), 1.92);
    // value × scale would overflow 64 bits here.
    EXPECT_EQ((MovieTime{INT64_MAX / 2, 600, 0}).valueIn(600), INT64_MAX / 2);
    EXPECT_EQ((MovieTime{int64_t{1} << 60, 1 << 30, 0}).valueIn(1 << 20), int64_t{1} << 50);
}

TEST(MovieTime, ComparesAcrossScales)
{
    EXPECT_EQ((MovieTime{600, 600, 0}), (MovieTime{1000, 1000, 0}));
    EXPECT_LT((MovieTime{599, 600, 0}), (MovieTime{1, 1, 0}));
    const MovieTime endless{0, 600, MovieTime::kIndefinite};
    EXPECT_LT((MovieTime{INT64_MAX, 600, 0}), endless);
    EXPECT_EQ(endless, (MovieTime{5, 1, MovieTime::kIndefinite}));
    const MovieTimeRange range{{3000, 600, 0}, {1200, 600, 0}};
    EXPECT_EQ(range.end(), (MovieTime{4200, 600, 0}));
    EXPECT_EQ((MovieTimeRange{{5, 1, 0}, {2, 1, 0}}.end()), (MovieTime{7, 1, 0}));
}

TEST(FourCharCode, ReadsMostSignificantByteFirst)
{
    EXPECT_EQ(fourCharCode("mp4v"), 0x6d703476u);
    EXPECT_EQ(fourCharCode("vide"), kVideoMediaType);
    EXPECT_EQ(fourCharCode("ab"), 0x61620000u);
    EXPECT_EQ(fourCharCode("rle "), 0x726c6520u);
    EXPECT_EQ(fourCharCodeString(fourCharCode("avc1")), "avc1");
    EXPECT_EQ(fourCharCodeString(fourCharCode("ab")), "ab  ");
}

TEST(RgbaImage, CopiesRowsWithAStrideBottomFirst)
{
    std::vector<uint8_t> pixels(2 * 12, 0);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i);
    const RgbaImage image = RgbaImage::fromPixels(pixels.data(), 2, 2, 12);
    ASSERT_EQ(image.width(), 2);
    EXPECT_EQ(image.bytesPerRow(), 8u);
    EXPECT_EQ(image.pixel(0, 0)[0], 0);
    EXPECT_EQ(image.pixel(1, 0)[3], 7);
    EXPECT_EQ(image.pixel(0, 1)[0], 12);
    EXPECT_EQ(image.pixel(1, 1)[3], 19);
    EXPECT_TRUE(RgbaImage::fromPixels(pixels.data(), 4, 2, 12).bytes() == std::vector<uint8_t>(32, 0));
    EXPECT_TRUE(RgbaImage(-3, 5).isEmpty());
}

TEST(MoviePlayhead, StepsBetweenFrameStarts)
{
    MoviePlayhead playhead;
    const std::vector<int64_t> frames{0, 30, 60, 90};
    playhead.stepForward(frames, 120);
    EXPECT_EQ(playhead.currentTime(120), 30);
    playhead.setCurrentTime(45, 120);
    playhead.stepForward(frames, 120);
    EXPECT_EQ(playhead.currentTime(120), 60);
    playhead.stepForward(frames, 120);
    playhead.stepForward(frames, 120);
    EXPECT_EQ(playhead.currentTime(120), 90);
    playhead.setCurrentTime(75, 120);
    playhead.stepBackward(frames, 120);
    EXPECT_EQ(playhead.currentTime(120), 30);
    playhead.stepBackward(frames, 120);
    playhead.stepBackward(frames, 120);
    EXPECT_EQ(playhead.currentTime(120), 0);
}

TEST(MoviePlayhead, MovesToSelectionPointsEndsAndPoster)
{
    MoviePlayhead playhead;
    playhead.setSelection(100, 50);
    playhead.gotoNextSelectionPoint(600);
    EXPECT_EQ(playhead.currentTime(600), 100);
    playhead.gotoNextSelectionPoint(600);
    EXPECT_EQ(playhead.currentTime(600), 150);
    playhead.gotoNextSelectionPoint(600);
    EXPECT_EQ(playhead.currentTime(600), 150);
    playhead.gotoPreviousSelectionPoint(600);
    EXPECT_EQ(playhead.currentTime(600), 100);
    playhead.gotoEnd(600);
    EXPECT_EQ(playhead.currentTime(600), 600);
    playhead.setPosterTime(42);
    playhead.gotoPosterTime(600);
    EXPECT_EQ(playhead.currentTime(600), 42);
    playhead.gotoBeginning();
    EXPECT_EQ(playhead.currentTime(600), 0);
    playhead.setCurrentTime(900, 600);
    EXPECT_EQ(playhead.currentTime(600), 600);
}

TEST(MoviePlayhead, PlayingRunsWithTheClockAndStopsAtTheEnd)
{
    MoviePlayhead playhead;
    playhead.gotoEnd(12);
    playhead.play(12); // from the end, playing starts over
    EXPECT_TRUE(playhead.isPlaying(12));
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    EXPECT_EQ(playhead.currentTime(12), 12);
    EXPECT_FALSE(playhead.isPlaying(12));
    playhead.setCurrentTime(0, 6000);
    playhead.play(6000);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    playhead.stop(6000);
    const int64_t stopped = playhead.currentTime(6000);
    EXPECT_GE(stopped, 12);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(playhead.currentTime(6000), stopped);
}

TEST(MoviePlayback, StepsThroughTheFramesOfTheVideoTrack)
{
    auto movie = Movie::createInMemory();
    RgbaImage frame(16, 16);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(movie->addImage(frame, {25, 600, 0}, AddImageAttributes{fourCharCode("mjpb"), 256}).ok());
    EXPECT_EQ(movie->frameTimes(), (std::vector<int64_t>{0, 25, 50}));
    movie->stepForward();
    movie->stepForward();
    EXPECT_EQ(movie->currentTime().value, 50);
    movie->stepBackward();
    EXPECT_EQ(movie->currentTime().value, 25);
    movie->gotoEnd();
    EXPECT_EQ(movie->currentTime().value, 75);
    movie->setSelection({{25, 600, 0}, {25, 600, 0}});
    movie->gotoPreviousSelectionPoint();
    EXPECT_EQ(movie->currentTime().value, 50);
    EXPECT_EQ(movie->selection().duration.value, 25);
}

} // namespace
} // namespace plyra
