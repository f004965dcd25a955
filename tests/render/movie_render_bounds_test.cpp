// SPDX-License-Identifier: MIT
// A movie's memory does not depend on its length, and what makes a movie fail is found
// before its first frame or at the first failed write.
#include "platform/temporary_files.h"
#include "render/movie_render_controller.h"
#include "render_test_support.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <thread>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

/// Lets the test ask how many jobs the movie allows ahead of the frames appended.
class ProbedMovieController : public MovieRenderController {
public:
    using MovieRenderController::maxJobsAhead;
    using MovieRenderController::MovieRenderController;
};

TEST(MovieRenderBounds, OnlyAFewJobsAreOutAheadOfTheFramesAppended)
{
    test::TwoImageDocument doc(Qt::red, Qt::blue, 32, 24);
    doc.addStillLine(0.1f, 0.1f, 0.9f, 0.9f);
    ProbedMovieController controller(*doc.document);
    controller.settings().setNumberOfFrames(300);
    controller.setCodec(std::string("mjpb"));
    controller.setAppendBudget(std::chrono::milliseconds(1000));
    const std::size_t ahead = controller.maxJobsAhead();
    EXPECT_GE(ahead, 2u);
    EXPECT_LE(ahead, std::size_t{4} * std::max(std::thread::hardware_concurrency(), 2u));

    ASSERT_TRUE(controller.recalc());
    EXPECT_EQ(controller.morphJobs().size(), ahead);
    EXPECT_EQ(controller.framesNotQueued(), 300u - ahead);
    std::size_t most = 0;
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(60);
    while (!controller.tick() && Clock::now() < deadline) {
        most = std::max(most, controller.morphJobs().size());
        // Frames consumed plus frames out plus frames to come is every frame.
        EXPECT_EQ(controller.framesAppended() + controller.morphJobs().size() + controller.framesNotQueued(), 300u);
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    EXPECT_LE(most, ahead);
    EXPECT_EQ(controller.framesAppended(), 300);
    EXPECT_FLOAT_EQ(controller.progress(), 1.0f);
    const QString path = doc.dir.filePath(QStringLiteral("long.mov"));
    QString error;
    ASSERT_TRUE(controller.saveRenderedMovie(path, &error)) << error.toStdString();
    EXPECT_EQ(Movie::open(path.toStdString())->frameTimes().size(), 300u);

    // Large frames take large warp fields: fewer of them may wait.
    controller.settings().setFrameSize({16384, 16384});
    controller.setInterpolationFactor(2.0f);
    EXPECT_EQ(controller.maxJobsAhead(), 2u);
}

TEST(MovieRenderBounds, AFrameSizeTheCodecCannotCompressIsRefusedBeforeAnyFrame)
{
    test::TwoImageDocument doc;
    MovieRenderController controller(*doc.document);
    controller.settings().setFrameSize({16384, 16384});
    controller.setCodec(std::string("avc1"));
    const Clock::time_point start = Clock::now();
    EXPECT_FALSE(controller.recalc());
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(controller.errorString().contains(QStringLiteral("\"avc1\" cannot compress frames of 16384 x 16384")))
        << controller.errorString().toStdString();
    EXPECT_TRUE(controller.morphJobs().empty());
    EXPECT_FALSE(controller.morpher());
    EXPECT_TRUE(controller.tempPath().empty());

    controller.settings().setFrameSize({64, 48});
    EXPECT_TRUE(controller.recalc());
    EXPECT_TRUE(controller.errorString().isEmpty());
}

TEST(MovieRenderBounds, TheFirstFailedWriteEndsTheRenderWithItsReason)
{
    test::TwoImageDocument doc(Qt::red, Qt::blue, 64, 48);
    MovieRenderController controller(*doc.document);
    controller.settings().setNumberOfFrames(2000);
    controller.setCodec(std::string("rle "));
    controller.setAppendBudget(std::chrono::milliseconds(1000));
    // A file-size limit stands in for a full disk: writes beyond it fail as a full disk's do.
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 64 * 1024;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    ASSERT_TRUE(controller.recalc());
    const std::string temp = controller.tempPath();
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(60);
    while (!controller.tick() && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);

    // The render stopped at the failure: beyond the frames stored, only those that were
    // already waiting to be rendered or compressed (at most four) and the batch the
    // encoder had taken when the write failed (at most four) were handed over.
    ASSERT_TRUE(controller.movie() && controller.movie()->lastVideoTrack());
    const auto stored = static_cast<int>(controller.movie()->lastVideoTrack()->media()->sampleCount());
    EXPECT_LT(controller.framesAppended(), 2000);
    EXPECT_LE(controller.framesAppended(), stored + 8);
    EXPECT_FALSE(controller.isRendering());
    EXPECT_TRUE(controller.errorString().contains(QString::fromStdString(temp))) << controller.errorString().toStdString();
    EXPECT_TRUE(controller.errorString().contains(QStringLiteral("File too large")));
    const QString path = doc.dir.filePath(QStringLiteral("full.mov"));
    QString error;
    EXPECT_FALSE(controller.saveRenderedMovie(path, &error));
    EXPECT_EQ(error, controller.errorString());
    EXPECT_FALSE(QFile::exists(path));
    controller.cleanUpTempPaths();
    EXPECT_FALSE(std::filesystem::exists(temp));
    EXPECT_TRUE(TemporaryFiles::paths().empty());
}

} // namespace
} // namespace plyra
