// SPDX-License-Identifier: MIT
#include "platform/stills/pixel_rows.h"

#include <algorithm>
#include <cstring>

namespace plyra {

bool PixelRows::isOpaque() const
{
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* p = row(y) + 3;
        for (int x = 0; x < width; ++x, p += 4)
            if (*p != 255)
                return false;
    }
    return true;
}

void storeRow(const PixelRows& rows, int y, StoredPixels stored, std::uint8_t* out)
{
    const std::uint8_t* in = rows.row(y);
    switch (stored) {
    case StoredPixels::PremultipliedRgba:
        std::memcpy(out, in, static_cast<std::size_t>(rows.width) * 4);
        return;
    case StoredPixels::Rgb:
        for (int x = 0; x < rows.width; ++x, in += 4, out += 3)
            std::memcpy(out, in, 3);
        return;
    case StoredPixels::StraightRgba:
        for (int x = 0; x < rows.width; ++x, in += 4, out += 4) {
            const unsigned alpha = in[3];
            // Rounded, so that multiplying by alpha again gives back the very bytes.
            for (int c = 0; c < 3; ++c)
                out[c] = alpha == 255 ? in[c]
                    : alpha == 0      ? 0
                                      : static_cast<std::uint8_t>(std::min(255u, (in[c] * 255u + alpha / 2) / alpha));
            out[3] = static_cast<std::uint8_t>(alpha);
        }
        return;
    }
}

} // namespace plyra
