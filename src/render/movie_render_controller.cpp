// SPDX-License-Identifier: MIT
#include "render/movie_render_controller.h"

#include "engine/image_conversion.h"
#include "model/morph_document.h"
#include "platform/log.h"
#include "platform/process_identity.h"
#include "platform/temporary_files.h"
#include "render/movie_codecs.h"
#include "render/movie_frame_export.h"
#include "render/output_path_check.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <filesystem>
#include <malloc.h>
#include <thread>

namespace plyra {
namespace {

// Jobs ahead of the frames appended: enough to keep every worker busy, few enough that
// their warp fields stay within kJobsAheadBytes even for the largest frames.
constexpr unsigned kJobsAheadPerWorker = 4;
constexpr std::size_t kJobsAheadBytes = std::size_t{256} << 20;
// Every frame allocates and frees a few large buffers on several threads; the C
// library keeps the pages those leave between live blocks, so that a long movie's
// memory would creep up with its length unless they are handed back now and then.
constexpr int kFramesBetweenTrims = 64;

// A GIF or an image sequence is made from the frames after the render: they wait in the
// temporary movie without loss, alpha included.
constexpr const char* kLosslessCodec = "rle ";

// A code that nothing here can compress: say which code, and which five always work.
QString unavailableCodecMessage(const std::string& code)
{
    QStringList codes;
    for (const CodecChoice& choice : kCodecChoices)
        codes << QStringLiteral("'%1'").arg(QLatin1String(choice.code));
    return QCoreApplication::translate("MovieRenderController", "no encoder here can write the codec '%1' into a QuickTime movie; the codecs that always "
                          "work are %2").arg(QString::fromStdString(code), codes.join(QStringLiteral(", ")));
}

} // namespace

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
    closeMovie();
}

std::string MovieRenderController::codec() const
{
    if (m_outputKind != MovieOutputKind::QuickTime)
        return kLosslessCodec;
    return m_codec ? *m_codec : document().codecFormat().toStdString();
}

int MovieRenderController::quality() const
{
    if (m_outputKind != MovieOutputKind::QuickTime)
        return kCodecMaxQuality;
    return m_quality ? *m_quality : document().codecQuality();
}

bool MovieRenderController::recalc()
{
    if (m_writer)
        closeMovie();
    m_error.clear();
    if (!checkCompression() || !makeTemporaryMovie())
        return false;
    if (RenderController::recalc())
        return true;
    m_error = QCoreApplication::translate("MovieRenderController", "the document has no image to render");
    return false;
}

bool MovieRenderController::checkCompression()
{
    const FrameSize size = frameSize();
    if (!size.isSet())
        return true;
    const AddImageAttributes attributes{fourCharCode(codec()), quality()};
    const auto width = static_cast<int>(size.width);
    const auto height = static_cast<int>(size.height);
    // Setting up an encoder takes milliseconds; a render window recalculates often.
    const std::string key = codec() + "/" + std::to_string(quality()) + "/" + std::to_string(width) + "x" + std::to_string(height);
    if (key == m_checkedCompression)
        return true;
    const MovieStatus status = checkImageCompression(attributes, width, height);
    if (!status.ok()) {
        m_error = status.code == kMovieCodecUnavailable ? unavailableCodecMessage(codec())
                                                        : QString::fromStdString(status.message);
        return false;
    }
    m_checkedCompression = key;
    return true;
}

std::size_t MovieRenderController::maxJobsAhead()
{
    const unsigned workers = std::max(std::thread::hardware_concurrency(), 2u);
    const FrameSize size = frameSize();
    const std::size_t fieldBytes = std::max<std::size_t>(
        warpGridSize(size.width, size.height, interpolationFactor()).nodeCount() * 4 * sizeof(float), 1);
    return std::clamp<std::size_t>(kJobsAheadBytes / fieldBytes, 2, std::size_t{workers} * kJobsAheadPerWorker);
}

bool MovieRenderController::makeTemporaryMovie()
{
    MovieStatus status;
    m_tempPath = makeTemporaryMoviePath(kTemporaryMovieFolder,
        kTemporaryMoviePrefix + ProcessIdentity::current().token() + "_", &status);
    if (!m_tempPath.empty())
        TemporaryFiles::add(m_tempPath);
    std::unique_ptr<Movie> movie = m_tempPath.empty() ? nullptr : Movie::createInStorage(m_tempPath, &status);
    if (!movie) {
        logLine(formatString("CreateMovieStorage error %d", status.code));
        m_error = QCoreApplication::translate("MovieRenderController", "cannot make the temporary movie: %1").arg(QString::fromStdString(status.message));
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
    // Read here, on the owner's thread: the document is not for the conversion thread.
    // A change of codec, quality or rate starts a new render and with it a new movie.
    const MovieTime duration{frameDurationValue(fps), kMovieTimeScale, 0};
    const AddImageAttributes attributes{fourCharCode(codec()), quality()};
    m_conversions = std::make_unique<FrameConversionQueue>(
        [this, duration, attributes](std::optional<Bitmap> bitmap) { appendFrame(std::move(bitmap), duration, attributes); });
    return true;
}

void MovieRenderController::consumeFinishedJobs()
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    if (stopOnWriterFailure())
        return;
    // Strictly in frame order: a later frame that finished first waits for the earlier.
    // Frames waiting to be rendered or compressed hold memory, so only a few may wait.
    while (!jobs().empty() && jobs().front()->isDone() && Clock::now() - start < m_appendBudget
        && m_conversions && framesWaiting() < kMaxFramesWaiting) {
        m_conversions->push(jobs().front()->outputImage());
        ++m_framesAppended;
        if (m_framesAppended % kFramesBetweenTrims == 0)
            ::malloc_trim(0);
        jobs().pop_front();
        if (stopOnWriterFailure())
            return;
    }
}

unsigned MovieRenderController::framesWaiting() const
{
    return m_conversions->pending() + m_writer->numberOfImagesInQueue();
}

bool MovieRenderController::stopOnWriterFailure()
{
    const std::optional<MovieStatus> failure = m_writer ? m_writer->failure() : std::nullopt;
    if (!failure)
        return false;
    // The movie cannot be completed: computing the remaining frames would only waste time.
    m_appendFailed = true;
    m_error = QString::fromStdString(failure->message);
    stop();
    return true;
}

void MovieRenderController::appendFrame(std::optional<Bitmap> bitmap, const MovieTime& duration,
    const AddImageAttributes& attributes)
{
    if (!bitmap) {
        m_appendFailed = true;
        return;
    }
    const int width = bitmap->width();
    const int height = bitmap->height();
    // Rows of whole pixels are what the movie takes: hand the buffer over uncopied.
    RgbaImage frame = bitmap->bytesPerRow() == static_cast<std::size_t>(width) * 4
        ? RgbaImage::adoptPixels(bitmap->releasePixels(), width, height)
        : RgbaImage::fromPixels(bitmap->data(), width, height, bitmap->bytesPerRow());
    m_writer->asyncAddImage(std::move(frame), duration, attributes);
}

bool MovieRenderController::saveRenderedMovie(const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    QString target;
    if (!checkOutputPath(document(), path, &target, error))
        return false;
    if (!m_writer)
        return fail(QCoreApplication::translate("MovieRenderController", "no movie has been rendered"));
    const Movie* complete = movie();
    stopOnWriterFailure();
    if (isRendering() || m_appendFailed)
        return fail(m_error.isEmpty() ? QCoreApplication::translate("MovieRenderController", "the movie is not complete") : m_error);
    m_writer->lock();
    const MovieTrack* track = complete->lastVideoTrack();
    const std::size_t frames = track && track->media() ? track->media()->sampleCount() : 0;
    // Every frame is in: the encoder and what it holds are no longer needed.
    if (frames == static_cast<std::size_t>(m_framesAppended))
        m_writer->movie().finishCompression();
    m_writer->unlock();
    if (frames != static_cast<std::size_t>(m_framesAppended))
        return fail(QCoreApplication::translate("MovieRenderController", "only %1 of %2 frames could be compressed").arg(frames).arg(m_framesAppended));
    const std::optional<MovieOutputKind> kind = movieOutputKindForPath(path, error);
    return kind && writeMovieAs(*kind, path, target, error);
}

bool MovieRenderController::writeMovieAs(MovieOutputKind kind, const QString& path, const QString& target,
                                         QString* error)
{
    if (kind == MovieOutputKind::QuickTime) {
        // The file's index takes memory in proportion to the frames; hand back first what
        // the render no longer holds, so that saving a long movie does not raise its peak.
        ::malloc_trim(0);
        const MovieStatus status = m_writer->writeToFile(QFile::encodeName(target).toStdString(), true);
        if (!status.ok() && error)
            *error = QString::fromStdString(status.message);
        return status.ok();
    }
    m_writer->lock();
    bool written = false;
    if (kind == MovieOutputKind::AnimatedGif)
        written = MovieFrameExport::writeAnimatedGif(m_writer->movie(), target, settings().framesPerSecond(), error);
    else if (const std::optional<ImageSequencePattern> pattern = ImageSequencePattern::parse(path, error))
        written = MovieFrameExport::writeImageSequence(m_writer->movie(), *pattern, document(), error);
    m_writer->unlock();
    return written;
}

const Movie* MovieRenderController::movie()
{
    if (!m_writer)
        return nullptr;
    m_conversions->waitUntilIdle();
    m_writer->waitForAsyncImageAddToFinish();
    return &m_writer->movie();
}

void MovieRenderController::closeMovie()
{
    stop();
    m_conversions.reset();
    m_writer.reset();
    cleanUpTempPaths();
}

void MovieRenderController::cleanUpTempPaths()
{
    if (m_tempPath.empty())
        return;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(m_tempPath, ignored))
        std::filesystem::remove(m_tempPath, ignored);
    TemporaryFiles::forget(m_tempPath);
    m_tempPath.clear();
}

} // namespace plyra
