// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace plyra {

/// An 8-bit RGBA pixel buffer with premultiplied alpha, rows stored bottom row first
/// (row 0 is the bottom of the picture, origin bottom left). A new bitmap is fully
/// transparent.
/// Threads: a plain value; concurrent reads are safe, writes need one owner.
class Bitmap {
public:
    static constexpr int kBytesPerPixel = 4;
    /// Bytes kept after the last pixel, so that readers may load a pixel pair starting
    /// at the last pixel without leaving the buffer.
    static constexpr std::size_t kSpareBytes = 16;

    Bitmap() = default;
    /// A transparent bitmap; negative sizes count as zero. Rows are width × 4 bytes
    /// unless a larger bytesPerRow is given (rounded up to whole pixels).
    Bitmap(int width, int height, std::size_t bytesPerRow = 0);

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t bytesPerRow() const { return m_bytesPerRow; }
    bool isEmpty() const { return m_width == 0 || m_height == 0; }

    std::uint8_t* data() { return m_pixels.data(); }
    const std::uint8_t* data() const { return m_pixels.data(); }
    /// Row y counted from the bottom.
    std::uint8_t* row(int y) { return m_pixels.data() + static_cast<std::size_t>(y) * m_bytesPerRow; }
    const std::uint8_t* row(int y) const
    {
        return m_pixels.data() + static_cast<std::size_t>(y) * m_bytesPerRow;
    }

    /// R, G, B, A of the pixel at column x, row y (from the bottom).
    std::array<std::uint8_t, 4> pixel(int x, int y) const;
    void setPixel(int x, int y, std::array<std::uint8_t, 4> rgba);
    /// Every pixel set to one value.
    void fill(std::array<std::uint8_t, 4> rgba);

    /// Same size and the same pixels (padding bytes at the row ends are not compared).
    bool samePixels(const Bitmap& other) const;

    /// Hands the pixel buffer over (rows of bytesPerRow() bytes, bottom row first, and
    /// some spare bytes after the last row) and leaves the bitmap empty, so that a frame
    /// can move on to its next owner without a copy.
    std::vector<std::uint8_t> releasePixels();

private:
    int m_width = 0;
    int m_height = 0;
    std::size_t m_bytesPerRow = 0;
    std::vector<std::uint8_t> m_pixels;
};

/// A buffer of four 32-bit floats per pixel (RGBA order, not colours: the coordinates
/// image of the morph is one), rows bottom row first like Bitmap, optionally with a fifth
/// float per pixel kept in a plane of its own (width floats per row), for data that does
/// not fit the four channels.
/// Threads: a plain value; concurrent reads are safe.
class FloatBitmap {
public:
    static constexpr int kFloatsPerPixel = 4;

    FloatBitmap() = default;

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Distance between rows in floats (bytesPerRow / 4).
    std::size_t floatsPerRow() const { return m_floatsPerRow; }
    std::size_t bytesPerRow() const { return m_floatsPerRow * sizeof(float); }
    const float* row(int y) const { return m_values.data() + static_cast<std::size_t>(y) * m_floatsPerRow; }
    const float* data() const { return m_values.data(); }
    /// The four floats of pixel (x, y).
    std::array<float, 4> pixel(int x, int y) const;

    bool hasFifthChannel() const { return !m_fifth.empty(); }
    /// Row y of the fifth channel (width floats); only when hasFifthChannel().
    const float* fifthChannelRow(int y) const { return m_fifth.data() + static_cast<std::size_t>(y) * m_width; }

private:
    friend class Image;
    FloatBitmap(std::vector<float> values, std::size_t floatsPerRow, int width, int height, std::vector<float> fifth);

    int m_width = 0;
    int m_height = 0;
    std::size_t m_floatsPerRow = 0;
    std::vector<float> m_values;
    std::vector<float> m_fifth;
};

} // namespace plyra
