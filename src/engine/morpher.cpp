// SPDX-License-Identifier: MIT
#include "engine/morpher.h"

#include "platform/log.h"

#include <cmath>
#include <new>
#include <system_error>

namespace plyra {

namespace {

// Idle workers wake this often to see whether they have been told to stop.
constexpr double kWorkerWaitSeconds = 1.0;

unsigned workerCount()
{
    const unsigned n = std::thread::hardware_concurrency();
    return n >= 1 ? n : 2;
}

Rect unitRect(const DisplacementBounds& b)
{
    return {b.minX, b.minY, b.maxX - b.minX, b.maxY - b.minY};
}

Rect toPixels(const Rect& r, Size size)
{
    return {r.x * size.width, r.y * size.height, r.width * size.width, r.height * size.height};
}

// A worker has nobody to throw to: a field too large for memory ends the job without
// one, which its frame then lacks (and says so), instead of ending the program.
void computeOrGiveUp(const Morpher& morpher, MorphCalculationJob& job)
{
    try {
        morpher.processMorphCalculationJob(job);
    } catch (const std::bad_alloc&) {
        logLine(formatString("Morpher: not enough memory for the warp field of the frame at time %g",
                             static_cast<double>(job.time())));
        job.setCoords({});
        job.setProgress(1.0f);
    }
}

} // namespace

Morpher::Ptr Morpher::create(const Image& firstTrackImage, const Image& lastTrackImage,
                             const std::vector<MorphLine::Ptr>& morphLines)
{
    return std::make_shared<Morpher>(Token{}, firstTrackImage, lastTrackImage, morphLines);
}

Morpher::Morpher(Token, const Image& firstTrackImage, const Image& lastTrackImage,
                 const std::vector<MorphLine::Ptr>& morphLines)
    : m_track0SourceImage(firstTrackImage)
    , m_track1SourceImage(lastTrackImage)
{
    m_morphLines.reserve(morphLines.size());
    for (const MorphLine::Ptr& line : morphLines) {
        if (line)
            m_morphLines.push_back(line->copy());
    }
}

// Every worker holds this morpher until it has left its loop, so nothing is left to
// stop here.
Morpher::~Morpher() = default;

void Morpher::runMorphCalculationJobs(const std::vector<MorphCalculationJob::Ptr>& jobs)
{
    m_lock.lock();
    for (const MorphCalculationJob::Ptr& job : jobs) {
        if (!job)
            continue;
        m_morphJobs.push_back(job);
        job->setTrack0Image(m_track0SourceImage);
        job->setTrack1Image(m_track1SourceImage);
    }
    const int condition = m_lock.condition();
    if (condition != MorpherConditionJobsQueued && condition != MorpherConditionQueueEmpty)
        startWorkers();
    m_lock.unlockWithCondition(MorpherConditionJobsQueued);
}

void Morpher::startWorkers()
{
    const unsigned n = workerCount();
    for (unsigned i = 0; i < n; ++i) {
        try {
            // Detached: a worker owns its share of the morpher and ends on its own within
            // about a second of the stop condition; nobody waits for it.
            std::thread(&Morpher::runBackgroundThread, shared_from_this()).detach();
            ++m_startedWorkers;
        } catch (const std::system_error& error) {
            // Work on with the workers there are; the jobs still get computed by them.
            logLine(formatString("Morpher: could not start a worker thread: %s", error.what()));
            break;
        }
    }
}

void Morpher::clearJobQueue()
{
    m_lock.lock();
    for (const MorphCalculationJob::Ptr& job : m_morphJobs)
        job->setAbort(true);
    m_morphJobs.clear();
    m_lock.unlockWithCondition(MorpherConditionStop);
}

std::vector<MorphCalculationJob::Ptr> Morpher::morphJobs() const
{
    m_lock.lock();
    std::vector<MorphCalculationJob::Ptr> snapshot(m_morphJobs.begin(), m_morphJobs.end());
    m_lock.unlock();
    return snapshot;
}

int Morpher::condition() const
{
    return m_lock.condition();
}

std::size_t Morpher::startedWorkerCount() const
{
    m_lock.lock();
    const std::size_t n = m_startedWorkers;
    m_lock.unlock();
    return n;
}

void Morpher::runBackgroundThread(Ptr self)
{
    Morpher& morpher = *self;
    for (;;) {
        if (morpher.m_lock.lockWhenCondition(MorpherConditionJobsQueued,
                                             ConditionLock::deadlineIn(kWorkerWaitSeconds))) {
            MorphCalculationJob::Ptr job = morpher.takeJob();
            if (job) {
                computeOrGiveUp(morpher, *job);
                job.reset();
                morpher.finishJob();
            }
            continue;
        }
        if (morpher.m_lock.tryLockWhenCondition(MorpherConditionStop))
            break;
    }
    // Leaving in condition stop lets the next waiting worker leave as well.
    morpher.m_lock.unlockWithCondition(MorpherConditionStop);
    self.reset();
}

MorphCalculationJob::Ptr Morpher::takeJob()
{
    // Called with the lock held in condition "jobs queued".
    if (m_morphJobs.empty()) {
        // Nothing to take while other workers finish the last jobs: wait as idle instead
        // of passing through the lock again and again. Whoever queues jobs, finishes one
        // or clears the queue sets the next condition, so no wake-up is lost.
        m_lock.unlockWithCondition(MorpherConditionQueueEmpty);
        return nullptr;
    }
    MorphCalculationJob::Ptr job = std::move(m_morphJobs.front());
    m_morphJobs.pop_front();
    m_lock.unlock();
    return job;
}

void Morpher::finishJob()
{
    m_lock.lock();
    int next = m_morphJobs.empty() ? MorpherConditionQueueEmpty : MorpherConditionJobsQueued;
    // The queue was cleared while the job ran: the workers must still leave.
    if (m_lock.condition() == MorpherConditionStop)
        next = MorpherConditionStop;
    m_lock.unlockWithCondition(next);
}

void Morpher::fillDestLineCoordinates(LineCoords* coords, float t) const
{
    for (std::size_t i = 0; i < m_morphLines.size(); ++i) {
        const Point start = m_morphLines[i]->startPointAtTime(t);
        const Point end = m_morphLines[i]->endPointAtTime(t);
        const float dx = start.x - end.x;
        const float dy = start.y - end.y;
        coords[i] = {start, end, std::sqrt(dx * dx + dy * dy)};
    }
}

void Morpher::fillTransMatrixes(AffineTransform* matrixes, float t1, float t2) const
{
    for (std::size_t i = 0; i < m_morphLines.size(); ++i)
        matrixes[i] = m_morphLines[i]->transformFromTime(t1, t2);
}

AffineTransform Morpher::transformFromTime(float t1, float t2, const MorphLine& control)
{
    const Point p1 = control.startPointAtTime(t1);
    const Point p2 = control.startPointAtTime(t2);
    const Point e1 = control.endPointAtTime(t1);
    const Point e2 = control.endPointAtTime(t2);
    const double d1x = static_cast<double>(e1.x) - p1.x;
    const double d1y = static_cast<double>(e1.y) - p1.y;
    const double d2x = static_cast<double>(e2.x) - p2.x;
    const double d2y = static_cast<double>(e2.y) - p2.y;
    const double len1 = std::sqrt(d1x * d1x + d1y * d1y);
    // A line without length at t1 has no direction to turn: it answers the translation
    // of its start point, which keeps every number finite.
    if (!(len1 > 0.0))
        return {1.0f, 0.0f, 0.0f, 1.0f, p2.x - p1.x, p2.y - p1.y};
    const float s = static_cast<float>(std::sqrt(d2x * d2x + d2y * d2y) / len1);
    const float a1 = static_cast<float>(std::atan2(d1y, d1x));
    const float a2 = static_cast<float>(std::atan2(d2y, d2x));
    const float c1 = std::cos(a1), s1 = std::sin(a1);
    const float c2 = std::cos(a2), s2 = std::sin(a2);
    AffineTransform m;
    m.m11 = s * c1 * c2 + s1 * s2;
    m.m12 = s * c2 * s1 - c1 * s2;
    m.m21 = s * c1 * s2 - c2 * s1;
    m.m22 = s * s1 * s2 + c1 * c2;
    m.tX = p2.x - p1.x * m.m11 - p1.y * m.m12;
    m.tY = p2.y - p1.x * m.m21 - p1.y * m.m22;
    return m;
}

WarpLines Morpher::warpLines(float t) const
{
    const std::size_t n = m_morphLines.size();
    WarpLines lines;
    lines.toFirst.resize(n);
    lines.toLast.resize(n);
    lines.atTime.resize(n);
    fillTransMatrixes(lines.toFirst.data(), 0.0f, t);
    fillTransMatrixes(lines.toLast.data(), 1.0f, t);
    fillDestLineCoordinates(lines.atTime.data(), t);
    lines.dissolveStart.reserve(n);
    lines.dissolveEnd.reserve(n);
    for (const MorphLine::Ptr& line : m_morphLines) {
        lines.dissolveStart.push_back(line->dissolveStartTime());
        lines.dissolveEnd.push_back(line->dissolveEndTime());
    }
    return lines;
}

void Morpher::processMorphCalculationJob(MorphCalculationJob& job) const
{
    const float t = job.time();
    job.setProgress(0.0f);
    const WarpLines lines = warpLines(t);
    const GridSize grid = job.gridSize();
    // One spare node on each axis, all zero; only the first nx × ny nodes are read.
    std::vector<float> coords(std::size_t{4} * (grid.nx + 1) * (grid.ny + 1), 0.0f);
    std::vector<float> lastY(grid.nodeCount());
    const Size size = job.destSize();
    const WarpFieldBounds bounds =
        WarpField(lines, t, size.width, size.height, grid).compute(coords.data(), lastY.data());
    job.setCoords(std::move(coords));
    job.setExactLastY(std::move(lastY));
    job.setMaxDisplacements(unitRect(bounds.first), unitRect(bounds.last));
    job.setProgress(0.9f);
    if (job.abort())
        return;
    job.setMaxDisplacements(toPixels(job.maxDisplacement0(), size), toPixels(job.maxDisplacement1(), size));
    job.setProgress(1.0f);
    std::this_thread::yield();
}

} // namespace plyra
