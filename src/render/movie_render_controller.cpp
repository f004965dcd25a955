// SPDX-License-Identifier: MIT
#include "render/movie_render_controller.h"

#include "engine/image_conversion.h"
#include "model/morph_document.h"
#include "platform/log.h"
#include "render/movie_codecs.h"

#include <filesystem>

namespace plyra {

MovieRenderController::MovieRenderController(MorphDocument& document)
    : RenderController(document)
{
    settings().setNumberOfFrames(20);
    settings().setFramesPerSecond(20.0f);
    settings().setSizeToView(true);
    settings().setTimeRange({0.0f, 1.0f});
}

MovieRenderController::~MovieRenderController()
{
    stop();
    m_writer.reset();
    cleanUpTempPaths();
}

std::string MovieRenderController::codec() const
{
    return m_codec ? *m_codec : document().codecFormat().toStdString();
}

int MovieRenderController::quality() const
{
    return m_quality ? *m_quality : document().codecQuality();
}

bool MovieRenderController::recalc()
{
    if (m_writer) {
        stop();
        m_writer.reset();
        cleanUpTempPaths();
    }
    if (!makeTemporaryMovie())
        return false;
    return RenderController::recalc();
}

bool MovieRenderController::makeTemporaryMovie()
{
    MovieStatus status;
    m_tempPath = makeTemporaryMoviePath("/tmp/", "Plyra_", &status);
    if (m_tempPath.empty()) {
        logLine(formatString("CreateMovieStorage error %d", status.code));
        return false;
    }
    std::unique_ptr<Movie> movie = Movie::createInStorage(m_tempPath, &status);
    if (!movie) {
        logLine(formatString("CreateMovieStorage error %d", status.code));
        cleanUpTempPaths();
        return false;
    }
    const float fps = settings().framesPerSecond();
    movie->setEditable(true);
    movie->setHasAudio(false);
    movie->setHasVideo(true);
    movie->setLinear(true);
    movie->setDuration({movieDurationValue(settings().numberOfFrames(), fps), kMovieTimeScale, 0});
    movie->setHasDuration(true);
    const FrameSize size = frameSize();
    movie->setNaturalSize({size.width, size.height});
    m_writer = std::make_unique<AsyncMovieWriter>(std::move(movie));
    m_framesAppended = 0;
    m_appendFailed = false;
    return true;
}

void MovieRenderController::consumeFinishedJobs()
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    // Strictly in frame order: a later frame that finished first waits for the earlier.
    // Frames waiting for the encoder hold memory, so only a few may wait at a time.
    while (!jobs().empty() && jobs().front()->isDone() && Clock::now() - start < m_appendBudget
        && m_writer && m_writer->numberOfImagesInQueue() < kMaxFramesWaiting) {
        appendFrame(jobs().front());
        jobs().pop_front();
    }
}

bool MovieRenderController::appendFrame(const MorphCalculationJob::Ptr& job)
{
    std::optional<Bitmap> bitmap = bitmapFromImage(job->outputImage());
    if (!bitmap || !m_writer) {
        m_appendFailed = true;
        return false;
    }
    const int width = bitmap->width();
    const int height = bitmap->height();
    // Rows of whole pixels are what the movie takes: hand the buffer over uncopied.
    RgbaImage frame = bitmap->bytesPerRow() == static_cast<std::size_t>(width) * 4
        ? RgbaImage::adoptPixels(bitmap->releasePixels(), width, height)
        : RgbaImage::fromPixels(bitmap->data(), width, height, bitmap->bytesPerRow());
    const MovieTime duration{frameDurationValue(settings().framesPerSecond()), kMovieTimeScale, 0};
    m_writer->asyncAddImage(std::move(frame), duration, AddImageAttributes{fourCharCode(codec()), quality()});
    ++m_framesAppended;
    return true;
}

bool MovieRenderController::saveRenderedMovie(const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (!m_writer)
        return fail(QStringLiteral("no movie has been rendered"));
    if (isRendering() || m_appendFailed)
        return fail(QStringLiteral("the movie is not complete"));
    const Movie* complete = movie();
    m_writer->lock();
    const std::size_t frames = complete->frameTimes().size();
    m_writer->unlock();
    if (frames != static_cast<std::size_t>(m_framesAppended))
        return fail(QStringLiteral("only %1 of %2 frames could be compressed").arg(frames).arg(m_framesAppended));
    const MovieStatus status = m_writer->writeToFile(path.toStdString(), true);
    if (!status.ok())
        return fail(QString::fromStdString(status.message));
    return true;
}

const Movie* MovieRenderController::movie()
{
    if (!m_writer)
        return nullptr;
    m_writer->waitForAsyncImageAddToFinish();
    return &m_writer->movie();
}

void MovieRenderController::cleanUpTempPaths()
{
    if (m_tempPath.empty())
        return;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(m_tempPath, ignored))
        std::filesystem::remove(m_tempPath, ignored);
    m_tempPath.clear();
}

} // namespace plyra
