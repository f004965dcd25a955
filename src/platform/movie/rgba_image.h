// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace plyra {

/// A premultiplied colour channel as straight (unassociated) alpha wants it, rounded;
/// opaque pixels keep their value and transparent ones become 0.
inline uint8_t unpremultipliedChannel(unsigned channel, unsigned alpha)
{
    if (alpha == 255)
        return static_cast<uint8_t>(channel);
    return alpha == 0 ? 0 : static_cast<uint8_t>(std::min(255u, (channel * 255u + alpha / 2) / alpha));
}

/// An owned 8-bit RGBA picture as the renderer produces it: premultiplied alpha, rows
/// stored bottom row first (origin bottom left). Movies take frames in this form and
/// give decoded frames back in it.
/// Threads: a plain value; copies are independent.
class RgbaImage {
public:
    RgbaImage() = default;
    /// A transparent black picture of that size (tightly packed rows).
    RgbaImage(int width, int height);
    /// Copies pixels laid out with the given row stride, bottom row first.
    static RgbaImage fromPixels(const uint8_t* pixels, int width, int height, size_t bytesPerRow);
    /// Takes over a buffer of tightly packed rows, bottom row first, without copying;
    /// bytes after the last row are dropped. A buffer too small gives a transparent picture.
    static RgbaImage adoptPixels(std::vector<uint8_t> pixels, int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    size_t bytesPerRow() const { return static_cast<size_t>(m_width) * 4; }
    bool isEmpty() const { return m_width <= 0 || m_height <= 0; }

    /// Row y counted from the bottom (0 is the bottom row).
    const uint8_t* row(int y) const { return m_pixels.data() + static_cast<size_t>(y) * bytesPerRow(); }
    uint8_t* row(int y) { return m_pixels.data() + static_cast<size_t>(y) * bytesPerRow(); }
    /// The four bytes R, G, B, A of the pixel at (x, y), origin bottom left.
    const uint8_t* pixel(int x, int y) const { return row(y) + static_cast<size_t>(x) * 4; }
    uint8_t* pixel(int x, int y) { return row(y) + static_cast<size_t>(x) * 4; }

    const std::vector<uint8_t>& bytes() const { return m_pixels; }

private:
    int m_width = 0;
    int m_height = 0;
    std::vector<uint8_t> m_pixels;
};

} // namespace plyra
