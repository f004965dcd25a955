// SPDX-License-Identifier: MIT
#include "editor/image_pyramid.h"

#include <QtGlobal>

namespace plyra {
namespace {

QImage fastFormat(const QImage& source)
{
    // The formats that the raster engine draws fastest and that halve() reads.
    const QImage::Format format = source.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    return source.format() == format ? source : source.convertToFormat(format);
}

// The average of four 32-bit pixels, channel by channel, rounded.
inline quint32 average4(quint32 a, quint32 b, quint32 c, quint32 d)
{
    constexpr quint32 mask = 0x00FF00FFu;
    const quint32 rb = (a & mask) + (b & mask) + (c & mask) + (d & mask) + 0x00020002u;
    const quint32 ag = ((a >> 8) & mask) + ((b >> 8) & mask) + ((c >> 8) & mask) + ((d >> 8) & mask) + 0x00020002u;
    return ((rb >> 2) & mask) | (((ag >> 2) & mask) << 8);
}

} // namespace

ImagePyramid::ImagePyramid(const QImage& source)
{
    m_levels.push_back(fastFormat(source));
}

const QImage& ImagePyramid::levelFor(QSize target)
{
    std::size_t level = 0;
    for (;;) {
        const QImage& current = m_levels[level];
        const QSize next(current.width() / 2, current.height() / 2);
        if (next.width() < qMax(1, target.width()) || next.height() < qMax(1, target.height()))
            return m_levels[level];
        if (level + 1 == m_levels.size())
            m_levels.push_back(halve(current));
        ++level;
    }
}

QImage ImagePyramid::halve(const QImage& image)
{
    const int width = image.width() / 2;
    const int height = image.height() / 2;
    QImage result(width, height, image.format());
    for (int y = 0; y < height; ++y) {
        const auto* row0 = reinterpret_cast<const quint32*>(image.constScanLine(2 * y));
        const auto* row1 = reinterpret_cast<const quint32*>(image.constScanLine(2 * y + 1));
        auto* out = reinterpret_cast<quint32*>(result.scanLine(y));
        for (int x = 0; x < width; ++x)
            out[x] = average4(row0[2 * x], row0[2 * x + 1], row1[2 * x], row1[2 * x + 1]);
    }
    return result;
}

} // namespace plyra
