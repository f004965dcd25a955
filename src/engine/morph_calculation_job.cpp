// SPDX-License-Identifier: MIT
#include "engine/morph_calculation_job.h"

#include "platform/log.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace plyra {

namespace {

// A count formed as a float product and converted to an unsigned 32-bit integer:
// negative and undefined products give 0, products beyond the range the largest count.
std::uint32_t byteCount(float product)
{
    if (!(product > 0.0f))
        return 0;
    if (product >= 4294967296.0f)
        return std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(product);
}

} // namespace

MorphCalculationJob::Ptr MorphCalculationJob::create(float time, Size destSize, float interpolationFactor)
{
    return std::make_shared<MorphCalculationJob>(Token{}, time, destSize, interpolationFactor);
}

MorphCalculationJob::MorphCalculationJob(Token, float time, Size destSize, float interpolationFactor)
    : m_destSize(destSize)
    , m_interpolationFactor(interpolationFactor)
    , m_t(time)
{
}

GridSize MorphCalculationJob::gridSize() const
{
    return warpGridSize(m_destSize.width, m_destSize.height, m_interpolationFactor);
}

void MorphCalculationJob::setProgress(float progress)
{
    m_lock.lock();
    m_progress.store(progress, std::memory_order_relaxed);
    m_lock.unlockWithCondition(static_cast<double>(progress) >= 0.999999 ? JobConditionDone
                                                                          : JobConditionRunning);
}

bool MorphCalculationJob::isDone() const
{
    if (!m_lock.tryLockWhenCondition(JobConditionDone))
        return false;
    m_lock.unlock();
    return true;
}

void MorphCalculationJob::waitUntilDone() const
{
    m_lock.lockWhenCondition(JobConditionDone);
    m_lock.unlock();
}

void MorphCalculationJob::setTrack0Image(const Image& image)
{
    if (!(image == m_track0Image))
        m_track0Image = image;
}

void MorphCalculationJob::setTrack1Image(const Image& image)
{
    if (!(image == m_track1Image))
        m_track1Image = image;
}

void MorphCalculationJob::setMaxDisplacements(const Rect& toFirst, const Rect& toLast)
{
    m_maxDisplacement0 = toFirst;
    m_maxDisplacement1 = toLast;
}

Image MorphCalculationJob::outputImage()
{
    if (!isDone())
        return {};
    if (m_track0Image.isNull() && m_track1Image.isNull())
        return {};
    SampleCoords2Filter filter;
    filter.setDefaults();
    filter.setValue(m_track0Image, "inputImage1");
    filter.setValue(m_track1Image, "inputImage2");
    if (m_coordsImage.isNull())
        makeCoordsImage();
    if (m_coordsImage.isNull())
        return {};
    filter.setValue(m_coordsImage, "coordsImage");
    filter.setValue(std::static_pointer_cast<RegionOfInterestCalculator>(shared_from_this()),
                    "roiCalculator");
    filter.setValue(m_interpolationFactor, "resolution");
    filter.setExtent({0.0f, 0.0f, m_destSize.width, m_destSize.height});
    return filter.outputImage();
}

void MorphCalculationJob::makeCoordsImage()
{
    const GridSize grid = gridSize();
    const float nx = static_cast<float>(grid.nx);
    const float ny = static_cast<float>(grid.ny);
    const std::size_t bytes = std::min<std::size_t>(byteCount(nx * ny * 16.0f),
                                                    m_coords.size() * sizeof(float));
    const std::uint32_t bytesPerRow = byteCount(nx * 16.0f);
    std::vector<float> values(bytes / sizeof(float));
    if (!values.empty())
        std::memcpy(values.data(), m_coords.data(), values.size() * sizeof(float));
    std::vector<float>().swap(m_coords);
    std::vector<float> lastY;
    if (m_exactLastY.size() == grid.nodeCount())
        lastY.swap(m_exactLastY);
    std::vector<float>().swap(m_exactLastY);
    m_coordsImage = Image::fromFloatData(std::move(values), bytesPerRow, static_cast<int>(grid.nx),
                                         static_cast<int>(grid.ny), std::move(lastY));
    if (m_coordsImage.isNull())
        logLine(formatString("MorphCalculationJob: no coordinates image for a %u by %u grid",
                             grid.nx, grid.ny));
}

Rect MorphCalculationJob::regionOfInterest(const Image& image, const Rect& destRect,
                                           const SampleCoords2Filter& filter) const
{
    const float res = filter.resolution();
    if (image == filter.coordsImage()) {
        return {std::floor(destRect.x / res), std::floor(destRect.y / res),
                std::ceil(destRect.width / res) + 1.0f, std::ceil(destRect.height / res) + 1.0f};
    }
    auto region = [&](const Rect& d) {
        const Rect a = destRect.offsetBy(d.maxX(), d.maxY());
        const Rect b = destRect.offsetBy(d.minX(), d.minY());
        const Rect u = a.united(b);
        // Width and height are clamped as sizes, not as far edges.
        const Rect clamped{std::max(u.x, 0.0f), std::max(u.y, 0.0f), std::min(u.width, m_destSize.width),
                           std::min(u.height, m_destSize.height)};
        return clamped.insetBy(-1.0f, -1.0f);
    };
    const bool first = image == filter.inputImage1();
    const bool last = image == filter.inputImage2();
    // One picture set on both tracks is read through both fields.
    if (first && last)
        return region(m_maxDisplacement0).united(region(m_maxDisplacement1));
    return region(first ? m_maxDisplacement0 : m_maxDisplacement1);
}

} // namespace plyra
