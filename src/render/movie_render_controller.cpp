// SPDX-License-Identifier: MIT
#include "render/movie_render_controller.h"

#include "engine/image_conversion.h"
#include "model/morph_document.h"
#include "platform/log.h"
#include "render/movie_codecs.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

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
    m_movie.reset();
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
    if (m_movie) {
        m_movie.reset();
        cleanUpTempPaths();
    }
    if (!makeTemporaryMovie())
        return false;
    return RenderController::recalc();
}

bool MovieRenderController::makeTemporaryMovie()
{
    char name[] = "/tmp/Plyra_XXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0) {
        logLine(formatString("CreateMovieStorage error %d", errno));
        return false;
    }
    close(fd);
    m_tempPath = name;
    MovieStatus status;
    m_movie = Movie::createInStorage(m_tempPath, &status);
    if (!m_movie) {
        logLine(formatString("CreateMovieStorage error %d", status.code));
        cleanUpTempPaths();
        return false;
    }
    const float fps = settings().framesPerSecond();
    m_movie->setEditable(true);
    m_movie->setHasAudio(false);
    m_movie->setHasVideo(true);
    m_movie->setLinear(true);
    m_movie->setDuration({movieDurationValue(settings().numberOfFrames(), fps), kMovieRenderTimeScale, 0});
    m_movie->setHasDuration(true);
    const FrameSize size = frameSize();
    m_movie->setNaturalSize({size.width, size.height});
    m_framesAppended = 0;
    m_appendFailed = false;
    return true;
}

void MovieRenderController::consumeFinishedJobs()
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    // Strictly in frame order: a later frame that finished first waits for the earlier.
    while (!jobs().empty() && jobs().front()->isDone() && Clock::now() - start < m_appendBudget) {
        appendFrame(jobs().front());
        jobs().pop_front();
    }
}

bool MovieRenderController::appendFrame(const MorphCalculationJob::Ptr& job)
{
    const std::optional<Bitmap> bitmap = bitmapFromImage(job->outputImage());
    if (!bitmap || !m_movie) {
        m_appendFailed = true;
        return false;
    }
    const RgbaImage frame = RgbaImage::fromPixels(bitmap->data(), bitmap->width(), bitmap->height(), bitmap->bytesPerRow());
    const MovieTime duration{frameDurationValue(settings().framesPerSecond()), kMovieRenderTimeScale, 0};
    const MovieStatus status = m_movie->addImage(frame, duration, AddImageAttributes{fourCharCode(codec()), quality()});
    if (!status.ok()) {
        logLine(formatString("Could not add frame %d to the movie: %s", m_framesAppended + 1, status.message.c_str()));
        m_appendFailed = true;
        return false;
    }
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
    if (!m_movie)
        return fail(QStringLiteral("no movie has been rendered"));
    if (isRendering() || m_appendFailed)
        return fail(QStringLiteral("the movie is not complete"));
    const MovieStatus status = m_movie->writeToFile(path.toStdString(), true);
    if (!status.ok())
        return fail(QString::fromStdString(status.message));
    return true;
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
