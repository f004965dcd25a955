// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

namespace plyra {

/// The most pixels an image may have: 16384 × 16384, the largest frame there is, and far
/// beyond any camera (a 100-megapixel photograph is well within). It keeps a file that
/// claims absurd dimensions (a decompression bomb) from making us allocate for them; the
/// check happens on the size the file states, before any pixel is decoded.
inline constexpr std::uint64_t kMaxImagePixels = std::uint64_t{1} << 28;

/// The largest image file read (JPEG, PNG, TIFF, WebP, BMP...): an uncompressed image of
/// kMaxImagePixels with 16 bits per channel fits.
inline constexpr std::uint64_t kMaxImageFileBytes = std::uint64_t{2} << 30;

/// The largest PDF file read: the whole file is held in memory while its page is drawn.
inline constexpr std::uint64_t kMaxPdfFileBytes = std::uint64_t{256} << 20;

/// Whether an image of that size stays within kMaxImagePixels (and is not empty).
bool imageSizeAllowed(double width, double height);

/// The reason given for an image beyond kMaxImagePixels: "the image is too large:
/// 60000 × 60000 pixels, more than the 268 million (such as 16384 × 16384) that are read".
QString tooManyPixelsReason(double width, double height);
/// The same for the first page of a PDF document, whose points are pixels at 72 dpi.
QString tooLargePageReason(double width, double height);

} // namespace plyra
