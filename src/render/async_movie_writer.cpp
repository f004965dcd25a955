// SPDX-License-Identifier: MIT
#include "render/async_movie_writer.h"

#include "platform/log.h"

#include <new>

namespace plyra {
namespace {

constexpr double kWorkerWaitSeconds = 0.2;
constexpr double kWaitPollSeconds = 0.1;
constexpr double kMarkBatchSeconds = 10.0;

} // namespace

AsyncMovieWriter::AsyncMovieWriter(std::unique_ptr<Movie> movie)
    : m_movie(std::move(movie))
{
}

AsyncMovieWriter::~AsyncMovieWriter()
{
    if (ConditionLock* queue = m_queueLock.load(std::memory_order_acquire)) {
        queue->lock();
        if (queue->condition() != WorkerExited) {
            m_tearingDown = true;
            queue->unlockWithCondition(StopRequested);
            queue->lockWhenCondition(WorkerExited);
        }
        m_queue.clear();
        queue->unlock();
    }
    if (m_worker.joinable())
        m_worker.join();
    // Take the movie lock once so that no holder is still inside the movie.
    m_movieLock.lock();
    m_movieLock.unlock();
}

void AsyncMovieWriter::lock()
{
    m_movieLock.lock();
    if (const int result = m_movie->attachToCurrentThread(); result != 0)
        logLine(formatString("AttachMovieToCurrentThread returned %d", result));
}

bool AsyncMovieWriter::tryLock()
{
    if (!m_movieLock.try_lock())
        return false;
    if (const int result = m_movie->attachToCurrentThread(); result != 0)
        logLine(formatString("AttachMovieToCurrentThread returned %d", result));
    return true;
}

void AsyncMovieWriter::unlock()
{
    if (const int result = m_movie->detachFromCurrentThread(); result != 0)
        logLine(formatString("DetachMovieToCurrentThread returned %d", result));
    m_movieLock.unlock();
}

bool AsyncMovieWriter::appendNowIfNoVideoTrack(RgbaImage& image, const MovieTime& duration,
                                               const std::optional<AddImageAttributes>& attributes)
{
    // Tracks are never removed: once there is a video track, adds need not look again,
    // and a producer that holds the movie lock can still queue images.
    if (m_hasVideoTrack.load(std::memory_order_acquire))
        return false;
    lock();
    const bool appendNow = !m_movie->hasVideoTrack();
    if (appendNow)
        noteAppend(m_movie->addImage(image, duration, attributes));
    m_hasVideoTrack.store(m_movie->hasVideoTrack(), std::memory_order_release);
    unlock();
    return appendNow;
}

ConditionLock& AsyncMovieWriter::queueLock()
{
    if (ConditionLock* existing = m_queueLock.load(std::memory_order_acquire))
        return *existing;
    std::lock_guard guard(m_queueLockCreation);
    if (!m_queueLockOwner) {
        m_queueLockOwner = std::make_unique<ConditionLock>(WorkerStarted);
        // Published before the worker starts: its first act is to read it.
        m_queueLock.store(m_queueLockOwner.get(), std::memory_order_release);
        startWorker();
    }
    return *m_queueLockOwner;
}

void AsyncMovieWriter::startWorker()
{
    if (m_worker.joinable())
        m_worker.join(); // it has reported its exit; only its return is left
    m_worker = std::thread([this] { workerLoop(); });
}

void AsyncMovieWriter::asyncAddImage(RgbaImage image, const MovieTime& duration,
                                     const std::optional<AddImageAttributes>& attributes)
{
    if (appendNowIfNoVideoTrack(image, duration, attributes))
        return;
    ConditionLock& queue = queueLock();
    queue.lock();
    if (queue.condition() == WorkerExited)
        startWorker();
    if (m_queue.capacity() == 0)
        m_queue.reserve(10);
    m_queue.push_back({std::move(image), duration, attributes});
    queue.unlockWithCondition(ImagesQueued);
}

unsigned AsyncMovieWriter::numberOfImagesInQueue() const
{
    ConditionLock* queue = m_queueLock.load(std::memory_order_acquire);
    if (!queue)
        return 0;
    queue->lock();
    const auto count = static_cast<unsigned>(m_queue.size());
    queue->unlock();
    return count;
}

std::optional<int> AsyncMovieWriter::queueCondition() const
{
    ConditionLock* queue = m_queueLock.load(std::memory_order_acquire);
    if (!queue)
        return std::nullopt;
    queue->lock();
    const int condition = queue->condition();
    queue->unlock();
    return condition;
}

void AsyncMovieWriter::waitForAsyncImageAddToFinish()
{
    ConditionLock* queue = m_queueLock.load(std::memory_order_acquire);
    if (!queue)
        return;
    for (;;) {
        queue->lock();
        const int condition = queue->condition();
        if (condition == StopRequested || condition == WorkerExited) {
            queue->unlock();
            return;
        }
        if (condition != ImagesQueued && m_queue.empty()) {
            queue->unlockWithCondition(StopRequested);
            return;
        }
        queue->unlockWithCondition(ImagesQueued);
        if (queue->lockWhenCondition(BatchWritten, ConditionLock::deadlineIn(kWaitPollSeconds)))
            queue->unlock();
    }
}

void AsyncMovieWriter::workerLoop()
{
    if (const int result = enterMoviesOnThread(0); result != 0)
        logLine(formatString("EnterMoviesOnThread returned %d", result));
    ConditionLock& queue = *m_queueLock.load(std::memory_order_acquire);
    for (;;) {
        if (queue.tryLockWhenCondition(StopRequested)) {
            queue.unlock();
            if (exitUnlessImagesQueued())
                return;
            continue;
        }
        if (!queue.lockWhenCondition(ImagesQueued, ConditionLock::deadlineIn(kWorkerWaitSeconds)))
            continue;
        std::vector<QueueEntry> batch;
        batch.swap(m_queue);
        if (batch.empty()) {
            // Nothing queued after all: report it written, or this pass would repeat at once.
            queue.unlockWithCondition(BatchWritten);
            continue;
        }
        queue.unlock();
        for (const QueueEntry& entry : batch)
            appendEntry(entry);
        if (queue.lockBefore(ConditionLock::deadlineIn(kMarkBatchSeconds))) {
            // Images queued while the batch was written keep the condition at 1, so the
            // worker takes them on its next pass instead of leaving them waiting.
            if (m_queue.empty() && queue.condition() == ImagesQueued)
                queue.unlockWithCondition(BatchWritten);
            else
                queue.unlock();
        }
    }
}

bool AsyncMovieWriter::exitUnlessImagesQueued()
{
    if (const int result = exitMoviesOnThread(); result != 0)
        logLine(formatString("ExitMoviesOnThread returned %d", result));
    if (m_beforeWorkerExit)
        m_beforeWorkerExit();
    ConditionLock& queue = *m_queueLock.load(std::memory_order_acquire);
    queue.lock();
    // An image queued after the stop was seen would otherwise wait for the next add.
    if (!m_queue.empty() && !m_tearingDown) {
        queue.unlockWithCondition(ImagesQueued);
        if (const int result = enterMoviesOnThread(0); result != 0)
            logLine(formatString("EnterMoviesOnThread returned %d", result));
        return false;
    }
    queue.unlockWithCondition(WorkerExited);
    return true;
}

void AsyncMovieWriter::appendEntry(const QueueEntry& entry)
{
    // After a failure the movie is lost: compressing more frames only wastes time.
    if (m_failed.load(std::memory_order_acquire))
        return;
    lock();
    MovieStatus status;
    // The worker has nobody to throw to: running out of memory fails this append.
    try {
        MovieTrack* track = m_movie->lastVideoTrack();
        status = track ? track->addImage(entry.image, entry.duration, entry.attributes)
                       : m_movie->addImage(entry.image, entry.duration, entry.attributes);
    } catch (const std::bad_alloc&) {
        status = MovieStatus::failure(kMovieMemoryError, "There is not enough memory to compress the frame");
    }
    unlock();
    noteAppend(status);
}

bool AsyncMovieWriter::noteAppend(const MovieStatus& status)
{
    if (status.ok())
        return true;
    std::lock_guard guard(m_failureLock);
    if (!m_failure) {
        logLine(formatString("Could not append an image to the movie: %s", status.message.c_str()));
        m_failure = status;
        m_failed.store(true, std::memory_order_release);
    }
    return false;
}

std::optional<MovieStatus> AsyncMovieWriter::failure() const
{
    std::lock_guard guard(m_failureLock);
    return m_failure;
}

void AsyncMovieWriter::disableIdling()
{
    // FFmpeg movies do no idle processing (supportsIdling() is false): nothing to switch off.
}

template <typename Operation>
void AsyncMovieWriter::afterQueueWritten(Operation operation)
{
    waitForAsyncImageAddToFinish();
    lock();
    operation(*m_movie);
    unlock();
}

void AsyncMovieWriter::play() { afterQueueWritten([](Movie& movie) { movie.play(); }); }
void AsyncMovieWriter::stop() { afterQueueWritten([](Movie& movie) { movie.stop(); }); }
void AsyncMovieWriter::setCurrentTime(const MovieTime& time)
{
    afterQueueWritten([&time](Movie& movie) { movie.setCurrentTime(time); });
}
void AsyncMovieWriter::gotoBeginning() { afterQueueWritten([](Movie& movie) { movie.gotoBeginning(); }); }
void AsyncMovieWriter::gotoEnd() { afterQueueWritten([](Movie& movie) { movie.gotoEnd(); }); }
void AsyncMovieWriter::gotoNextSelectionPoint()
{
    afterQueueWritten([](Movie& movie) { movie.gotoNextSelectionPoint(); });
}
void AsyncMovieWriter::gotoPreviousSelectionPoint()
{
    afterQueueWritten([](Movie& movie) { movie.gotoPreviousSelectionPoint(); });
}
void AsyncMovieWriter::gotoPosterTime() { afterQueueWritten([](Movie& movie) { movie.gotoPosterTime(); }); }
void AsyncMovieWriter::stepForward() { afterQueueWritten([](Movie& movie) { movie.stepForward(); }); }
void AsyncMovieWriter::stepBackward() { afterQueueWritten([](Movie& movie) { movie.stepBackward(); }); }

MovieStatus AsyncMovieWriter::writeToFile(const std::string& path, bool flatten, MovieContainer container)
{
    lock();
    MovieStatus status = m_movie->writeToFile(path, flatten, container);
    unlock();
    return status;
}

} // namespace plyra
