// SPDX-License-Identifier: MIT
#include "platform/movie/movie.h"
#include "platform/movie/movie_playhead.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace plyra {
namespace {

TEST(MovieTime, ConvertsBetweenScalesTruncatingTowardsZeroAndCompares)
{
    EXPECT_EQ((MovieTime{600, 600, 0}).valueIn(1000), 1000);
    EXPECT_EQ((MovieTime{599, 600, 0}).valueIn(1), 0);
    EXPECT_EQ((MovieTime{-599, 600, 0}).valueIn(1), 0);
    EXPECT_EQ((MovieTime{30, 600, 0}).convertedTo(19200).value, 960);
    EXPECT_DOUBLE_EQ((MovieTime{1152, 600, 0}).seconds(), 1.92);
    // value × scale would overflow 64 bits here.
    EXPECT_EQ((MovieTime{INT64_MAX / 2, 600, 0}).valueIn(600), INT64_MAX / 2);
    EXPECT_EQ((MovieTime{int64_t{1} << 60, 1 << 30, 0}).valueIn(1 << 20), int64_t{1} << 50);

    EXPECT_EQ((MovieTime{600, 600, 0}), (MovieTime{1000, 1000, 0}));
    EXPECT_LT((MovieTime{599, 600, 0}), (MovieTime{1, 1, 0}));
    const MovieTime endless{0, 600, MovieTime::kIndefinite};
    EXPECT_LT((MovieTime{INT64_MAX, 600, 0}), endless);
    EXPECT_EQ(endless, (MovieTime{5, 1, MovieTime::kIndefinite}));
    EXPECT_EQ((MovieTimeRange{{3000, 600, 0}, {1200, 600, 0}}.end()), (MovieTime{4200, 600, 0}));
}

TEST(FourCharCode, ReadsMostSignificantByteFirst)
{
    EXPECT_EQ(fourCharCode("mp4v"), 0x6d703476u);
    EXPECT_EQ(fourCharCode("ab"), 0x61620000u);
    EXPECT_EQ(fourCharCode("rle "), 0x726c6520u);
    EXPECT_EQ(fourCharCodeString(fourCharCode("avc1")), "avc1");
    EXPECT_EQ(fourCharCodeString(fourCharCode("ab")), "ab  ");
}

TEST(RgbaImage, CopiesRowsWithAStride)
{
    std::vector<uint8_t> pixels(2 * 12);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i);
    const RgbaImage image = RgbaImage::fromPixels(pixels.data(), 2, 2, 12);
    EXPECT_EQ(image.bytesPerRow(), 8u);
    EXPECT_EQ(image.pixel(1, 0)[3], 7);
    EXPECT_EQ(image.pixel(0, 1)[0], 12);
    EXPECT_EQ(image.pixel(1, 1)[3], 19);
    EXPECT_TRUE(RgbaImage::fromPixels(pixels.data(), 4, 2, 12).bytes() == std::vector<uint8_t>(32, 0));
    EXPECT_TRUE(RgbaImage(-3, 5).isEmpty());
}

TEST(MoviePlayhead, StepsAndJumpsToFramesSelectionEndsAndPoster)
{
    const std::vector<int64_t> frames{0, 30, 60, 90}; // a movie of 120 ticks
    MoviePlayhead p;
    p.setSelection(100, 50);
    p.setPosterTime(42);
    using Move = std::function<void(int64_t duration)>;
    const Move forward = [&](int64_t d) { p.stepForward(frames, d); };
    const Move back = [&](int64_t d) { p.stepBackward(frames, d); };
    const Move next = [&](int64_t d) { p.gotoNextSelectionPoint(d); };
    const Move previous = [&](int64_t d) { p.gotoPreviousSelectionPoint(d); };
    struct Row { int64_t from, duration; Move move; int64_t to; };
    for (const Row& r : {Row{0, 120, forward, 30}, Row{45, 120, forward, 60}, Row{90, 120, forward, 90},
                         Row{75, 120, back, 30}, Row{0, 120, back, 0}, Row{0, 600, next, 100}, Row{100, 600, next, 150},
                         Row{150, 600, next, 150}, Row{150, 600, previous, 100},
                         Row{0, 600, [&](int64_t d) { p.gotoEnd(d); }, 600},
                         Row{0, 600, [&](int64_t d) { p.gotoPosterTime(d); }, 42},
                         Row{300, 600, [&](int64_t) { p.gotoBeginning(); }, 0}, Row{900, 600, [](int64_t) {}, 600}}) {
        p.setCurrentTime(r.from, r.duration);
        r.move(r.duration);
        EXPECT_EQ(p.currentTime(r.duration), r.to) << "from " << r.from;
    }
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
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(movie->addImage(RgbaImage(16, 16), {25, 600, 0}, AddImageAttributes{fourCharCode("mjpb"), 256}).ok());
    EXPECT_EQ(movie->frameTimes(), (std::vector<int64_t>{0, 25, 50}));
    movie->stepForward();
    movie->stepForward();
    movie->stepBackward();
    EXPECT_EQ(movie->currentTime().value, 25);
    movie->gotoEnd();
    EXPECT_EQ(movie->currentTime().value, 75);
    movie->setSelection({{25, 600, 0}, {25, 600, 0}});
    movie->gotoPreviousSelectionPoint();
    EXPECT_EQ(movie->currentTime().value, 50);
}

} // namespace
} // namespace plyra
