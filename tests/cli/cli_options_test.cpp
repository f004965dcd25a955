// SPDX-License-Identifier: MIT
#include "cli/cli_options.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

CliParseResult parse(std::vector<std::string> args)
{
    return parseCliOptions(args);
}

TEST(CliOptions, ModesFollowTheOutputExtensionAndOptions)
{
    auto frame = parse({"doc.plyra", "-o", "out.JPG", "--time", "0.25", "--size", "640x480", "--quiet"});
    ASSERT_TRUE(frame.options) << frame.error;
    EXPECT_EQ(frame.options->mode, CliMode::Frame);
    EXPECT_EQ(*frame.options->time, 0.25f);
    EXPECT_EQ(*frame.options->width, 640.0f);
    EXPECT_EQ(*frame.options->height, 480.0f);
    EXPECT_TRUE(frame.options->quiet);

    auto defaults = parse({"doc.plyra"});
    ASSERT_TRUE(defaults.options);
    EXPECT_EQ(defaults.options->mode, CliMode::Frame);
    EXPECT_FALSE(defaults.options->time);

    auto movie = parse({"doc.plyra", "-o", "m.mov", "--frames", "48", "--fps", "24", "--range", "0.2,0.6",
        "--reverse", "--codec", "rle ", "--quality", "1023", "--interval", "5"});
    ASSERT_TRUE(movie.options) << movie.error;
    EXPECT_EQ(movie.options->mode, CliMode::Movie);
    EXPECT_EQ(*movie.options->frames, 48u);
    EXPECT_EQ(*movie.options->framesPerSecond, 24.0f);
    EXPECT_EQ(*movie.options->rangeLocation, 0.2f);
    EXPECT_EQ(*movie.options->rangeLength, 0.6f);
    EXPECT_TRUE(movie.options->reverse);
    EXPECT_EQ(*movie.options->codec, "rle ");
    EXPECT_EQ(*movie.options->quality, 1023);
    EXPECT_EQ(*movie.options->interval, 5.0f);

    // Frames by their extension; an animated GIF and numbered frames are movies.
    for (const char* still : {"f.png", "f.TIF", "f.tiff", "f.jpeg", "50%/f.png"}) {
        auto result = parse({"doc.plyra", "-o", still});
        ASSERT_TRUE(result.options) << still << ": " << result.error;
        EXPECT_EQ(result.options->mode, CliMode::Frame) << still;
    }
    for (const char* moving : {"m.gif", "m.webp", "m.mp4", "m.webm", "out/m_%04d.png", "m_%d.tif"}) {
        auto result = parse({"doc.plyra", "-o", moving});
        ASSERT_TRUE(result.options) << moving << ": " << result.error;
        EXPECT_EQ(result.options->mode, CliMode::Movie) << moving;
        EXPECT_FALSE(result.options->frames) << moving; // the document's count
    }
    auto timed = parse({"doc.plyra", "-o", "m.mp4", "--ease", "in-out", "--hold", "1.5,0", "--ping-pong"});
    ASSERT_TRUE(timed.options) << timed.error;
    EXPECT_EQ(*timed.options->easing, Easing::EaseInOut);
    EXPECT_EQ(*timed.options->holdStart, 1.5);
    EXPECT_EQ(*timed.options->holdEnd, 0.0);
    EXPECT_TRUE(timed.options->pingPong);
    EXPECT_EQ(*parse({"doc.plyra", "-o", "m.gif", "--ease", "out"}).options->easing, Easing::EaseOut);

    auto info = parse({"--info", "doc.plyra"});
    ASSERT_TRUE(info.options);
    EXPECT_EQ(info.options->mode, CliMode::Info);

    auto warp = parse({"doc.plyra", "--time", "0.3", "--warp-field", "f.bin"});
    ASSERT_TRUE(warp.options);
    EXPECT_EQ(warp.options->mode, CliMode::WarpField);
    EXPECT_EQ(warp.options->outputPath, "f.bin");

    auto fresh = parse({"--new", "a.png", "b.jpg", "-o", "faces.plyra", "--face-lines"});
    ASSERT_TRUE(fresh.options) << fresh.error;
    EXPECT_EQ(fresh.options->mode, CliMode::NewDocument);
    EXPECT_EQ(fresh.options->firstImagePath, "a.png");
    EXPECT_EQ(fresh.options->lastImagePath, "b.jpg");
    EXPECT_TRUE(fresh.options->faceLines);

    EXPECT_EQ(parse({"--help"}).options->mode, CliMode::Help);
}

TEST(CliOptions, UsageErrorsSayWhatIsWrong)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "no document given"},
        {{"doc.plyra", "--bogus"}, "unknown option --bogus"},
        {{"doc.plyra", "--time"}, "--time needs a value"},
        {{"doc.plyra", "--time", "half"}, "--time needs a number"},
        {{"doc.plyra", "--time", "inf"}, "--time needs a number"},
        {{"doc.plyra", "--time", "1e40"}, "--time needs a number"}, // infinite as a float
        {{"doc.plyra", "--time", "-1e39"}, "--time needs a number"},
        {{"doc.plyra", "-o", "x.bmp"}, "the output must end in"},
        {{"doc.plyra", "-o", "x_%04d_%d.png", "--frames", "3"}, "a numbered image sequence needs one %d or %0Nd"},
        {{"doc.plyra", "-o", "x_%4d.png", "--frames", "3"}, "a numbered image sequence needs"},
        {{"doc.plyra", "-o", "x_%04d.gif", "--frames", "3"}, "a numbered image sequence needs"},
        {{"doc.plyra", "-o", "m.gif", "--frames", "3", "--codec", "jpeg"}, "--codec is for movies"},
        {{"doc.plyra", "-o", "m_%02d.png", "--frames", "3", "--quality", "9"}, "--quality is for movies"},
        {{"doc.plyra", "-o", "f.png", "--frames", "4"}, "are for movies"},
        {{"doc.plyra", "-o", "f.png", "--ping-pong"}, "are for movies"},
        {{"doc.plyra", "-o", "m.mp4", "--ease", "bounce"}, "--ease needs linear, in, out or in-out"},
        {{"doc.plyra", "-o", "m.mp4", "--hold", "1"}, "--hold needs START,END"},
        {{"doc.plyra", "-o", "m.mp4", "--hold", "-1,0"}, "--hold needs START,END"},
        {{"doc.plyra", "-o", "m.avi"}, "the output must end in"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "0"}, "--frames needs a whole number"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "-3"}, "--frames needs a whole number"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "4", "--quality", "2000"}, "--quality needs"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "4", "--codec", "h264x"}, "--codec needs"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "4", "--fps", "0"}, "--fps needs a number above 0"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "4", "--range", "0.5"}, "--range needs"},
        {{"doc.plyra", "-o", "m.mov", "--frames", "4", "--time", "0.5"}, "--time is for a single frame"},
        {{"doc.plyra", "-o", "f.jpg", "--frames", "4"}, "are for movies"},
        {{"doc.plyra", "--size", "640"}, "--size needs"},
        {{"doc.plyra", "--size", "0x480"}, "--size needs"},
        {{"doc.plyra", "--interval", "nan"}, "--interval needs"},
        {{"a.plyra", "b.plyra"}, "only one document"},
        {{"doc.plyra", "--info", "-o", "x.jpg"}, "--info prints the document"},
        {{"--new", "a.png"}, "--new needs a first and a last image"},
        {{"--new", "a.png", "b.png"}, "--new needs -o DOC.plyra"},
        {{"--new", "a.png", "b.png", "-o", "x.jpg"}, "-o needs a name ending in .plyra"},
        {{"doc.plyra", "--new", "a.png", "b.png", "-o", "x.plyra"}, "--new makes a document and reads none"},
        {{"--new", "a.png", "b.png", "-o", "x.plyra", "--frames", "3"}, "--new takes only"},
        {{"doc.plyra", "--face-lines"}, "--face-lines is for --new"},
    };
    for (const auto& [args, expected] : cases) {
        const CliParseResult result = parseCliOptions(args);
        EXPECT_FALSE(result.options) << expected;
        EXPECT_NE(result.error.find(expected), std::string::npos) << result.error;
        EXPECT_EQ(result.error.find('\n'), std::string::npos) << "one line: " << result.error;
    }
    for (const char* shown : {"--warp-field", "--face-lines", "MOVIE.gif", "NAME_%04d.png", ".png", ".tif", "jpeg"})
        EXPECT_NE(cliUsage().find(shown), std::string::npos) << shown;
}

} // namespace
} // namespace plyra
