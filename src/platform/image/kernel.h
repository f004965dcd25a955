// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/geometry.h"
#include "platform/image/image.h"
#include "platform/image/sampler.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace plyra {

/// The kinds of argument a kernel takes.
enum class KernelArgumentType { Sampler, Float };

using KernelArgument = std::variant<Sampler, float>;

/// One sampler's pixels over the region of interest of one tile, as a kernel reads them.
///
/// Texel coordinates: the stored pixel with level index (i, j) is centred on (i, j), so a
/// point (u, v) lies between texels floor(u) and floor(u) + 1. toTexel maps a point of the
/// sampler's space (output pixels; the centre of output pixel (x, y) is (x + 0.5, y + 0.5))
/// to texel coordinates of the level that is stored. Only texels originX … originX +
/// width − 1 and originY … originY + height − 1 are stored; reads clamp into that block,
/// which at the image's edges is exactly the sampler's edge clamping.
/// Threads: valid during one kernel call; read-only.
struct SamplerView {
    enum class Format { Rgba8, RgbaFloat };

    Format format = Format::Rgba8;
    SamplerFilter filter = SamplerFilter::Nearest;
    /// Pixel (originX, originY): four bytes (premultiplied RGBA) or four floats per pixel.
    const std::uint8_t* bytes = nullptr;
    const float* floats = nullptr;
    /// Distance between stored rows, in bytes.
    std::ptrdiff_t bytesPerRow = 0;
    /// The fifth channel of a float image at texel (originX, originY), rows
    /// fifthPerRow floats apart; null when the image has none.
    const float* fifth = nullptr;
    std::ptrdiff_t fifthPerRow = 0;
    int originX = 0;
    int originY = 0;
    int width = 0;
    int height = 0;
    /// Size of the whole level (the image at 1 / 2^level), in texels.
    int levelWidth = 0;
    int levelHeight = 0;
    int level = 0;
    Matrix toTexel;

    int clampX(int i) const { return i < originX ? originX : (i >= originX + width ? originX + width - 1 : i); }
    int clampY(int j) const { return j < originY ? originY : (j >= originY + height ? originY + height - 1 : j); }
    /// The 8-bit pixel at texel (i, j), clamped into the stored block.
    const std::uint8_t* rgba8(int i, int j) const
    {
        return bytes + (clampY(j) - originY) * bytesPerRow + (clampX(i) - originX) * 4;
    }
    /// The float pixel at texel (i, j), clamped into the stored block.
    const float* rgbaFloat(int i, int j) const
    {
        return floats + (clampY(j) - originY) * (bytesPerRow / std::ptrdiff_t(sizeof(float)))
            + (clampX(i) - originX) * 4;
    }
    /// The fifth channel at texel (i, j), clamped into the stored block; only when fifth
    /// is set.
    float fifthChannel(int i, int j) const { return fifth[(clampY(j) - originY) * fifthPerRow + (clampX(i) - originX)]; }
    /// The pixel at sampler-space point (x, y), read with the view's filter, as four
    /// floats in 0…255 for 8-bit images. A straightforward reader for kernels that need
    /// no speed.
    std::array<float, 4> sample(float x, float y) const;
};

/// Where a kernel writes one tile: 8-bit premultiplied RGBA, output pixels x … x + width − 1
/// and y … y + height − 1 (y up); `pixels` points at pixel (x, y), the next row up lies
/// bytesPerRow further.
struct KernelOutput {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::uint8_t* pixels = nullptr;
    std::ptrdiff_t bytesPerRow = 0;

    std::uint8_t* at(int px, int py) const { return pixels + (py - y) * bytesPerRow + (px - x) * 4; }
};

/// Everything a native kernel gets for one tile.
struct KernelCall {
    KernelOutput output;
    /// The application's definition (its extent), in output pixels.
    Rect extent;
    /// The sampler arguments, in argument order.
    std::span<const SamplerView> samplers;
    /// The float arguments, in argument order.
    std::span<const float> scalars;
};

/// A native kernel: renders a whole tile at once. It must write every pixel of the tile
/// and read its samplers only within the regions of interest it declared.
using KernelFunction = std::function<void(const KernelCall&)>;

/// The region of sampler number samplerIndex (counted among the sampler arguments only),
/// in that sampler's space, that the kernel reads to produce destRect.
using RegionOfInterestCallback =
    std::function<Rect(int samplerIndex, const Rect& destRect, const std::shared_ptr<void>& userInfo)>;

/// A compiled kernel: a name, its argument list and the native function that runs it.
/// Threads: immutable; shared freely.
class Kernel {
public:
    Kernel(std::string name, std::vector<KernelArgumentType> signature, KernelFunction function);

    const std::string& name() const { return m_name; }
    const std::vector<KernelArgumentType>& signature() const { return m_signature; }
    const KernelFunction& function() const { return m_function; }
    /// Whether the arguments have the kinds of the signature, in order.
    bool accepts(const std::vector<KernelArgument>& arguments) const;

private:
    std::string m_name;
    std::vector<KernelArgumentType> m_signature;
    KernelFunction m_function;
};

/// A kernel applied to arguments over an extent (its "definition"): the recipe of a
/// kernel image. userInfo travels with the image and is handed to the region-of-interest
/// callback; holding it is how an image keeps alive the object that answers for it.
/// Without a callback every sampler is read over its whole extent.
struct KernelApplication {
    std::shared_ptr<const Kernel> kernel;
    std::vector<KernelArgument> arguments;
    Rect extent;
    RegionOfInterestCallback regionOfInterest;
    std::shared_ptr<void> userInfo;
};

} // namespace plyra
