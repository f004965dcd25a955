// SPDX-License-Identifier: MIT
#include "movie_test_support.h"

#include "platform/log.h"
#include "platform/movie/movie.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace plyra {
namespace {

using test::appendTestFrames;
using test::probeVideo;
using test::ScratchFolder;

struct RateCase {
    float framesPerSecond;
    int frames;
    int64_t frameDuration;
    const char* rate;
};

class MovieDurationTest : public ::testing::TestWithParam<RateCase> {};

TEST_P(MovieDurationTest, FramesLastTheirDurationInTheWrittenFile)
{
    const RateCase c = GetParam();
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    const int64_t duration = static_cast<int64_t>(c.frames * 600.0 / c.framesPerSecond);
    movie->setDuration({duration, kMovieTimeScale, 0});
    ASSERT_TRUE(appendTestFrames(*movie, c.frames, c.frameDuration, "mp4v").ok());
    EXPECT_EQ(movie->duration().value, c.frames * c.frameDuration);
    ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());

    const auto probe = probeVideo(folder.file("out.mov"));
    EXPECT_EQ(probe.at("codec_name"), "mpeg4");
    EXPECT_EQ(probe.at("nb_read_frames"), std::to_string(c.frames));
    EXPECT_EQ(probe.at("r_frame_rate"), c.rate);
    EXPECT_DOUBLE_EQ(std::stod(probe.at("duration")), c.frames * c.frameDuration / 600.0);
}

INSTANTIATE_TEST_SUITE_P(Rates, MovieDurationTest,
                         ::testing::Values(RateCase{20, 20, 30, "20/1"}, RateCase{25, 48, 24, "25/1"},
                                           RateCase{30, 30, 20, "30/1"}, RateCase{24, 24, 25, "24/1"}));

TEST(MovieFile, TwentyFramesAtTwentyPerSecondLastOneSecond)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    movie->setDuration({600, kMovieTimeScale, 0});
    ASSERT_TRUE(appendTestFrames(*movie, 20, 30, "mp4v").ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());
    const auto probe = probeVideo(folder.file("out.mov"));
    EXPECT_EQ(probe.at("nb_read_frames"), "20");
    EXPECT_EQ(probe.at("avg_frame_rate"), "20/1");
    EXPECT_EQ(probe.at("duration"), "1.000000");
    EXPECT_EQ(movie->duration(), (MovieTime{600, 600, 0}));
}

} // namespace
} // namespace plyra
