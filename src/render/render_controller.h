// SPDX-License-Identifier: MIT
#pragma once

#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "model/movie_settings.h"
#include "render/render_settings.h"

#include <deque>
#include <optional>
#include <vector>

namespace plyra {

class MorphDocument;

/// Turns a document and render settings into frame jobs on a fresh morpher, and polls
/// them without ever waiting: the common core of the frame, preview and movie renders,
/// shared by the render windows and plyra-render. Subclasses say what a job looks like,
/// what to do with each finished job and how many jobs may be out at once: a render
/// whose frames are consumed in order (a movie) hands the morpher only a few jobs ahead
/// of the consumer, so that its memory does not grow with the number of frames.
/// Threads: main thread; the jobs are computed on the morpher's workers.
class RenderController {
public:
    using JobList = std::deque<MorphCalculationJob::Ptr>;

    explicit RenderController(MorphDocument& document);
    virtual ~RenderController();
    RenderController(const RenderController&) = delete;
    RenderController& operator=(const RenderController&) = delete;

    MorphDocument& document() const { return m_document; }
    RenderSettings& settings() { return m_settings; }
    const RenderSettings& settings() const { return m_settings; }
    /// The easing of the frame times, and for movies the holds and ping-pong.
    const MovieTiming& timing() const { return m_timing; }
    /// Answers whether the timing changed.
    bool setTiming(const MovieTiming& timing);

    /// The frame size; an unset size is first taken from the document's frame size.
    FrameSize frameSize();
    /// The grid spacing of new jobs: the given value, else the user default's rule.
    void setInterpolationFactor(std::optional<float> factor) { m_interpolationFactor = factor; }
    float interpolationFactor() const;

    /// Starts a new render: the old morpher's queue is cleared, a new morpher takes the
    /// document's images and copies of its lines and computes the first jobs. False
    /// (and nothing changes) when the document has no image at all.
    virtual bool recalc();
    /// Consumes finished jobs and hands the morpher the next ones, then answers whether
    /// the render is over (every frame's job made and consumed).
    bool tick();
    /// Stops rendering: the queued jobs are dropped and never computed.
    void stop();

    bool isRendering() const { return m_rendering; }
    float progress() const;
    /// The jobs handed to the morpher and not yet consumed, first frame first.
    const JobList& morphJobs() const { return m_morphJobs; }
    /// Frames whose jobs are still to be made.
    std::uint32_t framesNotQueued() const { return m_frameCount - m_nextFrame; }
    const Morpher::Ptr& morpher() const { return m_morpher; }

protected:
    /// The job of one frame (0 is the first): the frame time of the settings.
    virtual MorphCalculationJob::Ptr newMorphJob(std::uint32_t frame);
    /// How many jobs may be out (queued, computing or done and not consumed) at once;
    /// 0 for every frame at once.
    virtual std::size_t maxJobsAhead() { return 0; }
    /// Takes finished jobs off the front of morphJobs(); the base takes none.
    virtual void consumeFinishedJobs() { }
    /// Frames the render puts out beyond its jobs (frames shown again, not computed
    /// again), and how many of those are still to come; the render lasts until they are
    /// out too.
    virtual std::uint32_t repeatedFrames() const { return 0; }
    virtual std::uint32_t repeatedFramesLeft() const { return 0; }
    JobList& jobs() { return m_morphJobs; }

private:
    void queueMoreJobs();

    MorphDocument& m_document;
    RenderSettings m_settings;
    MovieTiming m_timing;
    std::optional<float> m_interpolationFactor;
    Morpher::Ptr m_morpher;
    JobList m_morphJobs;
    std::uint32_t m_frameCount = 0;
    std::uint32_t m_nextFrame = 0;
    bool m_rendering = false;
};

} // namespace plyra
