// SPDX-License-Identifier: MIT
#include "platform/image/sampler_view_builder_internal.h"

#include "platform/image/region_renderer_internal.h"

#include <algorithm>
#include <cmath>

namespace plyra {
namespace {

// One transparent pixel, with spare bytes like a Bitmap for readers of pixel pairs.
alignas(8) constexpr std::uint8_t kTransparentPixel[16] = {};

// Maps image space to texel coordinates of a level: texel (i, j) of level L covers image
// pixels [2^L·i, 2^L·(i + 1)) from the extent's origin and is centred on (i, j).
Matrix imageToTexel(const Rect& extent, int level)
{
    const float scale = 1.0f / float(1 << level);
    return Matrix{1.0f, 0.0f, 0.0f, 1.0f, -extent.x, -extent.y}.then(
        Matrix{scale, 0.0f, 0.0f, scale, -0.5f, -0.5f});
}

// The texels that bilinear or nearest reads for the points of roi (in sampler space)
// need, clipped to bounds; never empty, so clamped reads always find a pixel.
PixelRect texelBlock(const Matrix& toTexel, const Rect& roi, const PixelRect& bounds)
{
    if (roi.isInfinite())
        return bounds;
    double left = bounds.x;
    double right = bounds.x;
    double bottom = bounds.y;
    double top = bounds.y;
    if (!roi.isNull()) {
        const Rect mapped = toTexel.mapRect(roi);
        left = std::floor(double(mapped.minX()));
        right = std::floor(double(mapped.maxX())) + 1.0;
        bottom = std::floor(double(mapped.minY()));
        top = std::floor(double(mapped.maxY())) + 1.0;
    }
    const double lastX = double(bounds.x) + bounds.width - 1;
    const double lastY = double(bounds.y) + bounds.height - 1;
    const int x0 = int(std::clamp(left, double(bounds.x), lastX));
    const int x1 = int(std::clamp(right, double(x0), lastX));
    const int y0 = int(std::clamp(bottom, double(bounds.y), lastY));
    const int y1 = int(std::clamp(top, double(y0), lastY));
    return {x0, y0, x1 - x0 + 1, y1 - y0 + 1};
}

SamplerView transparentView(const Sampler& sampler)
{
    SamplerView view;
    view.filter = sampler.filter();
    view.bytes = kTransparentPixel;
    view.bytesPerRow = 4;
    view.width = view.height = view.levelWidth = view.levelHeight = 1;
    return view;
}

} // namespace

SamplerViewBuilder::SamplerViewBuilder(const KernelApplication& application, const Rect& destRect)
    : m_application(application)
    , m_destRect(destRect)
{
}

int SamplerViewBuilder::levelFor(const Matrix& matrix, int width, int height)
{
    const double scale = std::max(std::hypot(double(matrix.m11), double(matrix.m12)),
                                  std::hypot(double(matrix.m21), double(matrix.m22)));
    if (!(scale > 0.0) || !std::isfinite(scale))
        return 0;
    const int level = int(std::floor(std::log2(1.0 / scale) + 0.5));
    int maxLevel = 0;
    while ((std::max(width, height) >> maxLevel) > 1)
        ++maxLevel;
    return std::clamp(level, 0, maxLevel);
}

Rect SamplerViewBuilder::regionOfInterest(int samplerIndex) const
{
    if (!m_application.regionOfInterest)
        return Rect::infinite();
    return m_application.regionOfInterest(samplerIndex, m_destRect, m_application.userInfo);
}

SamplerView SamplerViewBuilder::viewFor(const Sampler& sampler, int samplerIndex)
{
    switch (sampler.image().kind()) {
    case Image::Kind::Bitmap:
        return bitmapView(sampler, regionOfInterest(samplerIndex));
    case Image::Kind::FloatBitmap:
        return floatBitmapView(sampler, regionOfInterest(samplerIndex));
    case Image::Kind::Kernel:
        return kernelImageView(sampler, regionOfInterest(samplerIndex));
    case Image::Kind::Null:
        break;
    }
    return transparentView(sampler);
}

SamplerView SamplerViewBuilder::bitmapView(const Sampler& sampler, const Rect& roi)
{
    const Image& image = sampler.image();
    const int level = levelFor(sampler.matrix(), image.bitmap()->width(), image.bitmap()->height());
    std::shared_ptr<const Bitmap> pixels = image.reducedLevel(level);
    m_buffers.push_back(pixels);

    SamplerView view;
    view.filter = sampler.filter();
    view.level = level;
    view.levelWidth = pixels->width();
    view.levelHeight = pixels->height();
    view.toTexel = sampler.matrix().inverted().then(imageToTexel(image.extent(), level));
    const PixelRect block = texelBlock(view.toTexel, roi, {0, 0, view.levelWidth, view.levelHeight});
    view.originX = block.x;
    view.originY = block.y;
    view.width = block.width;
    view.height = block.height;
    view.bytesPerRow = static_cast<std::ptrdiff_t>(pixels->bytesPerRow());
    view.bytes = pixels->row(block.y) + block.x * 4;
    return view;
}

SamplerView SamplerViewBuilder::floatBitmapView(const Sampler& sampler, const Rect& roi) const
{
    const FloatBitmap& pixels = *sampler.image().floatBitmap();
    SamplerView view;
    view.format = SamplerView::Format::RgbaFloat;
    view.filter = sampler.filter();
    view.levelWidth = pixels.width();
    view.levelHeight = pixels.height();
    view.toTexel = sampler.matrix().inverted().then(imageToTexel(sampler.image().extent(), 0));
    const PixelRect block = texelBlock(view.toTexel, roi, {0, 0, view.levelWidth, view.levelHeight});
    view.originX = block.x;
    view.originY = block.y;
    view.width = block.width;
    view.height = block.height;
    view.bytesPerRow = static_cast<std::ptrdiff_t>(pixels.bytesPerRow());
    view.floats = pixels.row(block.y) + block.x * 4;
    if (pixels.hasFifthChannel()) {
        view.fifth = pixels.fifthChannelRow(block.y) + block.x;
        view.fifthPerRow = pixels.width();
    }
    return view;
}

SamplerView SamplerViewBuilder::kernelImageView(const Sampler& sampler, const Rect& roi)
{
    const Image& image = sampler.image();
    const Matrix toTexel = sampler.matrix().inverted().then(Matrix{1.0f, 0.0f, 0.0f, 1.0f, -0.5f, -0.5f});
    // The input's own pixels: those its extent covers, or, for an input defined
    // everywhere, those the region (or failing that the block itself) asks for.
    Rect bounds = image.extent();
    if (bounds.isInfinite())
        bounds = sampler.matrix().inverted().mapRect(roi.isInfinite() ? m_destRect : roi).insetBy(-2.0f, -2.0f);
    const Rect pixels = bounds.integral();
    if (pixels.isEmpty())
        return transparentView(sampler);
    const PixelRect boundsBlock{int(pixels.x), int(pixels.y), int(pixels.width), int(pixels.height)};
    const PixelRect block = texelBlock(toTexel, roi, boundsBlock);

    auto buffer = std::make_shared<Bitmap>(block.width, block.height);
    renderRegion(image, block, buffer->data(), static_cast<std::ptrdiff_t>(buffer->bytesPerRow()));
    m_buffers.push_back(buffer);

    SamplerView view;
    view.filter = sampler.filter();
    view.toTexel = toTexel;
    view.originX = block.x;
    view.originY = block.y;
    view.width = view.levelWidth = block.width;
    view.height = view.levelHeight = block.height;
    view.bytesPerRow = static_cast<std::ptrdiff_t>(buffer->bytesPerRow());
    view.bytes = buffer->data();
    return view;
}

} // namespace plyra
