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

std::string MovieRenderController::askedCodec() const
{
    return m_codec ? *m_codec : document().codecFormat().toStdString();
}

int MovieRenderController::askedQuality() const
{
    return m_quality ? *m_quality : document().codecQuality();
}

std::string MovieRenderController::codec() const
{
    return movieCodecForOutput(m_outputKind, askedCodec());
}

int MovieRenderController::quality() const
{
    const bool lossless = m_outputKind == MovieOutputKind::AnimatedGif || m_outputKind == MovieOutputKind::AnimatedWebP;
    return lossless ? kCodecMaxQuality : askedQuality();
}

bool MovieRenderController::setOutputPath(const QString& path, QString* error)
{
    const std::optional<MovieOutputKind> kind = movieOutputKindForPath(path, error);
    if (!kind)
        return false;
    m_outputKind = *kind;
    m_pattern = *kind == MovieOutputKind::ImageSequence ? ImageSequencePattern::parse(path) : std::nullopt;
    m_sequencePath = m_pattern ? path : QString();
    return true;
}

bool MovieRenderController::canSaveAs(MovieOutputKind kind) const
{
    if (kind == MovieOutputKind::ImageSequence || m_outputKind == MovieOutputKind::ImageSequence)
        return false;
    return codec() == movieCodecForOutput(kind, askedCodec()) && quality() == (kind == MovieOutputKind::AnimatedGif
        || kind == MovieOutputKind::AnimatedWebP ? kCodecMaxQuality : askedQuality());
}

bool MovieRenderController::recalc()
{
    if (m_writer || m_sequence)
        closeMovie();
    m_error.clear();
    m_schedule = MovieSchedule(settings().numberOfFrames(), settings().framesPerSecond(), timing());
    m_framesShownAgain = 0;
    m_framesAppended = 0;
    m_appendFailed = false;
    const bool sequence = m_outputKind == MovieOutputKind::ImageSequence;
    if (sequence ? !makeSequenceWriter() : !checkCompression() || !makeTemporaryMovie())
        return false;
    if (RenderController::recalc())
        return true;
    m_error = QCoreApplication::translate("MovieRenderController", "the document has no image to render");
    return false;
}

bool MovieRenderController::makeSequenceWriter()
{
    if (!m_pattern) {
        m_error = QCoreApplication::translate("MovieRenderController", "the file names of the image sequence are not known");
        return false;
    }
    const unsigned threads = std::max(std::thread::hardware_concurrency(), 2u);
    m_sequence = std::make_unique<ImageSequenceWriter>(m_pattern->format(), threads);
    return true;
}

bool MovieRenderController::checkCompression()
{
    const FrameSize size = frameSize();
    if (!size.isSet())
        return true;
    noteCodecForOutput(m_outputKind, askedCodec());
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
    if (m_schedule.movieFrameCount() > m_schedule.computedFrames()) {
        m_spool = std::make_unique<FrameSpool>();
        if (!m_spool->error().empty()) {
            m_error = QString::fromStdString(m_spool->error());
            cleanUpTempPaths();
            return false;
        }
    }
    movie->setEditable(true);
    movie->setHasAudio(false);
    movie->setHasVideo(true);
    movie->setLinear(true);
    movie->setDuration({m_schedule.movieDuration(), kMovieTimeScale, 0});
    movie->setHasDuration(true);
    const FrameSize size = frameSize();
    movie->setNaturalSize({size.width, size.height});
    m_writer = std::make_unique<AsyncMovieWriter>(std::move(movie));
    m_conversionFailure.clear();
    m_framesConverted = 0;
    // Read here, on the owner's thread: the document is not for the conversion thread.
    // A change of codec, quality or rate starts a new render and with it a new movie.
    const AddImageAttributes attributes{fourCharCode(codec()), quality()};
    m_conversions = std::make_unique<FrameConversionQueue>(
        [this, attributes](std::optional<Bitmap> bitmap) { appendFrame(std::move(bitmap), attributes); });
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
        && framesWaiting() < kMaxFramesWaiting) {
        handOver(jobs().front());
        if (!isRendering())
            return;
        if (++m_framesAppended % kFramesBetweenTrims == 0)
            ::malloc_trim(0);
        jobs().pop_front();
        if (stopOnWriterFailure())
            return;
    }
    if (jobs().empty() && framesNotQueued() == 0)
        handOverFramesShownAgain();
}

void MovieRenderController::handOver(const MorphCalculationJob::Ptr& job)
{
    if (!m_sequence) {
        m_conversions->push(job->outputImage());
        return;
    }
    // Each frame goes beside the name it first appears under; the document says where
    // output may go, so the name is checked here, on the document's thread.
    const auto frame = static_cast<std::uint32_t>(m_framesAppended);
    const QString name = m_pattern->fileName(m_schedule.firstSequenceFile(frame) + 1);
    QString target;
    QString refusal;
    if (!checkOutputPath(document(), name, &target, &refusal)) {
        m_error = QCoreApplication::translate("MovieRenderController", "cannot write '%1': %2").arg(name, refusal);
        m_appendFailed = true;
        stop();
        return;
    }
    m_sequence->push(frame, job->outputImage(), QFile::encodeName(target).toStdString());
}

// The way back of a ping-pong movie: the frames kept aside, last but one first.
void MovieRenderController::handOverFramesShownAgain()
{
    while (repeatedFramesLeft() > 0 && framesWaiting() < kMaxFramesWaiting) {
        const std::uint32_t frame = m_schedule.movieFrame(m_schedule.computedFrames() + m_framesShownAgain).source;
        m_conversions->push([this, frame]() -> std::optional<Bitmap> {
            std::optional<Bitmap> bitmap = m_spool->get(frame);
            if (!bitmap)
                failOnConversionThread(m_spool->error());
            return bitmap;
        });
        ++m_framesShownAgain;
        ++m_framesAppended;
    }
}

std::uint32_t MovieRenderController::repeatedFrames() const
{
    return m_sequence ? 0 : static_cast<std::uint32_t>(m_schedule.movieFrameCount() - m_schedule.computedFrames());
}

std::uint32_t MovieRenderController::repeatedFramesLeft() const
{
    return repeatedFrames() - m_framesShownAgain;
}

unsigned MovieRenderController::framesWaiting() const
{
    if (m_sequence)
        return m_sequence->pending();
    return m_conversions ? m_conversions->pending() + m_writer->numberOfImagesInQueue() : kMaxFramesWaiting;
}

bool MovieRenderController::stopOnWriterFailure()
{
    std::optional<QString> failure;
    if (m_sequence)
        failure = m_sequence->failure();
    if (const std::optional<MovieStatus> status = m_writer ? m_writer->failure() : std::nullopt)
        failure = QString::fromStdString(status->message);
    if (const std::lock_guard guard(m_conversionFailureMutex); !m_conversionFailure.empty())
        failure = QString::fromStdString(m_conversionFailure);
    if (!failure)
        return false;
    // The movie cannot be completed: computing the remaining frames would only waste time.
    m_appendFailed = true;
    m_error = *failure;
    stop();
    return true;
}

void MovieRenderController::failOnConversionThread(const std::string& reason)
{
    const std::lock_guard guard(m_conversionFailureMutex);
    if (m_conversionFailure.empty())
        m_conversionFailure = reason;
}

void MovieRenderController::appendFrame(std::optional<Bitmap> bitmap, const AddImageAttributes& attributes)
{
    if (!bitmap) {
        m_appendFailed = true;
        return;
    }
    const std::size_t index = m_framesConverted++;
    // Frames beyond the schedule (a test's own jobs) last one frame's time.
    const ScheduledFrame scheduled = index < m_schedule.movieFrameCount()
        ? m_schedule.movieFrame(index) : ScheduledFrame{static_cast<std::uint32_t>(index), m_schedule.frameDuration()};
    // The frames a ping-pong movie shows again on its way back are kept aside.
    const bool shownAgain = index < m_schedule.computedFrames() && m_schedule.movieFrameCount() > m_schedule.computedFrames()
        && index + 1 < m_schedule.computedFrames();
    if (shownAgain && !m_spool->put(scheduled.source, *bitmap))
        failOnConversionThread(m_spool->error());
    const int width = bitmap->width();
    const int height = bitmap->height();
    // Rows of whole pixels are what the movie takes: hand the buffer over uncopied.
    RgbaImage frame = bitmap->bytesPerRow() == static_cast<std::size_t>(width) * 4
        ? RgbaImage::adoptPixels(bitmap->releasePixels(), width, height)
        : RgbaImage::fromPixels(bitmap->data(), width, height, bitmap->bytesPerRow());
    m_writer->asyncAddImage(std::move(frame), {scheduled.duration, kMovieTimeScale, 0}, attributes);
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
    const std::optional<MovieOutputKind> kind = movieOutputKindForPath(path, error);
    if (!kind)
        return false;
    if (m_sequence)
        return commitSequence(path, error);
    if (!m_writer)
        return fail(QCoreApplication::translate("MovieRenderController", "no movie has been rendered"));
    if (*kind == MovieOutputKind::ImageSequence)
        return fail(QCoreApplication::translate("MovieRenderController", "the frames were rendered as a movie, not as an image sequence"));
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
    return writeMovieAs(*kind, target, error);
}

bool MovieRenderController::commitSequence(const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (path != m_sequencePath)
        return fail(QCoreApplication::translate("MovieRenderController", "the frames were rendered for the names '%1'").arg(m_sequencePath));
    stopOnWriterFailure();
    if (isRendering() || m_appendFailed)
        return fail(m_error.isEmpty() ? QCoreApplication::translate("MovieRenderController", "the image sequence is not complete") : m_error);
    // Every name is checked again now: the files take them only once all are made.
    const auto target = [this](std::size_t file, std::uint32_t* frame, QString* reason) -> std::optional<std::string> {
        *frame = m_schedule.sequenceSource(file);
        const QString name = m_pattern->fileName(file + 1);
        QString checked;
        QString refusal;
        if (checkOutputPath(document(), name, &checked, &refusal))
            return QFile::encodeName(checked).toStdString();
        *reason = QCoreApplication::translate("MovieRenderController", "cannot write '%1': %2").arg(name, refusal);
        return std::nullopt;
    };
    return m_sequence->commit(m_schedule.sequenceFileCount(), target, error);
}

bool MovieRenderController::writeMovieAs(MovieOutputKind kind, const QString& target, QString* error)
{
    if (const std::optional<MovieContainer> container = movieContainerForOutput(kind)) {
        if (kind != MovieOutputKind::QuickTime && codec() != movieCodecForOutput(kind, codec())) {
            if (error)
                *error = QCoreApplication::translate("MovieRenderController", "the movie was compressed with '%1', which a .%2 file does not hold")
                             .arg(QString::fromStdString(codec()), movieOutputExtension(kind));
            return false;
        }
        // The file's index takes memory in proportion to the frames; hand back first what
        // the render no longer holds, so that saving a long movie does not raise its peak.
        ::malloc_trim(0);
        const MovieStatus status = m_writer->writeToFile(QFile::encodeName(target).toStdString(), true, *container);
        if (!status.ok() && error)
            *error = QString::fromStdString(status.message);
        return status.ok();
    }
    m_writer->lock();
    const bool written = kind == MovieOutputKind::AnimatedGif
        ? MovieFrameExport::writeAnimatedGif(m_writer->movie(), target, error)
        : MovieFrameExport::writeAnimatedWebp(m_writer->movie(), target, askedQuality(), error);
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
    m_spool.reset();
    m_sequence.reset();
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
