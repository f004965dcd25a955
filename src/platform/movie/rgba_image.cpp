// SPDX-License-Identifier: MIT
#include "platform/movie/rgba_image.h"

#include <algorithm>
#include <cstring>

namespace plyra {

RgbaImage::RgbaImage(int width, int height)
    : m_width(std::max(width, 0))
    , m_height(std::max(height, 0))
    , m_pixels(static_cast<size_t>(m_width) * static_cast<size_t>(m_height) * 4, 0)
{
}

RgbaImage RgbaImage::fromPixels(const uint8_t* pixels, int width, int height, size_t bytesPerRow)
{
    RgbaImage image(width, height);
    if (!pixels || image.isEmpty() || bytesPerRow < image.bytesPerRow())
        return image;
    for (int y = 0; y < image.m_height; ++y)
        std::memcpy(image.row(y), pixels + static_cast<size_t>(y) * bytesPerRow, image.bytesPerRow());
    return image;
}

RgbaImage RgbaImage::adoptPixels(std::vector<uint8_t> pixels, int width, int height)
{
    RgbaImage image;
    image.m_width = std::max(width, 0);
    image.m_height = std::max(height, 0);
    const size_t size = image.bytesPerRow() * static_cast<size_t>(image.m_height);
    if (pixels.size() < size)
        return RgbaImage(width, height);
    pixels.resize(size);
    image.m_pixels = std::move(pixels);
    return image;
}

} // namespace plyra
