// SPDX-License-Identifier: MIT
#include "render/movie_output.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

TEST(MovieOutput, NumberedNamesComeFromOnePlaceholderInTheFileName)
{
    const struct { const char* pattern; std::size_t number; const char* name; FrameFileFormat format; } cases[] = {
        {"out/morph_%04d.png", 1, "out/morph_0001.png", FrameFileFormat::Png},
        {"out/morph_%04d.png", 12345, "out/morph_12345.png", FrameFileFormat::Png},
        {"%d.TIF", 7, "7.TIF", FrameFileFormat::Tiff},
        {"50%/a%%b_%02d.jpg", 3, "50%/a%b_03.jpg", FrameFileFormat::Jpeg},
        {"x%%/%09d.jpeg", 42, "x%%/000000042.jpeg", FrameFileFormat::Jpeg},
    };
    for (const auto& c : cases) {
        QString error;
        const auto pattern = ImageSequencePattern::parse(QLatin1String(c.pattern), &error);
        ASSERT_TRUE(pattern) << c.pattern << ": " << error.toStdString();
        EXPECT_EQ(pattern->fileName(c.number), QLatin1String(c.name)) << c.pattern;
        EXPECT_EQ(pattern->format(), c.format) << c.pattern;
        EXPECT_EQ(movieOutputKindForPath(QLatin1String(c.pattern)), MovieOutputKind::ImageSequence) << c.pattern;
    }
    for (const char* bad : {"a_%04d_%d.png", "a_%4d.png", "a_%0d.png", "a_%04x.png", "a_%04d.gif", "a_%04d", "a_%.png"}) {
        QString error;
        EXPECT_FALSE(ImageSequencePattern::parse(QLatin1String(bad), &error)) << bad;
        EXPECT_TRUE(error.contains(QLatin1String(bad))) << error.toStdString();
        EXPECT_FALSE(movieOutputKindForPath(QLatin1String(bad))) << bad;
    }
}

TEST(MovieOutput, KindsFollowTheExtensionAndChooseTheirCodec)
{
    const struct { const char* path; MovieOutputKind kind; const char* codec; } cases[] = {
        {"a/m.MOV", MovieOutputKind::QuickTime, "mp4v"},
        {"a/m.mp4", MovieOutputKind::Mpeg4, "avc1"},
        {"m.webm", MovieOutputKind::WebM, "vp09"},
        {"100%/m.gif", MovieOutputKind::AnimatedGif, "rle "},
        {"m.WebP", MovieOutputKind::AnimatedWebP, "rle "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(movieOutputKindForPath(QLatin1String(c.path)), c.kind) << c.path;
        EXPECT_EQ(movieCodecForOutput(c.kind, "mp4v"), c.codec) << c.path;
    }
    EXPECT_EQ(movieCodecForOutput(MovieOutputKind::QuickTime, "pxlt"), "pxlt");
    QString error;
    EXPECT_FALSE(movieOutputKindForPath(QStringLiteral("m.avi"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("m.avi"))) << error.toStdString();
    EXPECT_EQ(frameFileFormatForPath(QStringLiteral("f.JPEG")), FrameFileFormat::Jpeg);
    EXPECT_EQ(frameFileFormatForPath(QStringLiteral("f.tif")), FrameFileFormat::Tiff);
    EXPECT_FALSE(frameFileFormatForPath(QStringLiteral("f.bmp")));
}

} // namespace
} // namespace plyra
