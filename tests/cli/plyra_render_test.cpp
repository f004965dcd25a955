// SPDX-License-Identifier: MIT
#include "cli/cli_options.h"
#include "cli/cli_runner.h"
#include "model/morph_document.h"
#include "platform/movie/movie.h"
#include "platform/movie_test_support.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "platform/stop_request.h"
#include "render/output_probe.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <sstream>

namespace plyra {
namespace {

using namespace Qt::StringLiterals;

struct RunResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

class PlyraRenderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        UserDefaults::standard().useFile(dir.filePath(u"defaults.ini"_s));
    }

    RunResult run(const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"PLYRA_DEFAULTS_FILE"_s, dir.filePath(u"defaults.ini"_s));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(PLYRA_RENDER_EXE), arguments);
        EXPECT_TRUE(process.waitForFinished(120000));
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    // A package with two 40 × 30 images (red and blue), or only that frame size, and two joined lines.
    QString makeDocument(bool withImages = true, const std::optional<MovieSettings>& movie = std::nullopt)
    {
        MorphDocument document;
        document.setMovieSettings(movie);
        if (!withImages)
            document.setFrameSize(QSizeF(40, 30));
        for (unsigned track = 0; withImages && track < 2; ++track) {
            QImage image(40, 30, QImage::Format_RGBA8888);
            image.fill(track == 0 ? Qt::red : Qt::blue);
            const QString path = dir.filePath(u"image%1.png"_s.arg(track));
            EXPECT_TRUE(image.save(path));
            document.setImageFromURL(path, track);
        }
        auto a = MorphLine::create();
        auto b = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            a->setStartPoint({0.2f, 0.2f}, track, nullptr);
            a->setEndPoint({0.5f, 0.5f}, track, nullptr);
            b->setStartPoint({0.5f, 0.5f}, track, nullptr);
            b->setEndPoint({0.8f, 0.3f}, track, nullptr);
        }
        document.addMorphLine(a);
        document.addMorphLine(b);
        const QString package = dir.filePath(withImages ? u"doc.plyra"_s : u"empty.plyra"_s);
        QString error;
        EXPECT_TRUE(document.writeToFile(package, &error)) << error.toStdString();
        RunLoop::main().runUntilIdle();
        return package;
    }

    QTemporaryDir dir;
};

TEST_F(PlyraRenderTest, UsageErrorsExitWithTwoAndAOneLineMessage)
{
    const RunResult none = run({});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_TRUE(none.err.startsWith("plyra-render: no document given\n")) << none.err.toStdString();
    EXPECT_TRUE(none.err.contains("usage:"));
    const RunResult bad = run({u"doc.plyra"_s, u"--frames"_s});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.err.startsWith("plyra-render: --frames needs a value\n"));
    const RunResult help = run({u"--help"_s});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--warp-field"));
}

TEST_F(PlyraRenderTest, UnreadableDocumentsFailWithAClearMessage)
{
    const RunResult missing = run({dir.filePath(u"nothing.plyra"_s), u"--info"_s});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains("cannot open document")) << missing.err.toStdString();

    const QString garbage = dir.filePath(u"garbage.plyra"_s);
    ASSERT_TRUE(QDir().mkpath(garbage));
    QFile info(garbage + u"/info.plist"_s);
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.write("\x00\x01garbage<plist", 14);
    info.close();
    const QString out = dir.filePath(u"g.jpg"_s);
    const RunResult broken = run({garbage, u"-o"_s, out});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(broken.err.contains("cannot open document"));
    EXPECT_FALSE(QFile::exists(out));

    const RunResult noImage = run({makeDocument(false), u"-o"_s, out});
    EXPECT_EQ(noImage.exitCode, 1);
    EXPECT_TRUE(noImage.err.contains("no image")) << noImage.err.toStdString();
    EXPECT_FALSE(QFile::exists(out));

    const RunResult unwritable = run({makeDocument(), u"-o"_s, dir.filePath(u"no/such/dir/f.jpg"_s)});
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_TRUE(unwritable.err.contains("cannot write"));
}

TEST_F(PlyraRenderTest, InfoPrintsTheDocumentAsJson)
{
    const RunResult result = run({makeDocument(), u"--info"_s});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    const QJsonObject info = QJsonDocument::fromJson(result.out).object();
    EXPECT_EQ(info[u"frameSize"_s].toArray(), (QJsonArray{40, 30}));
    EXPECT_EQ(info[u"codecFormat"_s].toString(), u"mp4v"_s);
    EXPECT_EQ(info[u"codecQuality"_s].toInt(), 768);
    const QJsonArray images = info[u"images"_s].toArray();
    ASSERT_EQ(images.size(), 2);
    EXPECT_TRUE(images[0].toObject()[u"loaded"_s].toBool());
    EXPECT_NEAR(images[0].toObject()[u"aspectRatio"_s].toDouble(), 40.0 / 30.0, 1e-6);
    EXPECT_TRUE(images[0].toObject()[u"path"_s].toString().endsWith(u"Image_0.tiff"_s));
    const QJsonArray lines = info[u"lines"_s].toArray();
    ASSERT_EQ(lines.size(), 2);
    const QJsonObject first = lines[0].toObject();
    EXPECT_EQ(first[u"attachedLineAtEnd"_s].toInt(), 1);
    EXPECT_TRUE(first[u"attachedLineAtStart"_s].isNull());
    EXPECT_EQ(lines[1].toObject()[u"attachedLineAtStart"_s].toInt(), 0);
    EXPECT_NEAR(first[u"endPoints"_s].toArray()[1].toArray()[0].toDouble(), 0.5, 1e-6);
}

TEST_F(PlyraRenderTest, RendersAFrameAndAMovie)
{
    const QString document = makeDocument();
    const QString frame = dir.filePath(u"f.jpg"_s);
    const RunResult still = run({document, u"-o"_s, frame, u"--time"_s, u"0.25"_s, u"--size"_s, u"64x48"_s, u"--quiet"_s});
    ASSERT_EQ(still.exitCode, 0) << still.err.toStdString();
    EXPECT_EQ(QImageReader(frame).size(), QSize(64, 48));

    const QString movie = dir.filePath(u"m.mov"_s);
    const RunResult moving = run({document, u"-o"_s, movie, u"--frames"_s, u"6"_s, u"--fps"_s, u"12"_s, u"--codec"_s, u"mjpb"_s});
    ASSERT_EQ(moving.exitCode, 0) << moving.err.toStdString();
    EXPECT_TRUE(moving.out.startsWith("plyra-render: 6 frames in ")) << moving.out.toStdString();
    EXPECT_EQ(moving.out.count('\n'), 1);
    const std::unique_ptr<Movie> saved = Movie::open(movie.toStdString());
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->frameTimes().size(), 6u);
    EXPECT_EQ(saved->duration().valueIn(600), 300);
}

TEST_F(PlyraRenderTest, WritesFramesAnimatedGifsAndNumberedFramesByTheOutputName)
{
    const QString document = makeDocument();
    for (const char* name : {"f.png", "f.tif", "f.TIFF"}) {
        const QString path = dir.filePath(QLatin1String(name));
        const RunResult still = run({document, u"-o"_s, path, u"--time"_s, u"0"_s, u"--quiet"_s});
        ASSERT_EQ(still.exitCode, 0) << name << ": " << still.err.toStdString();
        const QImage read(path);
        ASSERT_EQ(read.size(), QSize(40, 30)) << name;
        EXPECT_FALSE(read.hasAlphaChannel()) << name; // opaque: stored without alpha
        EXPECT_EQ(read.pixel(10, 10), qRgb(255, 0, 0)) << name; // lossless: the first image itself
    }

    const QString gif = dir.filePath(u"m.gif"_s);
    const RunResult animated = run({document, u"-o"_s, gif, u"--frames"_s, u"9"_s, u"--fps"_s, u"15"_s});
    ASSERT_EQ(animated.exitCode, 0) << animated.err.toStdString();
    const auto probe = test::probeVideo(QFile::encodeName(gif).toStdString());
    EXPECT_EQ(probe.at("codec_name"), "gif");
    EXPECT_EQ(probe.at("nb_read_frames"), "9");
    EXPECT_EQ(test::loopingGifPackets(QFile::encodeName(gif).toStdString(), 25), 25); // loops for ever

    ASSERT_TRUE(QDir().mkpath(dir.filePath(u"frames"_s)));
    const RunResult numbered = run({document, u"-o"_s, dir.filePath(u"frames/m_%03d.tif"_s), u"--frames"_s, u"4"_s});
    ASSERT_EQ(numbered.exitCode, 0) << numbered.err.toStdString();
    EXPECT_EQ(QDir(dir.filePath(u"frames"_s)).entryList(QDir::Files | QDir::Hidden),
              (QStringList{u"m_001.tif"_s, u"m_002.tif"_s, u"m_003.tif"_s, u"m_004.tif"_s}));
    EXPECT_EQ(QImage(dir.filePath(u"frames/m_004.tif"_s)).pixel(10, 10), qRgb(0, 0, 255));
}

TEST_F(PlyraRenderTest, TheDocumentsMovieIsRenderedUnlessOptionsSayOtherwise)
{
    MovieSettings movie;
    movie.numberOfFrames = 5;
    movie.framesPerSecond = 10.0f;
    movie.timing = {Easing::EaseIn, 0.2, 0.0, true};
    const QString document = makeDocument(true, movie);
    const QString mp4 = dir.filePath(u"m.mp4"_s);
    ASSERT_EQ(run({document, u"-o"_s, mp4, u"--quiet"_s}).exitCode, 0);
    test::ProbedMovie probed = test::probeMovie(QFile::encodeName(mp4).toStdString());
    EXPECT_EQ(probed.codec, "h264");
    ASSERT_EQ(probed.frameSeconds.size(), 9u); // forth and back
    EXPECT_NEAR(probed.frameSeconds[0], 0.3, 1e-9); // held

    ASSERT_EQ(run({document, u"-o"_s, mp4, u"--frames"_s, u"3"_s, u"--hold"_s, u"0,0"_s, u"--ease"_s, u"linear"_s}).exitCode, 0);
    probed = test::probeMovie(QFile::encodeName(mp4).toStdString());
    ASSERT_EQ(probed.frameSeconds.size(), 5u);
    for (double seconds : probed.frameSeconds)
        EXPECT_NEAR(seconds, 0.1, 1e-9);
}

TEST_F(PlyraRenderTest, ACodecOutsideTheTableIsUsedOrRefusedBeforeAnyFrame)
{
    const QString document = makeDocument();
    const QString photo = dir.filePath(u"photo.mov"_s);
    const RunResult jpeg = run({document, u"-o"_s, photo, u"--frames"_s, u"3"_s, u"--codec"_s, u"jpeg"_s});
    ASSERT_EQ(jpeg.exitCode, 0) << jpeg.err.toStdString();
    EXPECT_EQ(test::probeVideo(QFile::encodeName(photo).toStdString()).at("codec_tag_string"), "jpeg");

    // Many frames: refused at once, not after computing them.
    const QString none = dir.filePath(u"none.mov"_s);
    const auto start = std::chrono::steady_clock::now();
    const RunResult refused = run({document, u"-o"_s, none, u"--frames"_s, u"100000"_s, u"--codec"_s, u"zzzz"_s});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(refused.exitCode, 1);
    for (const char* code : {"'zzzz'", "'mp4v'", "'avc1'", "'mjpb'", "'rle '", "'pxlt'"})
        EXPECT_TRUE(refused.err.contains(code)) << code << " in " << refused.err.toStdString();
    EXPECT_FALSE(refused.err.contains("frames could be compressed"));
    EXPECT_FALSE(QFile::exists(none));
}

TEST_F(PlyraRenderTest, WritesTheWarpFieldOfOneFrame)
{
    const QString field = dir.filePath(u"field.bin"_s);
    const RunResult result = run({makeDocument(), u"--time"_s, u"0.5"_s, u"--warp-field"_s, field, u"--interval"_s, u"7"_s});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    QFile file(field);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const qsizetype newline = bytes.indexOf('\n');
    ASSERT_GT(newline, 0);
    // 40 × 30 at interval 7: ceil(40/7)+1 = 7 by ceil(30/7)+1 = 6 nodes of four floats.
    EXPECT_TRUE(bytes.startsWith("plyra-warp-field nx=7 ny=6 d0=")) << bytes.left(newline).toStdString();
    EXPECT_TRUE(bytes.left(newline).contains(" d1="));
    ASSERT_EQ(bytes.size() - newline - 1, 7 * 6 * 16);
    // The bottom-right node (i = 6, j = 0) lies on the right edge: x = 40 in both images
    // for lines that do not move.
    float node[4];
    std::memcpy(node, bytes.constData() + newline + 1 + 6 * 16, 16);
    EXPECT_NEAR(node[0], 40.0f, 1e-3f);
    EXPECT_NEAR(node[1], 0.0f, 1e-3f);
}

// --new: the checks run before anything is written, and nothing is written on failure.
TEST_F(PlyraRenderTest, NewRefusesBadInputsAndOutputsWritingNothing)
{
    makeDocument();
    const QString image = dir.filePath(u"image0.png"_s);
    const QString garbage = dir.filePath(u"garbage.png"_s);
    QFile file(garbage);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture");
    file.close();
    const QString fresh = dir.filePath(u"new.plyra"_s);
    const std::vector<std::pair<QStringList, const char*>> cases{
        {{dir.filePath(u"missing.png"_s), image, u"-o"_s, fresh}, "cannot read the first image"},
        {{image, garbage, u"-o"_s, fresh}, "cannot read the last image"},
        {{image, image, u"-o"_s, dir.filePath(u"doc.plyra"_s)}, "it exists already"},
        {{image, image, u"-o"_s, image + u"/inside.plyra"_s}, "inside the image"},
    };
    for (const auto& [arguments, expected] : cases) {
        const RunResult result = run(QStringList{u"--new"_s} + arguments);
        EXPECT_EQ(result.exitCode, 1) << expected;
        EXPECT_TRUE(result.err.contains(expected)) << result.err.toStdString();
        EXPECT_FALSE(QFile::exists(fresh)) << expected;
    }
    // Plain colours hold no face.
    const RunResult faceless = run({u"--new"_s, image, dir.filePath(u"image1.png"_s), u"-o"_s, fresh, u"--face-lines"_s});
    EXPECT_EQ(faceless.exitCode, 1);
    EXPECT_TRUE(faceless.err.contains("no face found in the first image") || faceless.err.contains("not available in this build"))
        << faceless.err.toStdString();
    EXPECT_FALSE(QFile::exists(fresh));
}

// An interrupt (the signal watcher's stop request) ends --new before anything is written,
// with and without the face search.
TEST_F(PlyraRenderTest, NewStopsAtAnInterruptWritingNothing)
{
    const QString photos = QStringLiteral(PLYRA_TEST_DATA "/photos/");
    const QString fresh = dir.filePath(u"new.plyra"_s);
    for (const bool faceLines : {false, true}) {
        CliOptions options;
        options.mode = CliMode::NewDocument;
        options.firstImagePath = (photos + u"ast_face.png"_s).toStdString();
        options.lastImagePath = (photos + u"hopper_face.png"_s).toStdString();
        options.outputPath = fresh.toStdString();
        options.faceLines = faceLines;
        std::ostringstream out;
        std::ostringstream err;
        StopRequest::request();
        const int status = runCli(options, out, err);
        StopRequest::clear();
        EXPECT_EQ(status, kExitInterrupted) << faceLines;
        EXPECT_EQ(err.str(), "plyra-render: interrupted; nothing was written\n");
        EXPECT_FALSE(QFile::exists(fresh)) << faceLines;
    }
}

// Two portraits become a document with their face lines, which then renders as a movie.
TEST_F(PlyraRenderTest, NewWithFaceLinesMakesADocumentThatRenders)
{
    const QString document = dir.filePath(u"faces.plyra"_s);
    const QString photos = QStringLiteral(PLYRA_TEST_DATA "/photos/");
    const RunResult made = run({u"--new"_s, photos + u"ast_face.png"_s, photos + u"hopper_face.png"_s, u"-o"_s, document, u"--face-lines"_s});
    if (made.err.contains("not available in this build"))
        GTEST_SKIP() << "this build has no face networks";
    ASSERT_EQ(made.exitCode, 0) << made.err.toStdString();
    MorphDocument read;
    ASSERT_TRUE(read.readFromFile(document));
    EXPECT_EQ(read.frameSize(), QSizeF(300, 300));
    EXPECT_EQ(read.codecFormat(), u"mp4v"_s);
    ASSERT_EQ(read.morphLines().size(), 39u);
    // Eleven chains: the lines of a chain join end to start, its first line has no predecessor.
    const auto chainStarts = std::count_if(read.morphLines().begin(), read.morphLines().end(),
        [](const MorphLine::Ptr& line) { return !line->attachedLineAtStart(); });
    EXPECT_EQ(chainStarts, 11);

    const QString movie = dir.filePath(u"faces.mov"_s);
    const RunResult rendered = run({document, u"-o"_s, movie, u"--frames"_s, u"4"_s, u"--quiet"_s});
    ASSERT_EQ(rendered.exitCode, 0) << rendered.err.toStdString();
    EXPECT_EQ(test::probeVideo(QFile::encodeName(movie).toStdString()).at("nb_read_frames"), "4");
}

} // namespace
} // namespace plyra
