// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/image/geometry.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace plyra {

struct KernelApplication;

/// An immutable, lazily evaluated image: a null image (no image at all), an 8-bit RGBA
/// bitmap, a float RGBA bitmap, or a kernel applied to other images over an extent.
/// Nothing is computed until the image is rendered (renderer.h). Copies share one node,
/// and two images are equal exactly when they share it, so "is this the same image"
/// questions are cheap and never compare pixels.
/// Threads: a value; copies may be used and rendered on any thread at once.
class Image {
public:
    enum class Kind { Null, Bitmap, FloatBitmap, Kernel };

    Image() = default;

    /// A bitmap image covering (originX, originY, width, height); pixel (0, 0) covers
    /// the unit square at the origin. An empty bitmap gives a null image.
    static Image fromBitmap(Bitmap bitmap, float originX = 0.0f, float originY = 0.0f);
    /// A float RGBA image from raw floats: rows of bytesPerRow bytes (a multiple of 4, at
    /// least width × 16), bottom row first, extent (0, 0, width, height). `fifth` is either
    /// empty or a fifth channel of width × height floats, rows bottom row first. Null when
    /// the numbers do not fit the data (too little data, bad row length, empty size, a
    /// fifth channel of another size).
    static Image fromFloatData(std::vector<float> values, std::size_t bytesPerRow, int width, int height,
                               std::vector<float> fifth = {});
    /// A kernel applied to arguments (kernel.h). Null when the kernel is missing or the
    /// arguments do not match its signature.
    static Image fromKernel(KernelApplication application);

    Kind kind() const;
    bool isNull() const { return !m_node; }
    explicit operator bool() const { return m_node != nullptr; }

    /// The area where the image is defined; the null rectangle for a null image.
    Rect extent() const;

    /// The stored pixels, or null when the image is of another kind.
    const Bitmap* bitmap() const;
    const FloatBitmap* floatBitmap() const;
    const KernelApplication* kernelApplication() const;

    /// A bitmap image's pixels reduced by a box filter by 2^level in each direction
    /// (level 0 is the bitmap itself; odd edges average the pixels that exist). Built on
    /// first request and kept with the image, so every frame drawn from the same image
    /// shares it. Null for other kinds or a negative level.
    std::shared_ptr<const Bitmap> reducedLevel(int level) const;

    /// "<Image kind WxH at (x, y)>", for log lines and messages.
    std::string description() const;

    friend bool operator==(const Image& a, const Image& b) { return a.m_node == b.m_node; }

private:
    struct Node;
    explicit Image(std::shared_ptr<const Node> node);

    std::shared_ptr<const Node> m_node;
};

} // namespace plyra
