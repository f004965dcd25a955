// SPDX-License-Identifier: MIT
#pragma once

#include "engine/morph_calculation_job.h"
#include "engine/warp_field.h"
#include "model/geometry.h"
#include "model/morph_line.h"
#include "platform/condition_lock.h"
#include "platform/image/image.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <thread>
#include <vector>

namespace plyra {

/// Computes frames: holds the two track images and private copies of the document's
/// lines taken at creation, a queue of calculation jobs, and one worker thread per
/// processor that takes jobs in order and computes their warp fields.
/// Threads: create, runMorphCalculationJobs and clearJobQueue on the main thread;
/// morphJobs and transformFromTime anywhere; the workers run processMorphCalculationJob
/// and the fill operations. The queue lock is held only for queue operations. Every
/// worker holds the morpher, so it lives until its last worker has left.
class Morpher final : public std::enable_shared_from_this<Morpher> {
public:
    using Ptr = std::shared_ptr<Morpher>;

    enum Condition {
        MorpherConditionNoThreads = 0,
        MorpherConditionStop = 1,
        MorpherConditionJobsQueued = 2,
        MorpherConditionQueueEmpty = 3,
    };

    /// Either image may be null. The lines are copied (points and times, no joins).
    static Ptr create(const Image& firstTrackImage, const Image& lastTrackImage,
                      const std::vector<MorphLine::Ptr>& morphLines);
    ~Morpher();
    Morpher(const Morpher&) = delete;
    Morpher& operator=(const Morpher&) = delete;

    /// Appends the jobs, gives each the two track images and wakes the workers, starting
    /// them first when none are running.
    void runMorphCalculationJobs(const std::vector<MorphCalculationJob::Ptr>& jobs);
    /// Marks every queued job aborted, empties the queue and tells the workers to leave;
    /// a job being computed runs to its end.
    void clearJobQueue();
    /// A copy of the queue as it is now.
    std::vector<MorphCalculationJob::Ptr> morphJobs() const;

    /// Computes the job's warp field (worker side; also callable directly).
    void processMorphCalculationJob(MorphCalculationJob& job) const;
    /// Each line's start, end and length at time t; `coords` holds one entry per line.
    void fillDestLineCoordinates(LineCoords* coords, float t) const;
    /// Each line's transform from time t2 to time t1; `matrixes` holds one per line.
    void fillTransMatrixes(AffineTransform* matrixes, float t1, float t2) const;
    /// A transform from the line alone that carries the line at t1 onto the line at t2,
    /// read as x' = m11·x + m12·y + tX, y' = m21·x + m22·y + tY (the transposed order).
    static AffineTransform transformFromTime(float t1, float t2, const MorphLine& control);

    const std::vector<MorphLine::Ptr>& morphLines() const { return m_morphLines; }
    const Image& track0SourceImage() const { return m_track0SourceImage; }
    const Image& track1SourceImage() const { return m_track1SourceImage; }
    /// The queue lock's condition now (a snapshot; for tests and diagnostics).
    int condition() const;
    /// Workers started so far by this morpher (they are never restarted one by one).
    std::size_t startedWorkerCount() const;

private:
    struct Token { };

public:
    Morpher(Token, const Image& firstTrackImage, const Image& lastTrackImage,
            const std::vector<MorphLine::Ptr>& morphLines);

private:
    static void runBackgroundThread(Ptr self);
    void startWorkers();
    MorphCalculationJob::Ptr takeJob();
    void finishJob();
    WarpLines warpLines(float t) const;

    Image m_track0SourceImage;
    Image m_track1SourceImage;
    std::vector<MorphLine::Ptr> m_morphLines;
    std::deque<MorphCalculationJob::Ptr> m_morphJobs;
    mutable ConditionLock m_lock{MorpherConditionNoThreads};
    std::size_t m_startedWorkers = 0; // guarded by m_lock
};

} // namespace plyra
