// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>

#include <vector>

namespace plyra {

/// An image and its halved copies, made on demand (each level averages 2 × 2 pixels of
/// the one above), so that a view can be drawn from a level at most twice its size
/// instead of from a 24-megapixel photo.
/// Threads: one thread at a time.
class ImagePyramid {
public:
    explicit ImagePyramid(const QImage& source);

    /// The smallest level that is still at least target in both directions; the full
    /// image when even that is smaller.
    const QImage& levelFor(QSize target);
    int levelCount() const { return static_cast<int>(m_levels.size()); }

    /// Halves a 32-bit image (RGB32 or premultiplied ARGB32) by averaging 2 × 2 pixels;
    /// an odd last row or column is dropped.
    static QImage halve(const QImage& image);

private:
    std::vector<QImage> m_levels;
};

} // namespace plyra
