// SPDX-License-Identifier: MIT
#pragma once

#include "engine/sample_coords_filter.h"
#include "engine/warp_field.h"
#include "platform/condition_lock.h"
#include "platform/image/geometry.h"
#include "platform/image/image.h"

#include <atomic>
#include <memory>
#include <vector>

namespace plyra {

/// One frame to compute: a morph time, an output size and a grid spacing. A morpher's
/// worker fills its warp field; once done, its output image is the coordinate-sampling
/// filter over the two track images and that field. The job also answers the filter's
/// region-of-interest questions.
/// Threads: create, poll (isDone, progress) and take outputImage on the main thread; the
/// warp field and its setProgress calls come from one morpher worker. The condition lock
/// publishes the worker's results: they are read only after isDone answered yes. Shared
/// between the render controller, the morpher's queue and every output image made from it.
class MorphCalculationJob final : public RegionOfInterestCalculator,
                                  public std::enable_shared_from_this<MorphCalculationJob> {
public:
    using Ptr = std::shared_ptr<MorphCalculationJob>;

    enum Condition { JobConditionRunning = 0, JobConditionDone = 1 };

    static Ptr create(float time, Size destSize, float interpolationFactor);

    float time() const { return m_t; }
    Size destSize() const { return m_destSize; }
    float interpolationFactor() const { return m_interpolationFactor; }
    /// nx × ny nodes for destSize and interpolationFactor.
    GridSize gridSize() const;

    /// Fraction computed, read without the lock (a slightly stale value is fine).
    float progress() const { return m_progress.load(std::memory_order_relaxed); }
    /// Done from 0.999999 on (compared in double precision), running below.
    void setProgress(float progress);
    /// Never waits: answers no while the worker holds the lock, and the next poll yes.
    bool isDone() const;
    void waitUntilDone() const;

    /// Set when the job is dropped from a morpher's queue; the worker reads it once.
    bool abort() const { return m_abort.load(std::memory_order_relaxed); }
    void setAbort(bool abort) { m_abort.store(abort, std::memory_order_relaxed); }

    const Image& track0Image() const { return m_track0Image; }
    const Image& track1Image() const { return m_track1Image; }
    void setTrack0Image(const Image& image);
    void setTrack1Image(const Image& image);

    /// The frame as a lazily evaluated image over (0, 0, W, H); null while not done or
    /// without any track image. The first call turns the warp field into the coordinates
    /// image and frees the field; later calls make new filters over that same image. The
    /// coordinates image carries the unrounded last-image y of each node as its fifth
    /// channel when the worker stored them.
    Image outputImage();

    Rect regionOfInterest(const Image& image, const Rect& destRect,
                          const SampleCoords2Filter& filter) const override;

    // The worker's side: the field buffer and the displacement bounds.
    /// The warp field, four floats per node; empty before the worker stores one and
    /// after outputImage has taken it.
    const std::vector<float>& coords() const { return m_coords; }
    void setCoords(std::vector<float> coords) { m_coords = std::move(coords); }
    /// Each node's y in the last image in output pixels, unrounded, nx × ny floats; the
    /// stored field keeps only its whole row. Empty like coords().
    const std::vector<float>& exactLastY() const { return m_exactLastY; }
    void setExactLastY(std::vector<float> lastY) { m_exactLastY = std::move(lastY); }
    const Rect& maxDisplacement0() const { return m_maxDisplacement0; }
    const Rect& maxDisplacement1() const { return m_maxDisplacement1; }
    void setMaxDisplacements(const Rect& toFirst, const Rect& toLast);
    const Image& coordsImage() const { return m_coordsImage; }

    MorphCalculationJob(const MorphCalculationJob&) = delete;
    MorphCalculationJob& operator=(const MorphCalculationJob&) = delete;

private:
    struct Token { };

public:
    MorphCalculationJob(Token, float time, Size destSize, float interpolationFactor);

private:
    void makeCoordsImage();

    Size m_destSize;
    std::vector<float> m_coords;
    std::vector<float> m_exactLastY;
    float m_interpolationFactor;
    Rect m_maxDisplacement0;
    Rect m_maxDisplacement1;
    std::atomic<bool> m_abort{false};
    Image m_track0Image;
    Image m_track1Image;
    Image m_coordsImage;
    mutable ConditionLock m_lock{JobConditionRunning};
    float m_t;
    std::atomic<float> m_progress{0.0f};
};

} // namespace plyra
