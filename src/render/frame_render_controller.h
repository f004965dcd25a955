// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "render/render_controller.h"

#include <QString>

#include <optional>

namespace plyra {

/// Renders one frame at a chosen morph time, keeps the last finished frame and saves
/// it as a JPEG, PNG or TIFF file (saveFrame).
/// Threads: main thread.
class FrameRenderController : public RenderController {
public:
    explicit FrameRenderController(MorphDocument& document);

    /// The morph time: the start of the time range (whose length is 0).
    float time() const { return settings().timeRange().location; }
    /// Changes of at most 0.001 are ignored; answers whether the time changed.
    bool setTime(float time);
    /// Any change, however small: a time typed exactly is rendered exactly.
    bool setExactTime(float time);

    /// The last finished frame; empty until one is finished.
    const std::optional<Bitmap>& bitmap() const { return m_bitmap; }
    /// Writes the last frame in the format the path's extension asks for (saveFrame), once
    /// the path passes the document's output check; false with the reason otherwise.
    bool saveRenderedFrame(const QString& path, QString* error = nullptr) const;

protected:
    MorphCalculationJob::Ptr newMorphJob(std::uint32_t frame) override;
    void consumeFinishedJobs() override;

private:
    std::optional<Bitmap> m_bitmap;
};

} // namespace plyra
