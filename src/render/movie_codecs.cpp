// SPDX-License-Identifier: MIT
#include "render/movie_codecs.h"

#include <cmath>

namespace plyra {

std::int64_t frameDurationValue(float framesPerSecond)
{
    const double value = 600.0 / static_cast<double>(framesPerSecond);
    return std::isfinite(value) ? static_cast<std::int64_t>(std::trunc(value)) : 0;
}

std::int64_t movieDurationValue(std::uint32_t numberOfFrames, float framesPerSecond)
{
    const double value = static_cast<double>(numberOfFrames) * 600.0 / static_cast<double>(framesPerSecond);
    return std::isfinite(value) ? static_cast<std::int64_t>(std::trunc(value)) : 0;
}

bool isKnownCodec(const std::string& code)
{
    for (const CodecChoice& choice : kCodecChoices)
        if (code == choice.code)
            return true;
    return false;
}

} // namespace plyra
