// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace plyra {

/// A view of 8-bit RGBA pixels with premultiplied alpha, as the renderer makes them: the
/// top row at `top`, the next row `stride` bytes on (negative for pictures stored bottom
/// row first).
/// Threads: a plain value; the pixels must outlive it.
struct PixelRows {
    const std::uint8_t* top = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;

    const std::uint8_t* row(int y) const { return top + static_cast<std::ptrdiff_t>(y) * stride; }
    bool isEmpty() const { return width < 1 || height < 1 || !top; }
    /// Whether every pixel is opaque, so that the alpha channel need not be stored.
    bool isOpaque() const;
};

/// The still-image encoders' ways of storing a row.
enum class StoredPixels {
    Rgb,          ///< the colour only (for opaque pictures)
    StraightRgba, ///< colour divided by alpha, as PNG stores it
    PremultipliedRgba ///< the bytes as they are, as TIFF's associated alpha stores them
};

/// Writes one row of `rows` in the stored form into `out` (width × 3 or width × 4 bytes).
void storeRow(const PixelRows& rows, int y, StoredPixels stored, std::uint8_t* out);

} // namespace plyra
