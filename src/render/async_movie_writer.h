// SPDX-License-Identifier: MIT
#pragma once

#include "platform/condition_lock.h"
#include "platform/movie/movie.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace plyra {

/// A movie that takes images from any thread and appends them on a worker thread of its
/// own, so the thread producing frames never waits for the encoder. A movie lock serialises the worker's
/// appends, writes and playback; a condition lock guards the queue of waiting images and
/// its condition is the hand-shake between producers and the worker.
///
/// Queue conditions: 0 worker started, nothing queued; 1 images queued; 2 the worker has
/// written a batch and the queue is empty; 3 stop requested; 4 the worker has exited.
/// A worker that sees the stop request while images are still queued keeps working, so a
/// wait returns only once every queued image has been appended.
///
/// Threads: any thread may add images, wait, play, position and write. The queue lock is
/// never held while the movie lock is taken.
class AsyncMovieWriter {
public:
    enum QueueCondition : int {
        WorkerStarted = 0,
        ImagesQueued = 1,
        BatchWritten = 2,
        StopRequested = 3,
        WorkerExited = 4,
    };

    explicit AsyncMovieWriter(std::unique_ptr<Movie> movie);
    /// Stops the worker (within 0.2 seconds of a wait), drops images still queued and
    /// releases the movie.
    ~AsyncMovieWriter();
    AsyncMovieWriter(const AsyncMovieWriter&) = delete;
    AsyncMovieWriter& operator=(const AsyncMovieWriter&) = delete;

    /// Takes the movie lock and binds the movie to this thread; pair with unlock().
    void lock();
    bool tryLock();
    void unlock();
    /// The movie itself; use it only while holding the lock.
    Movie& movie() { return *m_movie; }

    /// Appends at once when the movie has no video track yet; otherwise queues the image
    /// for the worker (starting one when none runs) and returns. Until the first image is
    /// in, this takes the movie lock, so do not hold it while adding the first image.
    void asyncAddImage(RgbaImage image, const MovieTime& duration,
                       const std::optional<AddImageAttributes>& attributes);
    /// Returns when every queued image has been appended, and stops the worker.
    void waitForAsyncImageAddToFinish();
    unsigned numberOfImagesInQueue() const;
    /// The first append that failed (a full disk, an encoder error), if any. Once one has
    /// failed, images still queued or added later are dropped, not compressed.
    std::optional<MovieStatus> failure() const;
    /// The queue lock's condition, or none before the first queued image.
    std::optional<int> queueCondition() const;

    /// Idle processing cannot be switched on FFmpeg movies; kept for callers that ask.
    void disableIdling();

    // Each waits for the queue to be written, then acts on the movie under its lock.
    void play();
    void stop();
    void setCurrentTime(const MovieTime& time);
    void gotoBeginning();
    void gotoEnd();
    void gotoNextSelectionPoint();
    void gotoPreviousSelectionPoint();
    void gotoPosterTime();
    void stepForward();
    void stepBackward();

    /// Writes the movie as it is now, under the movie lock; queued images are not waited for.
    MovieStatus writeToFile(const std::string& path, bool flatten = true,
                            MovieContainer container = MovieContainer::QuickTime);

    /// Runs on the worker each time it has seen the stop request and is about to report
    /// its exit; tests use it to queue an image in exactly that interval. Set it before
    /// the first image is queued.
    void setBeforeWorkerExitHook(std::function<void()> hook) { m_beforeWorkerExit = std::move(hook); }

private:
    struct QueueEntry {
        RgbaImage image;
        MovieTime duration;
        std::optional<AddImageAttributes> attributes;
    };

    template <typename Operation>
    void afterQueueWritten(Operation operation);
    bool appendNowIfNoVideoTrack(RgbaImage& image, const MovieTime& duration,
                                 const std::optional<AddImageAttributes>& attributes);
    ConditionLock& queueLock();
    void startWorker();
    void workerLoop();
    bool takeAndAppendBatch();
    bool exitUnlessImagesQueued();
    void appendEntry(const QueueEntry& entry);
    /// Keeps the first failure; answers whether appending should go on.
    bool noteAppend(const MovieStatus& status);

    std::unique_ptr<Movie> m_movie;
    std::mutex m_movieLock;
    std::atomic<bool> m_hasVideoTrack{false};

    std::mutex m_queueLockCreation;
    std::unique_ptr<ConditionLock> m_queueLockOwner;
    std::atomic<ConditionLock*> m_queueLock{nullptr};
    // Guarded by the queue lock.
    std::vector<QueueEntry> m_queue;
    bool m_tearingDown = false;
    std::thread m_worker;
    std::function<void()> m_beforeWorkerExit;

    mutable std::mutex m_failureLock;
    std::optional<MovieStatus> m_failure; // guarded by m_failureLock
    std::atomic<bool> m_failed{false};
};

} // namespace plyra
