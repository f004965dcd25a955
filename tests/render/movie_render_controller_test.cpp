// SPDX-License-Identifier: MIT
#include "engine/morpher.h"
#include "platform/movie_test_support.h"
#include "render/movie_render_controller.h"
#include "render_test_support.h"

#include <QDir>
#include <QFile>
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

/// A render of six frames from red to blue, saved as `kind` asks.
struct SixFrames {
    test::TwoImageDocument doc;
    MovieRenderController controller{*doc.document};

    explicit SixFrames(MovieOutputKind kind)
    {
        doc.addStillLine(0.1f, 0.1f, 0.9f, 0.9f);
        controller.settings().setNumberOfFrames(6);
        controller.settings().setFramesPerSecond(12.0f);
        controller.setOutputKind(kind);
    }
    QString path(const char* name) const { return doc.dir.filePath(QLatin1String(name)); }
    QStringList entries() const { return QDir(doc.dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
};

TEST(MovieRenderOutput, AnAnimatedGifHasEveryFrameAndLoops)
{
    SixFrames render(MovieOutputKind::AnimatedGif);
    EXPECT_EQ(render.controller.codec(), "rle "); // frames wait without loss
    ASSERT_TRUE(render.controller.recalc()) << render.controller.errorString().toStdString();
    renderToEnd(render.controller);
    QString error;
    ASSERT_TRUE(render.controller.saveRenderedMovie(render.path("morph.gif"), &error)) << error.toStdString();
    const std::string gif = QFile::encodeName(render.path("morph.gif")).toStdString();
    const auto probe = test::probeVideo(gif);
    EXPECT_EQ(probe.at("codec_name"), "gif");
    EXPECT_EQ(probe.at("nb_read_frames"), "6");
    EXPECT_NEAR(std::stod(probe.at("duration")), 0.5, 0.011);
    EXPECT_EQ(test::loopingGifPackets(gif, 20), 20);
}

TEST(MovieRenderOutput, AnImageSequenceHasOneLosslessFileAFrameOrNone)
{
    SixFrames render(MovieOutputKind::ImageSequence);
    ASSERT_TRUE(render.controller.recalc());
    renderToEnd(render.controller);
    // The fifth frame's name is taken by a folder: nothing at all is written.
    ASSERT_TRUE(QDir().mkpath(render.path("blocked_005.png")));
    const QStringList before = render.entries();
    QString error;
    EXPECT_FALSE(render.controller.saveRenderedMovie(render.path("blocked_%03d.png"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("blocked_005.png"))) << error.toStdString();
    EXPECT_EQ(render.entries(), before);

    ASSERT_TRUE(render.controller.saveRenderedMovie(render.path("seq_%03d.png"), &error)) << error.toStdString();
    for (int n = 1; n <= 6; ++n)
        EXPECT_TRUE(QFile::exists(render.path("seq_00%1.png").arg(n))) << n;
    EXPECT_FALSE(QFile::exists(render.path("seq_007.png")));
    // The ends are the pictures, byte for byte: red and blue.
    EXPECT_EQ(QImage(render.path("seq_001.png")).pixel(20, 20), qRgb(255, 0, 0));
    EXPECT_EQ(QImage(render.path("seq_006.png")).pixel(20, 20), qRgb(0, 0, 255));
    EXPECT_EQ(render.entries().filter(QRegularExpression(QStringLiteral("^\\."))), QStringList()); // nothing beside
}

TEST(MovieRenderOutput, ACodecOutsideTheTableIsUsedOrRefusedBeforeAnyFrame)
{
    SixFrames jpeg(MovieOutputKind::QuickTime);
    jpeg.controller.setCodec("jpeg");
    ASSERT_TRUE(jpeg.controller.recalc()) << jpeg.controller.errorString().toStdString();
    renderToEnd(jpeg.controller);
    QString error;
    ASSERT_TRUE(jpeg.controller.saveRenderedMovie(jpeg.path("photo.mov"), &error)) << error.toStdString();
    const auto probe = test::probeVideo(QFile::encodeName(jpeg.path("photo.mov")).toStdString());
    EXPECT_EQ(probe.at("codec_tag_string"), "jpeg");
    EXPECT_EQ(probe.at("nb_read_frames"), "6");

    SixFrames nothing(MovieOutputKind::QuickTime);
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
