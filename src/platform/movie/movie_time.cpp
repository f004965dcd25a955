// SPDX-License-Identifier: MIT
#include "platform/movie/movie_time.h"

namespace plyra {
namespace {

// 128-bit intermediates: value × scale of a long movie overflows 64 bits.
__extension__ typedef __int128 Wide;

} // namespace

double MovieTime::seconds() const
{
    return scale > 0 ? static_cast<double>(value) / scale : 0.0;
}

int64_t MovieTime::valueIn(int32_t timeScale) const
{
    if (scale == timeScale || scale <= 0)
        return value;
    const Wide scaled = static_cast<Wide>(value) * timeScale;
    return static_cast<int64_t>(scaled / scale);
}

MovieTime MovieTime::convertedTo(int32_t timeScale) const
{
    return {valueIn(timeScale), timeScale, flags};
}

bool operator==(const MovieTime& a, const MovieTime& b)
{
    if (a.isIndefinite() || b.isIndefinite())
        return a.isIndefinite() == b.isIndefinite();
    return static_cast<Wide>(a.value) * b.scale == static_cast<Wide>(b.value) * a.scale;
}

bool operator<(const MovieTime& a, const MovieTime& b)
{
    if (a.isIndefinite() || b.isIndefinite())
        return !a.isIndefinite() && b.isIndefinite();
    return static_cast<Wide>(a.value) * b.scale < static_cast<Wide>(b.value) * a.scale;
}

MovieTime MovieTimeRange::end() const
{
    return {time.value + duration.valueIn(time.scale), time.scale, time.flags | duration.flags};
}

bool operator==(const MovieTimeRange& a, const MovieTimeRange& b)
{
    return a.time == b.time && a.duration == b.duration;
}

FourCharCode fourCharCode(std::string_view text)
{
    FourCharCode code = 0;
    for (size_t i = 0; i < 4; ++i) {
        const auto byte = i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
        code = (code << 8) | byte;
    }
    return code;
}

std::string fourCharCodeString(FourCharCode code)
{
    std::string text(4, ' ');
    for (int i = 0; i < 4; ++i) {
        const auto byte = static_cast<char>((code >> (24 - 8 * i)) & 0xff);
        text[static_cast<size_t>(i)] = byte == 0 ? ' ' : byte;
    }
    return text;
}

} // namespace plyra
