// SPDX-License-Identifier: MIT
#include "engine/sample_coords_filter.h"

#include "engine/kernel_source_cache_internal.h"
#include "platform/image/sampler.h"
#include "platform/log.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plyra {
namespace {

struct ValueDescriber {
    std::string operator()(std::monostate) const { return "(null)"; }
    std::string operator()(const Image& image) const { return image.description(); }
    std::string operator()(float number) const { return formatString("%g", static_cast<double>(number)); }
    std::string operator()(const Rect& rect) const { return rect.description(); }
    std::string operator()(const std::shared_ptr<RegionOfInterestCalculator>& calculator) const
    {
        return formatString("<RegionOfInterestCalculator: %p>", static_cast<const void*>(calculator.get()));
    }
};

template <typename T>
bool assignFrom(const FilterValue& value, T& field)
{
    if (std::holds_alternative<std::monostate>(value)) {
        field = T{};
        return true;
    }
    if (const T* typed = std::get_if<T>(&value)) {
        field = *typed;
        return true;
    }
    return false;
}

/// The block of grid nodes the sampling kernels read for destRect: the nodes around
/// every pixel centre, with the node spacing W / (nx − 1) they use.
Rect nodesRead(const Rect& destRect, const Rect& extent, const Image& coordsImage)
{
    const Rect nodes = coordsImage.extent();
    if (nodes.isEmpty() || extent.isEmpty() || destRect.isNull() || destRect.isInfinite())
        return Rect::infinite();
    const double perPixelX = (nodes.width - 1.0) / double(extent.width);
    const double perPixelY = (nodes.height - 1.0) / double(extent.height);
    const double lastX = nodes.width - 1.0;
    const double lastY = nodes.height - 1.0;
    const double x0 = std::clamp(std::floor((destRect.minX() - extent.x) * perPixelX), 0.0, lastX);
    const double x1 = std::clamp(std::ceil((destRect.maxX() - extent.x) * perPixelX), x0, lastX);
    const double y0 = std::clamp(std::floor((destRect.minY() - extent.y) * perPixelY), 0.0, lastY);
    const double y1 = std::clamp(std::ceil((destRect.maxY() - extent.y) * perPixelY), y0, lastY);
    return {float(x0), float(y0), float(x1 - x0 + 1.0), float(y1 - y0 + 1.0)};
}

} // namespace

FilterAttributes SampleCoords2Filter::attributes()
{
    FilterAttributes attributes{"sampleCoords",
                                "Sample coords",
                                {kCICategoryStillImage, kCICategoryVideo, kCICategoryCompositeOperation},
                                {},
                                {}};
    for (const char* key : {"inputImage1", "inputImage2", "outputImage"})
        attributes.classes.emplace(key, std::type_index(typeid(Image)));
    attributes.scalars.emplace("resolution", ScalarAttribute{1.0f, 1.0f, 100.0f, 5.0f, 1.0f, kCIAttributeTypeScalar});
    return attributes;
}

const std::vector<std::string>& SampleCoords2Filter::inputKeys()
{
    static const std::vector<std::string> keys{"coordsImage", "inputImage1", "inputImage2",
                                               "resolution",  "extent",      "roiCalculator"};
    return keys;
}

const std::vector<std::string>& SampleCoords2Filter::outputKeys()
{
    static const std::vector<std::string> keys{"outputImage"};
    return keys;
}

void SampleCoords2Filter::setDefaults()
{
    m_resolution = 5.0f;
    m_extent = {0.0f, 0.0f, 1000.0f, 1000.0f};
}

void SampleCoords2Filter::setValue(const FilterValue& value, std::string_view key)
{
    if (key == "extent") {
        // The extent is set only through setExtent; a value given by key is reported.
        if (!std::holds_alternative<std::monostate>(value))
            logLine(std::visit(ValueDescriber{}, value));
        return;
    }
    bool stored = false;
    if (key == "coordsImage")
        stored = assignFrom(value, m_coordsImage);
    else if (key == "inputImage1")
        stored = assignFrom(value, m_inputImage1);
    else if (key == "inputImage2")
        stored = assignFrom(value, m_inputImage2);
    else if (key == "resolution")
        stored = assignFrom(value, m_resolution);
    else if (key == "roiCalculator")
        stored = assignFrom(value, m_roiCalculator);
    if (!stored)
        logLine(formatString("%s: cannot set %s for the key \"%.*s\"", description().c_str(),
                             std::visit(ValueDescriber{}, value).c_str(), static_cast<int>(key.size()), key.data()));
}

FilterValue SampleCoords2Filter::value(std::string_view key) const
{
    if (key == "coordsImage")
        return m_coordsImage;
    if (key == "inputImage1")
        return m_inputImage1;
    if (key == "inputImage2")
        return m_inputImage2;
    if (key == "resolution")
        return m_resolution;
    if (key == "extent")
        return m_extent;
    if (key == "roiCalculator")
        return m_roiCalculator;
    if (key == "outputImage")
        return outputImage();
    return std::monostate{};
}

void SampleCoords2Filter::setRoiCalculator(std::shared_ptr<RegionOfInterestCalculator> calculator)
{
    if (calculator != m_roiCalculator)
        m_roiCalculator = std::move(calculator);
}

std::string SampleCoords2Filter::kernelSource() const
{
    return KernelSourceCache::shared().source(hasBothImages());
}

void SampleCoords2Filter::setKernelSource(const std::string& source) const
{
    KernelSourceCache::shared().setSource(hasBothImages(), source);
}

void SampleCoords2Filter::setKernelSourceForOneImage(const std::string& source)
{
    KernelSourceCache::shared().setSource(false, source);
}

void SampleCoords2Filter::setKernelSourceForTwoImages(const std::string& source)
{
    KernelSourceCache::shared().setSource(true, source);
}

void SampleCoords2Filter::setKernelDirectory(const std::filesystem::path& directory)
{
    KernelSourceCache::shared().setDirectory(directory);
}

std::filesystem::path SampleCoords2Filter::kernelDirectory()
{
    return KernelSourceCache::shared().directory();
}

std::shared_ptr<const Kernel> SampleCoords2Filter::kernel() const
{
    return KernelSourceCache::shared().kernel(hasBothImages());
}

Rect SampleCoords2Filter::regionOf(int samplerIndex, const Rect& destRect, const std::shared_ptr<void>& userInfo) const
{
    const Image* image = nullptr;
    switch (samplerIndex) {
    case 0:
        image = m_inputImage1.isNull() ? &m_inputImage2 : &m_inputImage1;
        break;
    case 1:
        image = hasBothImages() ? &m_inputImage2 : &m_coordsImage;
        break;
    case 2:
        image = &m_coordsImage;
        break;
    default:
        throw InvalidArgumentException(
            formatString("[%s regionOf:%d destRect:userInfo:] called with samplerindex != 0..2",
                         description().c_str(), samplerIndex));
    }
    // userInfo is the calculator, handed over as an untyped pointer to the same object.
    const auto* calculator = static_cast<const RegionOfInterestCalculator*>(userInfo.get());
    Rect region = calculator ? calculator->regionOfInterest(*image, destRect, *this) : Rect::infinite();
    // The calculator's block of nodes assumes they lie r apart; the kernels place them
    // W / (nx − 1) apart, which can be slightly less, so the block is widened to the
    // nodes the kernels actually read.
    if (image == &m_coordsImage)
        region = region.united(nodesRead(destRect, m_extent, m_coordsImage));
    return region;
}

Image SampleCoords2Filter::outputImage() const
{
    if (m_inputImage1.isNull() && m_inputImage2.isNull())
        return {};
    std::shared_ptr<const Kernel> compiled = kernel();
    if (!compiled)
        return {};
    KernelApplication application;
    application.kernel = std::move(compiled);
    application.extent = m_extent;
    application.userInfo = std::static_pointer_cast<void>(m_roiCalculator);
    // The callback answers from a copy of this filter, so the image stays valid when the
    // filter is gone.
    auto snapshot = std::make_shared<const SampleCoords2Filter>(*this);
    application.regionOfInterest = [snapshot](int index, const Rect& rect, const std::shared_ptr<void>& info) {
        return snapshot->regionOf(index, rect, info);
    };
    const Sampler coords(m_coordsImage, Matrix{}, SamplerFilter::Nearest);
    if (hasBothImages()) {
        application.arguments = {
            Sampler(m_inputImage1, samplerMatrixFromRectToRect(m_inputImage1.extent(), m_extent), SamplerFilter::Nearest),
            Sampler(m_inputImage2, samplerMatrixFromRectToRect(m_inputImage2.extent(), m_extent), SamplerFilter::Nearest),
            coords, m_resolution};
    } else {
        const bool onlyLast = m_inputImage1.isNull();
        const Image& image = onlyLast ? m_inputImage2 : m_inputImage1;
        application.arguments = {
            Sampler(image, samplerMatrixFromRectToRect(image.extent(), m_extent), SamplerFilter::Linear), coords,
            m_resolution, onlyLast ? 1.0f : 0.0f};
    }
    return Image::fromKernel(std::move(application));
}

std::string SampleCoords2Filter::description() const
{
    return formatString("<SampleCoords2Filter: %p>", static_cast<const void*>(this));
}

Matrix samplerMatrixFromRectToRect(const Rect& from, const Rect& to)
{
    const float sx = to.width / from.width;
    const float sy = to.height / from.height;
    return {sx, 0.0f, 0.0f, sy, sx * (to.x - from.x), sy * (to.y - from.y)};
}

} // namespace plyra
