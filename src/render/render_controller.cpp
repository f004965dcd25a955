// SPDX-License-Identifier: MIT
#include "render/render_controller.h"

#include "model/morph_document.h"

#include <algorithm>

namespace plyra {

RenderController::RenderController(MorphDocument& document)
    : m_document(document)
{
}

RenderController::~RenderController()
{
    stop();
}

FrameSize RenderController::frameSize()
{
    if (!m_settings.storedFrameSize().isSet()) {
        const QSizeF size = m_document.frameSize();
        m_settings.setFrameSize({static_cast<float>(size.width()), static_cast<float>(size.height())});
    }
    return m_settings.storedFrameSize();
}

bool RenderController::setTiming(const MovieTiming& timing)
{
    if (timing == m_timing)
        return false;
    m_timing = timing;
    return true;
}

float RenderController::interpolationFactor() const
{
    return m_interpolationFactor ? *m_interpolationFactor : interpolationFactorFromDefaults();
}

bool RenderController::recalc()
{
    const Image first = m_document.ciimageInTrack(0);
    const Image last = m_document.ciimageInTrack(1);
    if (!first && !last)
        return false;
    if (m_morpher)
        m_morpher->clearJobQueue();
    m_morpher = Morpher::create(first, last, m_document.morphLines());
    m_morphJobs.clear();
    m_frameCount = m_settings.numberOfFrames();
    m_nextFrame = 0;
    m_rendering = true;
    queueMoreJobs();
    return true;
}

MorphCalculationJob::Ptr RenderController::newMorphJob(std::uint32_t frame)
{
    const FrameSize size = frameSize();
    const float t = frameTime(frame, m_frameCount, m_settings.timeRange(), m_settings.reverse(), m_timing.easing);
    return MorphCalculationJob::create(t, Size{size.width, size.height}, interpolationFactor());
}

void RenderController::queueMoreJobs()
{
    const std::size_t limit = maxJobsAhead();
    std::vector<MorphCalculationJob::Ptr> batch;
    while (m_nextFrame < m_frameCount && (limit == 0 || m_morphJobs.size() < limit)) {
        batch.push_back(newMorphJob(m_nextFrame++));
        m_morphJobs.push_back(batch.back());
    }
    if (!batch.empty())
        m_morpher->runMorphCalculationJobs(batch);
}

bool RenderController::tick()
{
    if (!m_rendering)
        return true;
    consumeFinishedJobs();
    if (m_rendering)
        queueMoreJobs();
    if (!m_morphJobs.empty() || m_nextFrame < m_frameCount || (m_rendering && repeatedFramesLeft() > 0))
        return false;
    // Every job consumed: the render is over.
    stop();
    return true;
}

void RenderController::stop()
{
    if (m_morpher)
        m_morpher->clearJobQueue();
    m_morphJobs.clear();
    m_nextFrame = m_frameCount;
    m_rendering = false;
}

float RenderController::progress() const
{
    // A job the workers have finished is not a result until a tick has taken its frame:
    // until then the render is not complete (and Save would save the frame before).
    constexpr float kFinishedNotTaken = 0.999f;
    const float lastJobProgress = m_morphJobs.empty() ? 1.0f : std::min(m_morphJobs.back()->progress(), kFinishedNotTaken);
    const std::uint32_t repeated = m_rendering ? repeatedFramesLeft() : 0;
    return renderProgress(m_settings.numberOfFrames() + repeatedFrames(),
                          m_morphJobs.size() + framesNotQueued() + repeated, lastJobProgress);
}

} // namespace plyra
