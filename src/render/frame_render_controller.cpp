// SPDX-License-Identifier: MIT
#include "render/frame_render_controller.h"

#include "engine/image_conversion.h"
#include "render/frame_output.h"
#include "render/output_path_check.h"

#include <cmath>

namespace plyra {

FrameRenderController::FrameRenderController(MorphDocument& document)
    : RenderController(document)
{
    setTime(0.5f);
    settings().setNumberOfFrames(1);
    settings().setSizeToView(true);
}

bool FrameRenderController::setTime(float time)
{
    if (!(std::fabs(time - this->time()) > 0.001f))
        return false;
    settings().setTimeRange({time, 0.0f});
    return true;
}

bool FrameRenderController::setExactTime(float time)
{
    if (time == this->time())
        return false;
    settings().setExactTimeRange({time, 0.0f});
    return true;
}

MorphCalculationJob::Ptr FrameRenderController::newMorphJob(std::uint32_t)
{
    const FrameSize size = frameSize();
    return MorphCalculationJob::create(time(), Size{size.width, size.height}, interpolationFactor());
}

void FrameRenderController::consumeFinishedJobs()
{
    if (jobs().empty() || !jobs().back()->isDone())
        return;
    m_bitmap = bitmapFromImage(jobs().back()->outputImage());
    jobs().pop_back();
}

bool FrameRenderController::saveRenderedFrame(const QString& path, QString* error) const
{
    static const Bitmap none; // saving it fails with the reason "no frame has been rendered"
    QString target;
    if (!checkOutputPath(document(), path, &target, error))
        return false;
    // The format is the one the path asks for, also when it is a link to another name.
    return saveFrame(m_bitmap ? *m_bitmap : none, path, error);
}

} // namespace plyra
