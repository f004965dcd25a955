// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/image/image.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace plyra::test {

/// One grid node as the warp field stores it, before packing.
struct NodeSample {
    float firstX;
    float firstY;
    float lastX;
    float lastY;
    float dissolve;
};

/// A coordinates image of nx × ny nodes for a W × H frame, built by hand: node (i, j)
/// lies at (i·W/(nx − 1), j·H/(ny − 1)) and `node` says what it holds there. The fourth
/// float packs floor(lastY) + 0.5·dissolve, as the warp field does; with exactLastY the
/// image also carries the unrounded lastY as its fifth channel, as a job's does.
inline Image makeCoords(int nx, int ny, float width, float height,
                        const std::function<NodeSample(float x, float y)>& node, bool exactLastY = false)
{
    std::vector<float> values(static_cast<std::size_t>(nx * ny * 4));
    std::vector<float> fifth;
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
            const float x = float(i) * width / float(nx - 1);
            const float y = float(j) * height / float(ny - 1);
            const NodeSample s = node(x, y);
            float* p = &values[static_cast<std::size_t>((j * nx + i) * 4)];
            p[0] = s.firstX;
            p[1] = s.firstY;
            p[2] = s.lastX;
            p[3] = float(double(std::floor(s.lastY)) + 0.5 * double(s.dissolve));
            if (exactLastY)
                fifth.push_back(s.lastY);
        }
    return Image::fromFloatData(std::move(values), static_cast<std::size_t>(nx) * 16, nx, ny, std::move(fifth));
}

/// Every node at its own position in both images, with one dissolve factor.
inline Image identityCoords(int nx, int ny, float width, float height, float dissolve, bool exactLastY = false)
{
    return makeCoords(nx, ny, width, height, [dissolve](float x, float y) {
        return NodeSample{x, y, x, y, dissolve};
    }, exactLastY);
}

/// An opaque bitmap whose pixels are given by a function of (x, y).
inline Bitmap patternBitmap(int width, int height,
                            const std::function<std::array<std::uint8_t, 4>(int x, int y)>& pixel)
{
    Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.setPixel(x, y, pixel(x, y));
    return bitmap;
}

/// An opaque bitmap with a different colour at every pixel of a small image.
inline Bitmap textureBitmap(int width, int height)
{
    return patternBitmap(width, height, [](int x, int y) {
        return std::array<std::uint8_t, 4>{std::uint8_t(x * 7 + y * 3), std::uint8_t(y * 11 + 5),
                                           std::uint8_t((x * y) ^ 0x5a), 255};
    });
}

inline Bitmap uniformBitmap(int width, int height, std::array<std::uint8_t, 4> rgba)
{
    Bitmap bitmap(width, height);
    bitmap.fill(rgba);
    return bitmap;
}

} // namespace plyra::test
