// SPDX-License-Identifier: MIT
#include "engine/morpher.h"
#include "platform/movie_test_support.h"
#include "output_probe.h"
#include "render/frame_render_controller.h"
#include "render/movie_render_controller.h"
#include "render_test_support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>

#include <chrono>
#include <filesystem>
#include <thread>

namespace plyra {
namespace {

/// Lets a test put its own jobs in the list and consume them by hand.
class ManualMovieController : public MovieRenderController {
public:
    using MovieRenderController::consumeFinishedJobs;
    using MovieRenderController::jobs;
    using MovieRenderController::MovieRenderController;
};

void renderToEnd(RenderController& controller)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!controller.tick() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TEST(MovieRender, AppendsEveryFrameAndSavesASelfContainedMovie)
{
    test::TwoImageDocument doc;
    doc.addStillLine(0.1f, 0.1f, 0.9f, 0.9f);
    MovieRenderController controller(*doc.document);
    EXPECT_EQ(controller.settings().numberOfFrames(), 20u);
    EXPECT_FLOAT_EQ(controller.settings().framesPerSecond(), 20.0f);
    EXPECT_EQ(controller.codec(), "mp4v");
    EXPECT_EQ(controller.quality(), 768);

    ASSERT_TRUE(controller.recalc());
    const std::string temp = controller.tempPath();
    EXPECT_EQ(temp.rfind("/tmp/Plyra_", 0), 0u) << temp;
    EXPECT_TRUE(std::filesystem::exists(temp));
    ASSERT_TRUE(controller.movie());
    EXPECT_EQ(controller.movie()->attributes().duration->value, 600);
    EXPECT_EQ(controller.movie()->attributes().duration->scale, 600);

    const QString path = doc.dir.filePath(QStringLiteral("morph.mov"));
    QString error;
    EXPECT_FALSE(controller.saveRenderedMovie(path, &error)); // not complete yet
    EXPECT_FALSE(QFile::exists(path));
    renderToEnd(controller);
    EXPECT_EQ(controller.framesAppended(), 20);
    ASSERT_TRUE(controller.saveRenderedMovie(path, &error)) << error.toStdString();

    MovieStatus status;
    const std::unique_ptr<Movie> saved = Movie::open(path.toStdString(), &status);
    ASSERT_TRUE(saved) << status.message;
    EXPECT_EQ(saved->frameTimes().size(), 20u);
    EXPECT_EQ(saved->duration().valueIn(600), 600);

    // A new render makes a new temporary movie and removes the old one.
    ASSERT_TRUE(controller.recalc());
    EXPECT_NE(controller.tempPath(), temp);
    EXPECT_FALSE(std::filesystem::exists(temp));
    const std::string second = controller.tempPath();
    controller.cleanUpTempPaths();
    EXPECT_FALSE(std::filesystem::exists(second));
}

TEST(MovieRender, ALaterFrameFinishingFirstWaitsForTheEarlierOne)
{
    test::TwoImageDocument doc;
    doc.addStillLine(0.1f, 0.5f, 0.9f, 0.5f);
    ManualMovieController controller(*doc.document);
    controller.settings().setNumberOfFrames(0); // an empty render: the jobs come from the test
    ASSERT_TRUE(controller.recalc());

    const Morpher::Ptr morpher = Morpher::create(doc.document->ciimageInTrack(0), doc.document->ciimageInTrack(1),
        doc.document->morphLines());
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (float t : {0.0f, 0.5f, 1.0f}) {
        jobs.push_back(MorphCalculationJob::create(t, {64, 48}, 7.0f));
        jobs.back()->setTrack0Image(doc.document->ciimageInTrack(0));
        jobs.back()->setTrack1Image(doc.document->ciimageInTrack(1));
        controller.jobs().push_back(jobs.back());
    }
    morpher->processMorphCalculationJob(*jobs[0]);
    morpher->processMorphCalculationJob(*jobs[2]); // the third frame finishes before the second
    controller.consumeFinishedJobs();
    EXPECT_EQ(controller.framesAppended(), 1);
    EXPECT_EQ(controller.jobs().size(), 2u);
    controller.consumeFinishedJobs();
    EXPECT_EQ(controller.framesAppended(), 1);

    morpher->processMorphCalculationJob(*jobs[1]);
    controller.consumeFinishedJobs(); // both remaining frames in one tick, in order
    EXPECT_EQ(controller.framesAppended(), 3);
    EXPECT_TRUE(controller.jobs().empty());

    // The frames went in in order: red, the blend, blue.
    const auto first = controller.movie()->frameImageAtTime({0, 600, 0});
    const auto last = controller.movie()->frameImageAtTime({60, 600, 0});
    ASSERT_TRUE(first && last);
    EXPECT_GT(first->pixel(32, 24)[0], 200);
    EXPECT_LT(first->pixel(32, 24)[2], 60);
    EXPECT_GT(last->pixel(32, 24)[2], 200);
    EXPECT_LT(last->pixel(32, 24)[0], 60);
}

/// A render of frames from red to blue for an output path, which counts the frames it
/// computes.
struct FramesFor {
    class Counting : public MovieRenderController {
    public:
        using MovieRenderController::MovieRenderController;
        int computed = 0;

    protected:
        MorphCalculationJob::Ptr newMorphJob(std::uint32_t frame) override
        {
            ++computed;
            return MovieRenderController::newMorphJob(frame);
        }
    };

    test::TwoImageDocument doc;
    Counting controller{*doc.document};

    FramesFor(const char* name, std::uint32_t frames, const MovieTiming& timing = {})
    {
        doc.addStillLine(0.1f, 0.1f, 0.9f, 0.9f);
        controller.settings().setNumberOfFrames(frames);
        controller.settings().setFramesPerSecond(10.0f);
        controller.setTiming(timing);
        EXPECT_TRUE(controller.setOutputPath(path(name)));
    }
    QString path(const char* name) const { return doc.dir.filePath(QLatin1String(name)); }
    std::string file(const char* name) const { return QFile::encodeName(path(name)).toStdString(); }
    QStringList entries() const { return QDir(doc.dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    bool renderAndSave(const char* name, QString* error)
    {
        if (!controller.recalc()) {
            *error = controller.errorString();
            return false;
        }
        renderToEnd(controller);
        return controller.saveRenderedMovie(path(name), error);
    }
};

// Four frames at 10 per second, held 0.5 s on the first image and 1 s on the last, then
// back: 0.6, 0.1, 0.1, 1.1, 0.1, 0.1, 0.1 seconds.
const MovieTiming kHeldPingPong{Easing::Linear, 0.5, 1.0, true};
const std::vector<double> kHeldPingPongSeconds{0.6, 0.1, 0.1, 1.1, 0.1, 0.1, 0.1};

TEST(MovieRenderOutput, EveryContainerHoldsAndRunsBackWithoutComputingAgain)
{
    const struct { const char* name; const char* codec; const char* pixels; const char* container; double tolerance; } cases[] = {
        {"morph.mov", "h264", "yuv420p", "mov,mp4,m4a,3gp,3g2,mj2", 1e-9},
        {"morph.mp4", "h264", "yuv420p", "mov,mp4,m4a,3gp,3g2,mj2", 1e-9},
        {"morph.webm", "vp9", "yuv420p", "matroska,webm", 0.0011},
        {"morph.gif", "gif", "bgra", "gif", 0.011},
    };
    for (const auto& c : cases) {
        FramesFor render(c.name, 4, kHeldPingPong);
        render.controller.setCodec("avc1");
        QString error;
        ASSERT_TRUE(render.renderAndSave(c.name, &error)) << c.name << ": " << error.toStdString();
        EXPECT_EQ(render.controller.computed, 4) << c.name;
        const test::ProbedMovie probed = test::probeMovie(render.file(c.name));
        EXPECT_EQ(probed.container, c.container) << c.name;
        EXPECT_EQ(probed.codec, c.codec) << c.name;
        EXPECT_EQ(probed.pixelFormat, c.pixels) << c.name;
        ASSERT_EQ(probed.frameSeconds.size(), kHeldPingPongSeconds.size()) << c.name;
        for (std::size_t k = 0; k < kHeldPingPongSeconds.size(); ++k)
            EXPECT_NEAR(probed.frameSeconds[k], kHeldPingPongSeconds[k], c.tolerance) << c.name << " frame " << k;
    }
    // Browsers start an MP4 before it has arrived: its index comes first.
    FramesFor mp4("fast.mp4", 4);
    QString error;
    ASSERT_TRUE(mp4.renderAndSave("fast.mp4", &error)) << error.toStdString();
    const std::vector<std::string> boxes = test::topLevelBoxes(mp4.file("fast.mp4"));
    const auto moov = std::find(boxes.begin(), boxes.end(), "moov");
    ASSERT_NE(moov, boxes.end());
    EXPECT_LT(moov, std::find(boxes.begin(), boxes.end(), "mdat"));
}

TEST(MovieRenderOutput, AnAnimatedWebpLoopsWithEachFramesDuration)
{
    FramesFor render("morph.webp", 4, kHeldPingPong);
    QString error;
    ASSERT_TRUE(render.renderAndSave("morph.webp", &error)) << error.toStdString();
    const test::ProbedWebp probed = test::probeWebp(render.file("morph.webp"));
    EXPECT_EQ(probed.loopCount, 0);
    EXPECT_EQ(probed.frameMilliseconds, (std::vector<int>{600, 100, 100, 1100, 100, 100, 100}));
}

TEST(MovieRenderOutput, TheWayBackShowsTheVeryFramesOfTheWayForth)
{
    FramesFor render("morph.mov", 5, {Easing::Linear, 0.0, 0.0, true});
    render.controller.setCodec("rle "); // lossless: the frames decode to what was rendered
    QString error;
    ASSERT_TRUE(render.renderAndSave("morph.mov", &error)) << error.toStdString();
    const std::unique_ptr<Movie> movie = Movie::open(render.file("morph.mov"));
    ASSERT_TRUE(movie);
    const std::vector<std::int64_t> times = movie->frameTimes();
    ASSERT_EQ(times.size(), 9u);
    for (std::size_t back = 5; back < 9; ++back) {
        const auto shownAgain = movie->frameImageAtTime({times[back], 600, 0});
        const auto forth = movie->frameImageAtTime({times[8 - back], 600, 0});
        ASSERT_TRUE(shownAgain && forth);
        EXPECT_EQ(shownAgain->bytes(), forth->bytes()) << back;
    }
}

TEST(MovieRenderOutput, AnImageSequenceAppearsWholeWithHeldFramesCopied)
{
    // Held 0.2 s first and 0.1 s last at 10 per second, then back: 10 files of 4 frames.
    const MovieTiming timing{Easing::Linear, 0.2, 0.1, true};
    const std::vector<int> sources{0, 0, 0, 1, 2, 3, 3, 2, 1, 0};
    for (const char* pattern : {"seq_%03d.png", "seq_%03d.tif"}) {
        FramesFor render(pattern, 4, timing);
        // The fifth file's name is taken by a folder: nothing at all is written.
        const QString fifth = render.path(pattern).replace(QStringLiteral("%03d"), QStringLiteral("005"));
        ASSERT_TRUE(QDir().mkpath(fifth));
        QString error;
        EXPECT_FALSE(render.renderAndSave(pattern, &error));
        EXPECT_TRUE(error.contains(QFileInfo(fifth).fileName())) << error.toStdString();
        EXPECT_TRUE(render.entries().filter(QRegularExpression(QStringLiteral("^seq_"))).isEmpty());
        ASSERT_TRUE(QDir(fifth).removeRecursively());

        render.controller.computed = 0;
        ASSERT_TRUE(render.renderAndSave(pattern, &error)) << error.toStdString();
        EXPECT_EQ(render.controller.computed, 4);
        const QStringList files = render.entries().filter(QRegularExpression(QStringLiteral("^seq_")));
        ASSERT_EQ(files.size(), 10) << files.join(u' ').toStdString();
        // Each file is its frame exactly as rendered alone at that time and size.
        FrameRenderController still(*render.doc.document);
        still.settings().setFrameSize({64, 48});
        for (std::size_t file = 0; file < sources.size(); ++file) {
            still.setTime(static_cast<float>(sources[file]) / 3.0f);
            ASSERT_TRUE(still.recalc());
            renderToEnd(still);
            const QString name = QString(pattern).replace(QStringLiteral("%03d"), QStringLiteral("%1")).arg(file + 1, 3, 10, QLatin1Char('0'));
            const QImage saved(render.path(name.toLatin1().constData()));
            EXPECT_EQ(saved.convertToFormat(QImage::Format_RGBA8888_Premultiplied), imageFromBitmap(*still.bitmap())) << name.toStdString();
        }
    }
}

TEST(MovieRenderOutput, ACodecOutsideTheTableIsUsedOrRefusedBeforeAnyFrame)
{
    FramesFor jpeg("photo.mov", 6);
    jpeg.controller.setCodec("jpeg");
    QString error;
    ASSERT_TRUE(jpeg.renderAndSave("photo.mov", &error)) << error.toStdString();
    const auto probe = test::probeVideo(jpeg.file("photo.mov"));
    EXPECT_EQ(probe.at("codec_tag_string"), "jpeg");
    EXPECT_EQ(probe.at("nb_read_frames"), "6");

    FramesFor nothing("photo.mov", 6);
    nothing.controller.setCodec("zzzz");
    EXPECT_FALSE(nothing.controller.recalc());
    EXPECT_TRUE(nothing.controller.morphJobs().empty());
    EXPECT_FALSE(nothing.controller.morpher()); // no frame was computed, none will be
    EXPECT_TRUE(nothing.controller.tempPath().empty());
    const QString message = nothing.controller.errorString();
    for (const char* code : {"'zzzz'", "'mp4v'", "'avc1'", "'mjpb'", "'rle '", "'pxlt'"})
        EXPECT_TRUE(message.contains(QLatin1String(code))) << code << " in " << message.toStdString();
}

} // namespace
} // namespace plyra
