// SPDX-License-Identifier: MIT
#include "movie_test_support.h"

#include "platform/log.h"
#include "platform/movie/movie.h"
#include "platform/movie/movie_frame_decoder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace plyra {
namespace {

using test::appendTestFrames;
using test::probeVideo;
using test::ScratchFolder;

/// A storage-backed movie of `count` test frames, written to `path`.
std::unique_ptr<Movie> writtenMovie(const ScratchFolder& folder, const std::string& path, int count, int64_t duration,
                                    const char* codec, int quality = kCodecNormalQuality, int width = 64,
                                    int height = 48)
{
    auto movie = Movie::createInStorage(folder.file("storage"));
    EXPECT_TRUE(movie && appendTestFrames(*movie, count, duration, codec, quality, width, height).ok());
    EXPECT_TRUE(movie && movie->writeToFile(path).ok()) << path;
    return movie;
}

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Opens `path` and decodes every video sample (and one past the end): either step may
/// fail, with a message, but nothing may crash.
void expectReadSafely(const std::string& path)
{
    MovieStatus status;
    auto movie = Movie::open(path, &status);
    if (!movie) {
        EXPECT_FALSE(status.message.empty());
        return;
    }
    for (size_t t = 0; t < movie->trackCount(); ++t) {
        const MovieMedia* media = movie->track(t)->media();
        if (!media || media->mediaType() != kVideoMediaType)
            continue;
        MovieFrameDecoder decoder(*media);
        for (size_t i = 0; i <= media->sampleCount(); ++i) {
            MovieStatus decoded;
            EXPECT_TRUE(decoder.decode(i, &decoded) || !decoded.message.empty());
        }
    }
}

TEST(MovieFile, FramesLastTheirDurationInTheWrittenFile)
{
    // A frame rate's duration is 600ths truncated; 1000 fps gives 0, stored as one tick.
    struct Row { float framesPerSecond; int frames; int64_t frameDuration, storedDuration; const char* rate; };
    for (const Row& r : {Row{20, 20, 30, 30, "20/1"}, Row{25, 48, 24, 24, "25/1"}, Row{30, 30, 20, 20, "30/1"},
                         Row{24, 24, 25, 25, "24/1"}, Row{1000, 20, 0, 1, nullptr}}) {
        SCOPED_TRACE(r.framesPerSecond);
        ScratchFolder folder;
        auto movie = Movie::createInStorage(folder.file("storage"));
        ASSERT_TRUE(movie);
        movie->setDuration({static_cast<int64_t>(r.frames * 600.0 / r.framesPerSecond), kMovieTimeScale, 0});
        ASSERT_TRUE(appendTestFrames(*movie, r.frames, r.frameDuration, "mp4v").ok());
        EXPECT_EQ(movie->duration(), (MovieTime{r.frames * r.storedDuration, 600, 0}));
        ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());

        const auto probe = probeVideo(folder.file("out.mov"));
        EXPECT_EQ(probe.at("codec_name"), "mpeg4");
        EXPECT_EQ(probe.at("nb_read_frames"), std::to_string(r.frames));
        if (!r.rate)
            continue;
        EXPECT_EQ(probe.at("r_frame_rate"), r.rate);
        EXPECT_EQ(probe.at("avg_frame_rate"), r.rate);
        EXPECT_DOUBLE_EQ(std::stod(probe.at("duration")), r.frames * r.frameDuration / 600.0);
    }
}

struct Codec { const char* code; const char* name; };
constexpr Codec kCodecs[] = {{"mp4v", "mpeg4"}, {"avc1", "h264"}, {"mjpb", "mjpeg"}, {"rle ", "qtrle"}, {"pxlt", "prores"}};

TEST(MovieFile, EveryCodecIsWrittenAndReadBack)
{
    for (const Codec& c : kCodecs) {
        SCOPED_TRACE(c.code);
        ScratchFolder folder;
        writtenMovie(folder, folder.file("out.mov"), 6, 30, c.code);
        const auto probe = probeVideo(folder.file("out.mov"));
        EXPECT_EQ(probe.at("codec_name"), c.name);
        EXPECT_EQ(probe.at("nb_read_frames"), "6");
        EXPECT_EQ(probe.at("duration"), "0.300000");
        EXPECT_EQ(probe.at("width"), "64");
        EXPECT_EQ(probe.at("height"), "48");

        MovieStatus status;
        auto readBack = Movie::open(folder.file("out.mov"), &status);
        ASSERT_TRUE(readBack) << status.message;
        ASSERT_TRUE(readBack->lastVideoTrack());
        EXPECT_EQ(readBack->lastVideoTrack()->media()->sampleCount(), 6u);
        EXPECT_EQ(readBack->lastVideoTrack()->media()->codecName(), c.name);
        EXPECT_EQ(readBack->duration(), (MovieTime{180, 600, 0}));

        // Skipping forward goes on from the frame decoded last: the same pictures as
        // decoding each frame anew from its key frame.
        const MovieMedia& media = *readBack->lastVideoTrack()->media();
        MovieFrameDecoder skipping(media);
        for (size_t i : {0u, 2u, 5u, 3u}) {
            MovieFrameDecoder fresh(media);
            const auto skipped = skipping.decode(i);
            const auto anew = fresh.decode(i);
            ASSERT_TRUE(skipped && anew);
            EXPECT_EQ(skipped->bytes(), anew->bytes()) << "frame " << i;
        }
    }
}

TEST(MovieFile, HigherQualityNeverGivesASmallerFile)
{
    ScratchFolder folder;
    for (const Codec& c : kCodecs) {
        uintmax_t previous = 0;
        for (int quality : {kCodecMinQuality, kCodecLowQuality, kCodecNormalQuality, kCodecHighQuality, kCodecMaxQuality}) {
            const std::string path = folder.file(std::string(c.name) + std::to_string(quality) + ".mov");
            writtenMovie(folder, path, 4, 30, c.code, quality);
            EXPECT_GE(std::filesystem::file_size(path), previous) << c.code << " at quality " << quality;
            previous = std::filesystem::file_size(path);
        }
    }
}

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
    ASSERT_TRUE(decoded && decoded->width() == 64 && decoded->height() == 48);
    int worst = 0;
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            EXPECT_EQ(decoded->pixel(x, y)[3], 128);
            for (int c = 0; c < 3; ++c)
                worst = std::max(worst, std::abs(decoded->pixel(x, y)[c] - frame.pixel(x, y)[c]));
        }
    }
    EXPECT_LE(worst, 1); // straight alpha in the file: premultiplying back may be off by one
}

TEST(MovieFile, DecodedFramesKeepTheBottomRowAtTheBottom)
{
    auto movie = Movie::createInMemory();
    RgbaImage frame(64, 48);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) // red bottom half, blue top half
            std::memcpy(frame.pixel(x, y), y < 24 ? "\xff\0\0\xff" : "\0\0\xff\xff", 4);
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

TEST(MovieFile, FramesGoToStorageAsTheyComeAndFastStartPutsTheIndexFirst)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    uintmax_t previous = std::filesystem::file_size(folder.file("storage"));
    EXPECT_EQ(previous, 0u);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "mjpb").ok());
        EXPECT_GT(std::filesystem::file_size(folder.file("storage")), previous);
        previous = std::filesystem::file_size(folder.file("storage"));
    }
    ASSERT_TRUE(movie->writeToFile(folder.file("fast.mov"), true).ok());
    ASSERT_TRUE(movie->writeToFile(folder.file("plain.mov"), false).ok());
    const std::string fast = contents(folder.file("fast.mov"));
    EXPECT_LT(fast.find("moov"), fast.find("mdat"));
    const std::string plain = contents(folder.file("plain.mov"));
    EXPECT_GT(plain.find("moov"), plain.find("mdat"));
}

TEST(MovieFile, FailedWriteLeavesTheTargetAlone)
{
    ScratchFolder folder;
    const std::string target = folder.file("keep.mov");
    std::ofstream(target) << "previous contents";
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie);
    const MovieStatus status = movie->writeToFile(target);
    EXPECT_NE(status.message.find("no frames"), std::string::npos);
    EXPECT_EQ(contents(target), "previous contents");
    const auto entries = std::distance(std::filesystem::directory_iterator(folder.path()), {});
    EXPECT_EQ(entries, 2); // the target and the storage, no side file left behind
}

TEST(MovieFile, MissingPathsAreReportedByName)
{
    ScratchFolder folder;
    auto movie = Movie::createInStorage(folder.file("storage"));
    ASSERT_TRUE(movie && appendTestFrames(*movie, 1, 30, "mp4v").ok());
    MovieStatus status = movie->writeToFile(folder.file("missing/out.mov"));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("missing/out.mov"), std::string::npos);

    EXPECT_FALSE(Movie::open(folder.file("absent.mov"), &status));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("absent.mov"), std::string::npos);

    EXPECT_FALSE(Movie::createInStorage("/nonexistent-folder/storage", &status));
    EXPECT_EQ(status.code, kMovieFileError);
    EXPECT_NE(status.message.find("/nonexistent-folder/storage"), std::string::npos);

    std::ofstream(folder.file("damaged.mov")) << "this is not a movie at all";
    LogCapture capture;
    EXPECT_FALSE(Movie::open(folder.file("damaged.mov"), &status));
    EXPECT_NE(status.message.find("damaged.mov"), std::string::npos);
}

TEST(MovieFile, TruncatedOrDamagedMoviesAreRefusedOrReadSafely)
{
    ScratchFolder folder;
    LogCapture capture;
    for (const char* codec : {"mp4v", "avc1"}) {
        writtenMovie(folder, folder.file("whole.mov"), 3, 30, codec, 512, 32, 24);
        const std::string original = contents(folder.file("whole.mov"));
        // Fast start puts the index first: cutting the file keeps the index but loses frames.
        std::ofstream(folder.file("cut.mov"), std::ios::binary) << original.substr(0, original.size() / 2);
        expectReadSafely(folder.file("cut.mov"));
        uint32_t seed = 99;
        for (int round = 0; round < 24; ++round) {
            std::string damaged = original;
            for (int flip = 0; flip < 1 + round % 4; ++flip) {
                seed = seed * 1664525u + 1013904223u;
                damaged[seed % damaged.size()] = static_cast<char>(seed >> 24);
            }
            std::ofstream(folder.file("damaged.mov"), std::ios::binary | std::ios::trunc) << damaged;
            expectReadSafely(folder.file("damaged.mov"));
        }
    }
}

TEST(MovieFile, BadImagesAndCodecsAreRefused)
{
    auto movie = Movie::createInMemory();
    MovieStatus status = movie->addImage(test::movieTestFrame(0), {30, 600, 0}, AddImageAttributes{fourCharCode("zzzz"), 512});
    EXPECT_EQ(status.code, kMovieCodecUnavailable);
    EXPECT_NE(status.message.find("zzzz"), std::string::npos);
    EXPECT_EQ(movie->addImage(RgbaImage(), {30, 600, 0}, std::nullopt).code, kMovieParamError);
    EXPECT_EQ(movie->addImage(test::movieTestFrame(0), {-1, 600, 0}, std::nullopt).code, kMovieInvalidTime);
    EXPECT_TRUE(isMovieCodecAvailable(fourCharCode("mp4v")));
    EXPECT_FALSE(isMovieCodecAvailable(fourCharCode("zzzz")));
}

TEST(MovieFile, CodesOutsideTheTableAreWrittenWhenFFmpegHasAnEncoderForThem)
{
    // What a code means in a QuickTime file decides the encoder; the file keeps the code.
    // Mean difference per channel: JPEG loses the test frames' fine noise (as Motion JPEG does),
    // PNG nothing.
    const struct { const char* code; const char* codecName; double tolerance; } written[] = {
        {"jpeg", "mjpeg", 20.0}, {"png ", "png", 0.0}};
    for (const auto& c : written) {
        ScratchFolder folder;
        EXPECT_TRUE(isMovieCodecAvailable(fourCharCode(c.code))) << c.code;
        auto movie = Movie::createInStorage(folder.file("storage"));
        ASSERT_TRUE(movie);
        const MovieStatus appended = appendTestFrames(*movie, 3, 30, c.code, kCodecHighQuality);
        ASSERT_TRUE(appended.ok()) << c.code << ": " << appended.message;
        ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok()) << c.code;
        const auto probe = probeVideo(folder.file("out.mov"));
        EXPECT_EQ(probe.at("codec_name"), c.codecName) << c.code;
        EXPECT_EQ(probe.at("codec_tag_string"), c.code);
        EXPECT_EQ(probe.at("nb_read_frames"), "3") << c.code;
        const std::unique_ptr<Movie> read = Movie::open(folder.file("out.mov"));
        ASSERT_TRUE(read) << c.code;
        const std::optional<RgbaImage> frame = read->frameImageAtTime({30, 600, 0});
        ASSERT_TRUE(frame) << c.code;
        const RgbaImage expected = test::movieTestFrame(1);
        double difference = 0.0;
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x)
                for (int k = 0; k < 3; ++k)
                    difference += std::abs(int(frame->pixel(x, y)[k]) - int(expected.pixel(x, y)[k]));
        EXPECT_LE(difference / (3.0 * expected.width() * expected.height()), c.tolerance) << c.code;
    }
    // A code unknown to QuickTime files, and one known without an encoder here.
    for (const char* code : {"zzzz", "8BPS"}) {
        EXPECT_FALSE(isMovieCodecAvailable(fourCharCode(code))) << code;
        auto movie = Movie::createInMemory();
        const MovieStatus status = movie->addImage(test::movieTestFrame(0), {30, 600, 0}, AddImageAttributes{fourCharCode(code), 512});
        EXPECT_EQ(status.code, kMovieCodecUnavailable) << code;
        EXPECT_NE(status.message.find(code), std::string::npos) << status.message;
    }
}

TEST(MovieFile, ATrackKeepsItsFirstCodecMpeg4ByDefault)
{
    LogCapture capture;
    auto movie = Movie::createInMemory();
    ASSERT_TRUE(movie->addImage(test::movieTestFrame(0), {30, 600, 0}, std::nullopt).ok());
    EXPECT_EQ(movie->lastVideoTrack()->media()->codecType(), fourCharCode("mp4v"));
    ASSERT_TRUE(appendTestFrames(*movie, 2, 30, "mjpb").ok());
    EXPECT_EQ(movie->lastVideoTrack()->media()->codecName(), "mpeg4");
    EXPECT_EQ(movie->lastVideoTrack()->media()->sampleCount(), 3u);
    EXPECT_EQ(capture.count("keeps codec \"mp4v\""), 1);

    // Pixlet is written as ProRes, said at most once per process.
    auto first = Movie::createInMemory();
    auto second = Movie::createInMemory();
    ASSERT_TRUE(appendTestFrames(*first, 1, 30, "pxlt").ok() && appendTestFrames(*second, 1, 30, "pxlt").ok());
    EXPECT_LE(capture.count("Pixlet"), 1);
    EXPECT_EQ(first->lastVideoTrack()->media()->codecName(), "prores");
    EXPECT_EQ(first->lastVideoTrack()->media()->codecType(), fourCharCode("pxlt"));
}

TEST(MovieFile, FramesAreScaledToTheTrackAndOddSizesRoundedUp)
{
    // First frame size, second frame size: either way a 64 × 48 H.264 movie of two frames.
    for (const auto& [w0, h0, w1, h1] : {std::array{64, 48, 100, 30}, std::array{63, 47, 63, 47}}) {
        ScratchFolder folder;
        auto movie = Movie::createInStorage(folder.file("storage"));
        ASSERT_TRUE(movie);
        ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "avc1", 512, w0, h0).ok());
        ASSERT_TRUE(appendTestFrames(*movie, 1, 30, "avc1", 512, w1, h1).ok());
        ASSERT_TRUE(movie->writeToFile(folder.file("out.mov")).ok());
        const auto probe = probeVideo(folder.file("out.mov"));
        EXPECT_EQ(probe.at("nb_read_frames"), "2") << w1;
        EXPECT_EQ(probe.at("width"), "64") << w1;
        EXPECT_EQ(probe.at("height"), "48") << w1;
    }
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

TEST(MovieFile, AttributesAreAbsentUntilSet)
{
    auto movie = Movie::createInMemory();
    EXPECT_FALSE(movie->attributes().editable);
    movie->setEditable(true);
    movie->setDuration({1152, 600, 0});
    EXPECT_TRUE(*movie->attributes().editable);
    EXPECT_FALSE(movie->attributes().hasAudio);
    EXPECT_EQ(movie->duration(), (MovieTime{1152, 600, 0}));
}

} // namespace
} // namespace plyra
