// SPDX-License-Identifier: MIT
#include "render/render_controller.h"

#include "model/morph_document.h"

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
    const std::vector<MorphCalculationJob::Ptr> jobs = newMorphJobs();
    m_morphJobs.assign(jobs.begin(), jobs.end());
    m_morpher->runMorphCalculationJobs(jobs);
    m_rendering = true;
    return true;
}

std::vector<MorphCalculationJob::Ptr> RenderController::newMorphJobs()
{
    const FrameSize size = frameSize();
    const float factor = interpolationFactor();
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (float t : frameTimes(m_settings.numberOfFrames(), m_settings.timeRange(), m_settings.reverse()))
        jobs.push_back(MorphCalculationJob::create(t, Size{size.width, size.height}, factor));
    return jobs;
}

bool RenderController::tick()
{
    if (!m_rendering)
        return true;
    consumeFinishedJobs();
    if (!m_morphJobs.empty())
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
    m_rendering = false;
}

float RenderController::progress() const
{
    const float lastJobProgress = m_morphJobs.empty() ? 1.0f : m_morphJobs.back()->progress();
    return renderProgress(m_settings.numberOfFrames(), m_morphJobs.size(), lastJobProgress);
}

} // namespace plyra
