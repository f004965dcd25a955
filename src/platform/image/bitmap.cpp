// SPDX-License-Identifier: MIT
#include "platform/image/bitmap.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace plyra {

Bitmap::Bitmap(int width, int height, std::size_t bytesPerRow)
    : m_width(std::max(width, 0))
    , m_height(std::max(height, 0))
    , m_bytesPerRow((std::max(bytesPerRow, static_cast<std::size_t>(m_width) * kBytesPerPixel) + 3) / 4 * 4)
    , m_pixels(m_bytesPerRow * static_cast<std::size_t>(m_height) + kSpareBytes, 0)
{
    if (m_width == 0 || m_height == 0) {
        m_width = m_height = 0;
        m_bytesPerRow = 0;
        m_pixels.clear();
    }
}

std::vector<std::uint8_t> Bitmap::releasePixels()
{
    std::vector<std::uint8_t> pixels = std::move(m_pixels);
    m_pixels.clear();
    m_width = m_height = 0;
    m_bytesPerRow = 0;
    return pixels;
}

std::array<std::uint8_t, 4> Bitmap::pixel(int x, int y) const
{
    const std::uint8_t* p = row(y) + static_cast<std::size_t>(x) * kBytesPerPixel;
    return {p[0], p[1], p[2], p[3]};
}

void Bitmap::setPixel(int x, int y, std::array<std::uint8_t, 4> rgba)
{
    std::memcpy(row(y) + static_cast<std::size_t>(x) * kBytesPerPixel, rgba.data(), 4);
}

void Bitmap::fill(std::array<std::uint8_t, 4> rgba)
{
    for (int y = 0; y < m_height; ++y)
        for (int x = 0; x < m_width; ++x)
            setPixel(x, y, rgba);
}

bool Bitmap::samePixels(const Bitmap& other) const
{
    if (m_width != other.m_width || m_height != other.m_height)
        return false;
    const std::size_t rowBytes = static_cast<std::size_t>(m_width) * kBytesPerPixel;
    for (int y = 0; y < m_height; ++y)
        if (std::memcmp(row(y), other.row(y), rowBytes) != 0)
            return false;
    return true;
}

FloatBitmap::FloatBitmap(std::vector<float> values, std::size_t floatsPerRow, int width, int height,
                         std::vector<float> fifth)
    : m_width(width)
    , m_height(height)
    , m_floatsPerRow(floatsPerRow)
    , m_values(std::move(values))
    , m_fifth(std::move(fifth))
{
}

std::array<float, 4> FloatBitmap::pixel(int x, int y) const
{
    const float* p = row(y) + static_cast<std::size_t>(x) * kFloatsPerPixel;
    return {p[0], p[1], p[2], p[3]};
}

} // namespace plyra
