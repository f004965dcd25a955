// SPDX-License-Identifier: MIT
#include "platform/movie/animated_gif_writer.h"

#include "movie_test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

namespace plyra {
namespace {

using test::ScratchFolder;

AnimatedGifWriter::FrameSource testFrames(int width, int height, std::size_t failAt = SIZE_MAX)
{
    return [width, height, failAt](std::size_t index, MovieStatus* status) -> std::optional<RgbaImage> {
        if (index == failAt) {
            *status = MovieStatus::failure(kMovieInvalidMedia, "frame " + std::to_string(index) + " is unreadable");
            return std::nullopt;
        }
        return test::movieTestFrame(static_cast<int>(index), width, height);
    };
}

// count frames at framesPerSecond, the first lasting `firstLonger` 600ths more.
AnimationTiming timingOf(std::size_t count, double framesPerSecond, std::int64_t firstLonger = 0)
{
    AnimationTiming timing;
    for (std::size_t k = 0; k < count; ++k)
        timing.startTimes.push_back(std::llround(static_cast<double>(k) * 600.0 / framesPerSecond) + (k ? firstLonger : 0));
    timing.endTime = std::llround(static_cast<double>(count) * 600.0 / framesPerSecond) + firstLonger;
    return timing;
}

TEST(AnimatedGifWriter, WritesEveryFrameAtTheRateAndLoopsForEver)
{
    ScratchFolder folder;
    const std::string path = folder.file("morph.gif");
    ASSERT_TRUE(AnimatedGifWriter::write(path, 64, 48, timingOf(7, 10.0), testFrames(64, 48)).ok());
    const auto probe = test::probeVideo(path);
    EXPECT_EQ(probe.at("codec_name"), "gif");
    EXPECT_EQ(probe.at("nb_read_frames"), "7");
    EXPECT_EQ(probe.at("width"), "64");
    EXPECT_EQ(probe.at("height"), "48");
    EXPECT_NEAR(std::stod(probe.at("duration")), 0.7, 0.011);
    // Played as the file says, it never ends: 7 frames, then the first again.
    EXPECT_EQ(test::loopingGifPackets(path, 30), 30);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1); // nothing beside it
    // A held first frame lasts its hold longer; the others keep the rate.
    ASSERT_TRUE(AnimatedGifWriter::write(path, 64, 48, timingOf(7, 10.0, 600), testFrames(64, 48)).ok());
    EXPECT_NEAR(std::stod(test::probeVideo(path).at("duration")), 1.7, 0.011);
}

TEST(AnimatedGifWriter, AFailureLeavesNothingAndNamesTheStep)
{
    ScratchFolder folder;
    const std::string path = folder.file("morph.gif");
    MovieStatus status = AnimatedGifWriter::write(path, 64, 48, timingOf(5, 10.0), testFrames(64, 48, 3));
    EXPECT_FALSE(status.ok());
    EXPECT_NE(status.message.find("frame 3 is unreadable"), std::string::npos) << status.message;
    EXPECT_NE(status.message.find(path), std::string::npos) << status.message;
    status = AnimatedGifWriter::write(path, 64, 48, timingOf(2, 10.0), testFrames(32, 24));
    EXPECT_NE(status.message.find("32 x 24"), std::string::npos) << status.message;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    status = AnimatedGifWriter::write(folder.file("missing/morph.gif"), 64, 48, timingOf(2, 10.0), testFrames(64, 48));
    EXPECT_NE(status.message.find("missing/morph.gif"), std::string::npos) << status.message;
    EXPECT_FALSE(AnimatedGifWriter::write(path, 64, 48, timingOf(0, 10.0), testFrames(64, 48)).ok());
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

} // namespace
} // namespace plyra
