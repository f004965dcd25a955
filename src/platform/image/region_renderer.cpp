// SPDX-License-Identifier: MIT
#include "platform/image/region_renderer_internal.h"

#include "platform/image/kernel.h"
#include "platform/image/sampler_view_builder_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace plyra {
namespace {

// The pixels of `region` whose centres lie inside `extent`.
PixelRect coveredPixels(const Rect& extent, const PixelRect& region)
{
    if (extent.isNull())
        return {};
    if (extent.isInfinite())
        return region;
    // Pixel x is covered when minX <= x + 0.5 < maxX.
    const double left = std::max(std::ceil(double(extent.minX()) - 0.5), double(region.x));
    const double right = std::min(std::ceil(double(extent.maxX()) - 0.5), double(region.x) + region.width);
    const double bottom = std::max(std::ceil(double(extent.minY()) - 0.5), double(region.y));
    const double top = std::min(std::ceil(double(extent.maxY()) - 0.5), double(region.y) + region.height);
    if (right <= left || top <= bottom)
        return {};
    return {int(left), int(bottom), int(right - left), int(top - bottom)};
}

std::uint8_t* pixelAddress(std::uint8_t* out, std::ptrdiff_t bytesPerRow, const PixelRect& region, int x, int y)
{
    return out + (y - region.y) * bytesPerRow + (x - region.x) * 4;
}

// Bitmap pixel (i, j) covers [ox + i, ox + i + 1); output pixel (x, y) shows the bitmap
// pixel under its centre.
int texelUnder(int pixel, float origin)
{
    return static_cast<int>(std::floor(double(pixel) + 0.5 - double(origin)));
}

void renderBitmap(const Image& image, const PixelRect& region, std::uint8_t* out, std::ptrdiff_t bytesPerRow)
{
    const PixelRect covered = coveredPixels(image.extent(), region);
    const Bitmap& bitmap = *image.bitmap();
    for (int y = covered.y; y < covered.y + covered.height; ++y) {
        const int j = std::clamp(texelUnder(y, image.extent().y), 0, bitmap.height() - 1);
        const int i = std::clamp(texelUnder(covered.x, image.extent().x), 0, bitmap.width() - 1);
        const int count = std::min(covered.width, bitmap.width() - i);
        std::memcpy(pixelAddress(out, bytesPerRow, region, covered.x, y), bitmap.row(j) + i * 4,
                    static_cast<std::size_t>(count) * 4);
    }
}

std::uint8_t floatToByte(float value)
{
    const float clamped = std::clamp(value, 0.0f, 1.0f);
    return static_cast<std::uint8_t>(clamped * 255.0f + 0.5f);
}

void renderFloatBitmap(const Image& image, const PixelRect& region, std::uint8_t* out, std::ptrdiff_t bytesPerRow)
{
    const PixelRect covered = coveredPixels(image.extent(), region);
    const FloatBitmap& bitmap = *image.floatBitmap();
    for (int y = covered.y; y < covered.y + covered.height; ++y) {
        const int j = std::clamp(texelUnder(y, 0.0f), 0, bitmap.height() - 1);
        for (int x = covered.x; x < covered.x + covered.width; ++x) {
            const int i = std::clamp(texelUnder(x, 0.0f), 0, bitmap.width() - 1);
            const float* p = bitmap.row(j) + i * 4;
            std::uint8_t* q = pixelAddress(out, bytesPerRow, region, x, y);
            for (int c = 0; c < 4; ++c)
                q[c] = floatToByte(p[c]);
        }
    }
}

void renderKernel(const Image& image, const PixelRect& region, std::uint8_t* out, std::ptrdiff_t bytesPerRow)
{
    const KernelApplication& application = *image.kernelApplication();
    const PixelRect covered = coveredPixels(application.extent, region);
    if (covered.isEmpty())
        return;
    const Rect destRect{float(covered.x), float(covered.y), float(covered.width), float(covered.height)};

    // Scratch for this block only: views, scalars and the buffers of kernel inputs.
    SamplerViewBuilder builder(application, destRect);
    std::vector<SamplerView> views;
    std::vector<float> scalars;
    for (const KernelArgument& argument : application.arguments) {
        if (const Sampler* sampler = std::get_if<Sampler>(&argument))
            views.push_back(builder.viewFor(*sampler, static_cast<int>(views.size())));
        else
            scalars.push_back(std::get<float>(argument));
    }
    KernelCall call;
    call.output = {covered.x, covered.y, covered.width, covered.height,
                   pixelAddress(out, bytesPerRow, region, covered.x, covered.y), bytesPerRow};
    call.extent = application.extent;
    call.samplers = views;
    call.scalars = scalars;
    application.kernel->function()(call);
}

} // namespace

void renderRegion(const Image& image, const PixelRect& region, std::uint8_t* out, std::ptrdiff_t bytesPerRow)
{
    if (region.isEmpty())
        return;
    switch (image.kind()) {
    case Image::Kind::Null:
        return;
    case Image::Kind::Bitmap:
        renderBitmap(image, region, out, bytesPerRow);
        return;
    case Image::Kind::FloatBitmap:
        renderFloatBitmap(image, region, out, bytesPerRow);
        return;
    case Image::Kind::Kernel:
        renderKernel(image, region, out, bytesPerRow);
        return;
    }
}

} // namespace plyra
