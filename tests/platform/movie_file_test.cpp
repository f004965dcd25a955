// SPDX-License-Identifier: MIT
#include "movie_test_support.h"

#include "platform/log.h"
#include "platform/movie/movie.h"
#include "platform/movie/movie_frame_decoder.h"

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

TEST(MovieFile, ZeroDurationFramesStillMakeAReadableMovie)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    movie->setDuration({static_cast<int64_t>(20 * 600.0 / 1000), kMovieTimeScale, 0});
    ASSERT_TRUE(appendTestFrames(*movie, 20, 0, "mp4v").ok());
    // Each frame is stored for one tick, the shortest a file can hold.
    EXPECT_EQ(movie->duration().value, 20);
    ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());
    const auto probe = probeVideo(folder.file("out.mov"));
    EXPECT_EQ(probe.at("nb_read_frames"), "20");
}

struct CodecCase {
    const char* code;
    const char* codecName;
};

class MovieCodecTest : public ::testing::TestWithParam<CodecCase> {};

TEST_P(MovieCodecTest, WrittenMovieHasTheCodecFramesAndDuration)
{
    const CodecCase c = GetParam();
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 6, 30, c.code).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());
    const auto probe = probeVideo(folder.file("out.mov"));
    EXPECT_EQ(probe.at("codec_name"), c.codecName);
    EXPECT_EQ(probe.at("nb_read_frames"), "6");
    EXPECT_EQ(probe.at("duration"), "0.300000");
    EXPECT_EQ(probe.at("width"), "64");
    EXPECT_EQ(probe.at("height"), "48");

    MovieStatus status;
    auto readBack = Movie::open(folder.file("out.mov"), &status);
    ASSERT_TRUE(readBack) << status.message;
    const MovieTrack* track = readBack->lastVideoTrack();
    ASSERT_TRUE(track);
    EXPECT_EQ(track->media()->sampleCount(), 6u);
    EXPECT_EQ(track->media()->codecName(), c.codecName);
    EXPECT_EQ(readBack->duration(), (MovieTime{180, 600, 0}));
}

TEST_P(MovieCodecTest, HigherQualityNeverGivesASmallerFile)
{
    const CodecCase c = GetParam();
    ScratchFolder folder;
    uintmax_t previous = 0;
    for (int quality : {kCodecMinQuality, kCodecLowQuality, kCodecNormalQuality, kCodecHighQuality, kCodecMaxQuality}) {
        auto movie = Movie::createInStorage(folder.file("storage"));
        ASSERT_TRUE(movie);
        ASSERT_TRUE(appendTestFrames(*movie, 4, 30, c.code, quality).ok());
        const std::string path = folder.file("q" + std::to_string(quality) + ".mov");
        ASSERT_TRUE(movie->writeToFile(path).ok());
        const uintmax_t size = std::filesystem::file_size(path);
        EXPECT_GE(size, previous) << c.code << " at quality " << quality;
        previous = size;
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, MovieCodecTest,
                         ::testing::Values(CodecCase{"mp4v", "mpeg4"}, CodecCase{"avc1", "h264"},
                                           CodecCase{"mjpb", "mjpeg"}, CodecCase{"rle ", "qtrle"},
                                           CodecCase{"pxlt", "prores"}),
                         [](const auto& entry) { return std::string(entry.param.codecName); });

TEST(MovieFile, AnimationCodecKeepsAlpha)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    const RgbaImage frame = test::movieTestFrame(3, 64, 48, 128);
    ASSERT_TRUE(movie->addImage(frame, {30, 600, 0}, AddImageAttributes{fourCharCode("rle "), 512}).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("alpha.mov")).ok());
    EXPECT_EQ(probeVideo(folder.file("alpha.mov")).at("pix_fmt"), "argb");

    auto readBack = Movie::open(folder.file("alpha.mov"));
    ASSERT_TRUE(readBack);
    const std::optional<RgbaImage> decoded = readBack->frameImageAtTime({0, 600, 0});
    ASSERT_TRUE(decoded);
    ASSERT_EQ(decoded->width(), 64);
    ASSERT_EQ(decoded->height(), 48);
    int worst = 0;
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            EXPECT_EQ(decoded->pixel(x, y)[3], 128);
            for (int c = 0; c < 3; ++c)
                worst = std::max(worst, std::abs(decoded->pixel(x, y)[c] - frame.pixel(x, y)[c]));
        }
    }
    // Straight alpha in the file: premultiplying back may be off by one.
    EXPECT_LE(worst, 1);
}

TEST(MovieFile, DecodedFramesKeepTheBottomRowAtTheBottom)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    RgbaImage frame(64, 48);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            uint8_t* p = frame.pixel(x, y);
            p[0] = y < 24 ? 255 : 0; // red bottom half, blue top half
            p[2] = y < 24 ? 0 : 255;
            p[3] = 255;
        }
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(movie->addImage(frame, {30, 600, 0}, AddImageAttributes{fourCharCode("mp4v"), 1023}).ok());
    const std::optional<RgbaImage> decoded = movie->frameImageAtTime({65, 600, 0});
    ASSERT_TRUE(decoded);
    EXPECT_GT(decoded->pixel(32, 4)[0], 200);
    EXPECT_LT(decoded->pixel(32, 4)[2], 60);
    EXPECT_GT(decoded->pixel(32, 44)[2], 200);
    EXPECT_EQ(decoded->pixel(32, 44)[3], 255);
    EXPECT_FALSE(movie->frameImageAtTime({90, 600, 0}));
}

TEST(MovieFile, FramesGoToTheStorageFileAsTheyCome)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    uintmax_t previous = std::filesystem::file_size(folder.file("storage"));
    EXPECT_EQ(previous, 0u);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "mjpb").ok());
        const uintmax_t size = std::filesystem::file_size(folder.file("storage"));
        EXPECT_GT(size, previous);
        previous = size;
    }
}

TEST(MovieFile, FlattenedFileStartsWithItsIndex)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 3, 30, "mp4v").ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("fast.mov"), true).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("plain.mov"), false).ok());
    auto contents = [](const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const std::string fast = contents(folder.file("fast.mov"));
    EXPECT_LT(fast.find("moov"), fast.find("mdat"));
    const std::string plain = contents(folder.file("plain.mov"));
    EXPECT_GT(plain.find("moov"), plain.find("mdat"));
}

TEST(MovieFile, FailedWriteLeavesThePathAsItWas)
{
    ScratchFolder folder;
    const std::string target = folder.file("keep.mov");
    std::ofstream(target) << "previous contents";
    auto empty = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(empty);
    const MovieStatus status = empty->writeToFile(target);
    EXPECT_FALSE(status.ok());
    EXPECT_NE(status.message.find("no frames"), std::string::npos);
    std::ifstream file(target);
    std::string text;
    std::getline(file, text);
    EXPECT_EQ(text, "previous contents");
    size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++entries;
    EXPECT_EQ(entries, 2u); // the target and the storage, no side file left behind
}

TEST(MovieFile, WriteIntoAMissingFolderFailsWithTheReason)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "mp4v").ok());
    const MovieStatus status = movie->writeToFile(folder.file("missing/out.mov"));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("missing/out.mov"), std::string::npos);
}

TEST(MovieFile, OpeningDamagedOrMissingFilesFailsWithAMessage)
{
    ScratchFolder folder;
    MovieStatus status;
    EXPECT_FALSE(Movie::open(folder.file("absent.mov"), &status));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("absent.mov"), std::string::npos);

    std::ofstream(folder.file("damaged.mov")) << "this is not a movie at all";
    LogCapture capture;
    EXPECT_FALSE(Movie::open(folder.file("damaged.mov"), &status));
    EXPECT_NE(status.message.find("damaged.mov"), std::string::npos);
}

TEST(MovieFile, TruncatedMovieIsRefused)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 3, 30, "mp4v").ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("whole.mov")).ok());
    // Fast start puts the index first: cutting the file keeps the index but loses frames.
    std::filesystem::copy_file(folder.file("whole.mov"), folder.file("cut.mov"));
    std::filesystem::resize_file(folder.file("cut.mov"), std::filesystem::file_size(folder.file("whole.mov")) / 2);
    LogCapture capture;
    MovieStatus status;
    auto cut = Movie::open(folder.file("cut.mov"), &status);
    if (cut) {
        // Whatever was read must be safe to use: frames whose bytes are gone fail to decode.
        const MovieTrack* track = cut->lastVideoTrack();
        ASSERT_TRUE(track);
        EXPECT_LE(track->media()->sampleCount(), 3u);
        MovieFrameDecoder decoder(*track->media());
        for (size_t i = 0; i < 3; ++i) {
            MovieStatus decoded;
            if (!decoder.decode(i, &decoded)) {
                EXPECT_FALSE(decoded.message.empty());
            }
        }
    } else {
        EXPECT_FALSE(status.message.empty());
    }
}

TEST(MovieFile, DamagedBytesNeverCrashReadingOrDecoding)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 3, 30, "avc1", 512, 32, 24).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("whole.mov")).ok());
    std::ifstream file(folder.file("whole.mov"), std::ios::binary);
    const std::string original(std::istreambuf_iterator<char>(file), {});
    LogCapture capture;
    uint32_t seed = 99;
    for (int round = 0; round < 24; ++round) {
        std::string damaged = original;
        for (int flip = 0; flip < 1 + round % 4; ++flip) {
            seed = seed * 1664525u + 1013904223u;
            damaged[seed % damaged.size()] = static_cast<char>(seed >> 24);
        }
        const std::string path = folder.file("damaged.mov");
        std::ofstream(path, std::ios::binary | std::ios::trunc) << damaged;
        MovieStatus status;
        auto readBack = Movie::open(path, &status);
        if (!readBack) {
            EXPECT_FALSE(status.message.empty());
            continue;
        }
        for (size_t t = 0; t < readBack->trackCount(); ++t) {
            const MovieMedia* media = readBack->track(t)->media();
            if (!media || media->mediaType() != kVideoMediaType)
                continue;
            MovieFrameDecoder decoder(*media);
            for (size_t i = 0; i < media->sampleCount(); ++i)
                decoder.decode(i);
        }
    }
}

TEST(MovieFile, UnknownCodecAndEmptyImagesAreRefused)
{
    auto movie = Movie::createInMemory();
    MovieStatus status = movie->addImage(test::movieTestFrame(0), {30, 600, 0},
                                         AddImageAttributes{fourCharCode("zzzz"), 512});
    EXPECT_EQ(status.code, kMovieCodecUnavailable);
    EXPECT_NE(status.message.find("zzzz"), std::string::npos);
    status = movie->addImage(RgbaImage(), {30, 600, 0}, std::nullopt);
    EXPECT_EQ(status.code, kMovieParamError);
    status = movie->addImage(test::movieTestFrame(0), {-1, 600, 0}, std::nullopt);
    EXPECT_EQ(status.code, kMovieInvalidTime);
}

TEST(MovieFile, ImagesWithoutAttributesUseMpeg4)
{
    auto movie = Movie::createInMemory();
    ASSERT_TRUE(movie->addImage(test::movieTestFrame(0), {30, 600, 0}, std::nullopt).ok());
    EXPECT_EQ(movie->lastVideoTrack()->media()->codecType(), fourCharCode("mp4v"));
    EXPECT_EQ(movie->lastVideoTrack()->media()->codecName(), "mpeg4");
}

TEST(MovieFile, ATrackKeepsItsFirstCodecAndSaysSoOnce)
{
    LogCapture capture;
    auto movie = Movie::createInMemory();
    ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "mp4v").ok());
    ASSERT_TRUE(appendTestFrames(*movie, 2, 30, "mjpb").ok());
    EXPECT_EQ(movie->lastVideoTrack()->media()->codecName(), "mpeg4");
    EXPECT_EQ(movie->lastVideoTrack()->media()->sampleCount(), 3u);
    EXPECT_EQ(capture.count("keeps codec \"mp4v\""), 1);
}

TEST(MovieFile, FramesOfAnotherSizeAreScaledToTheTrack)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "avc1", 512, 64, 48).ok());
    ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "avc1", 512, 100, 30).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());
    const auto probe = probeVideo(folder.file("out.mov"));
    EXPECT_EQ(probe.at("nb_read_frames"), "2");
    EXPECT_EQ(probe.at("width"), "64");
}

TEST(MovieFile, OddSizesAreRoundedUpForFourTwoZeroCodecs)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(appendTestFrames(*movie, 2, 30, "avc1", 512, 63, 47).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("odd.mov")).ok());
    const auto probe = probeVideo(folder.file("odd.mov"));
    EXPECT_EQ(probe.at("width"), "64");
    EXPECT_EQ(probe.at("height"), "48");
}

TEST(MovieFile, PixletIsWrittenAsProResAndSaidOnce)
{
    // The note is logged once per process; another test may have said it already.
    LogCapture capture;
    auto first = Movie::createInMemory();
    ASSERT_TRUE(appendTestFrames(*first, 1, 30, "pxlt").ok());
    auto second = Movie::createInMemory();
    ASSERT_TRUE(appendTestFrames(*second, 1, 30, "pxlt").ok());
    EXPECT_LE(capture.count("Pixlet"), 1);
    EXPECT_EQ(first->lastVideoTrack()->media()->codecName(), "prores");
    EXPECT_EQ(first->lastVideoTrack()->media()->codecType(), fourCharCode("pxlt"));
}

TEST(MovieFile, TemporaryPathsAreFreshFilesWithThePrefix)
{
    ScratchFolder folder;
    const std::string a = makeTemporaryMoviePath(folder.path() + "/", "Plyra_");
    const std::string b = makeTemporaryMoviePath(folder.path(), "Plyra_");
    EXPECT_EQ(a.rfind(folder.path() + "/Plyra_", 0), 0u);
    EXPECT_EQ(a.size(), folder.path().size() + 1 + 6 + 6);
    EXPECT_NE(a, b);
    EXPECT_TRUE(std::filesystem::is_regular_file(a));
    const std::string defaults = makeTemporaryMoviePath();
    EXPECT_EQ(defaults.rfind("/tmp/Plyra_", 0), 0u);
    std::filesystem::remove(defaults);

    MovieStatus status;
    EXPECT_EQ(makeTemporaryMoviePath(folder.file("missing"), "Plyra_", &status), "");
    EXPECT_EQ(status.code, kMovieFileError);
}

TEST(MovieFile, StorageThatCannotBeMadeIsReported)
{
    MovieStatus status;
    EXPECT_FALSE(Movie::createInStorage("/nonexistent-folder/storage", &status));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("/nonexistent-folder/storage"), std::string::npos);
}

TEST(MovieFile, AttributesAreAbsentUntilSet)
{
    auto movie = Movie::createInMemory();
    EXPECT_FALSE(movie->attributes().editable);
    movie->setEditable(true);
    movie->setHasAudio(false);
    movie->setHasVideo(true);
    movie->setLinear(true);
    movie->setDuration({1152, 600, 0});
    movie->setHasDuration(true);
    movie->setNaturalSize({320, 240});
    EXPECT_TRUE(*movie->attributes().editable);
    EXPECT_FALSE(*movie->attributes().hasAudio);
    EXPECT_EQ(movie->attributes().naturalSize->width, 320);
    EXPECT_EQ(movie->duration(), (MovieTime{1152, 600, 0}));
    EXPECT_EQ(movie->timeScale(), 600);
    EXPECT_TRUE(isMovieCodecAvailable(fourCharCode("mp4v")));
    EXPECT_FALSE(isMovieCodecAvailable(fourCharCode("zzzz")));
}

} // namespace
} // namespace plyra
