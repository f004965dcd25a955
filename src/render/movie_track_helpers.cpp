// SPDX-License-Identifier: MIT
#include "render/movie_track_helpers.h"

#include "platform/error/error_helpers.h"
#include "platform/log.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <map>

namespace plyra {
namespace {

// Unicode code points of the Mac OS Roman bytes 0x80 to 0xFF.
constexpr std::array<char32_t, 128> kMacRomanHigh{
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

/// The next code point of UTF-8 text; a damaged sequence gives U+FFFD and moves one byte.
char32_t nextCodePoint(const std::string& text, size_t& pos)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    const int length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xe ? 3 : (lead >> 3) == 0x1e ? 4 : 0;
    if (length == 0 || pos + static_cast<size_t>(length) > text.size()) {
        ++pos;
        return 0xFFFD;
    }
    char32_t code = length == 1 ? lead : lead & (0x7f >> length);
    for (int i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[pos + static_cast<size_t>(i)]);
        if ((next & 0xc0) != 0x80) {
            ++pos;
            return 0xFFFD;
        }
        code = (code << 6) | (next & 0x3f);
    }
    pos += static_cast<size_t>(length);
    return code;
}

uint8_t macRomanByte(char32_t code)
{
    if (code < 0x80)
        return static_cast<uint8_t>(code);
    const auto found = std::find(kMacRomanHigh.begin(), kMacRomanHigh.end(), code);
    return found == kMacRomanHigh.end() ? '?' : static_cast<uint8_t>(0x80 + (found - kMacRomanHigh.begin()));
}

const std::map<std::string, FourCharCode>& mediaTypeCodes()
{
    static const std::map<std::string, FourCharCode> codes{
        {kMediaTypeVideo, fourCharCode("vide")},   {kMediaTypeSound, fourCharCode("soun")},
        {kMediaTypeText, fourCharCode("text")},    {kMediaTypeBase, fourCharCode("gnrc")},
        {kMediaTypeMPEG, fourCharCode("MPEG")},    {kMediaTypeMusic, fourCharCode("musi")},
        {kMediaTypeTimeCode, fourCharCode("tmcd")}, {kMediaTypeSprite, fourCharCode("sprt")},
        {kMediaTypeFlash, fourCharCode("flsh")},   {kMediaTypeMovie, fourCharCode("moov")},
        {kMediaTypeTween, fourCharCode("twen")},   {kMediaType3D, fourCharCode("qd3d")},
        {kMediaTypeSkin, fourCharCode("skin")},
    };
    return codes;
}

const char* fileName(const char* path)
{
    const std::string_view text(path);
    const size_t slash = text.find_last_of('/');
    return slash == std::string_view::npos ? path : path + slash + 1;
}

/// Ends a track operation: an internal inconsistency naming where, carrying the status.
[[noreturn]] __attribute__((format(printf, 4, 5))) void fail(int status, const char* function, int line,
                                                             const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string reason = formatStringV(format, args);
    va_end(args);
    throw Exception::internalInconsistency(std::move(reason), function, fileName(__FILE__), line,
                                           errorWithDomain(kOSStatusErrorDomain, status));
}

int16_t truncatedPixels(float size)
{
    if (!(size > 0))
        return 0;
    return static_cast<int16_t>(std::min(std::trunc(size), 32767.0f));
}

std::shared_ptr<MovieSampleStore> memoryStore(Movie& movie, const char* function, int line)
{
    auto store = movie.sampleStore(MediaStorage::Memory);
    if (!store)
        fail(kMovieMemoryError, function, line, "NewHandle returned NULL");
    return store;
}

} // namespace

FourCharCode mediaCodeForMediaType(const std::string& mediaType)
{
    const auto& codes = mediaTypeCodes();
    if (const auto found = codes.find(mediaType); found != codes.end())
        return found->second;
    std::string bytes;
    for (size_t pos = 0; pos < mediaType.size() && bytes.size() < 4;)
        bytes += static_cast<char>(macRomanByte(nextCodePoint(mediaType, pos)));
    return fourCharCode(bytes);
}

bool isEditable(const Movie& movie)
{
    return movie.attributes().editable.value_or(false);
}

MovieTrack* addEmptyCopyOfTrack(Movie& movie, const MovieTrack& track)
{
    memoryStore(movie, __func__, __LINE__);
    MovieStatus status;
    MovieTrack* copy = movie.addEmptyTrackLike(track, MediaStorage::Memory, &status);
    if (!copy || !movie.indexOfTrack(copy))
        return nullptr;
    return copy;
}

MovieTrack* addCopyOfTrack(Movie& movie, const MovieTrack& track, const MovieTimeRange& range)
{
    MovieTrack* copy = addEmptyCopyOfTrack(movie, track);
    if (!copy)
        return nullptr;
    const MovieStatus status = copy->insertSegmentOfTrack(track, range, MovieTime::zero(movie.timeScale()));
    if (!status.ok())
        fail(status.code, __func__, __LINE__, "Error %d after InsertMediaIntoTrack", status.code);
    copy->setRange({MovieTime::zero(range.duration.scale), range.duration});
    return copy;
}

MovieTrack* addCopyOfTrack(Movie& movie, const MovieTrack& track)
{
    return addCopyOfTrack(movie, track, track.range());
}

MovieTrack* addTrackOfMediaType(Movie& movie, const std::string& mediaType, MovieSize size, int16_t volume)
{
    if (!isEditable(movie))
        fail(kMovieNotEditable, __func__, __LINE__, "Can't add a track when the movie isn't editable");
    MovieStatus status;
    MovieTrack* track = movie.newTrack({static_cast<float>(truncatedPixels(size.width)),
                                        static_cast<float>(truncatedPixels(size.height))},
                                       volume, &status);
    if (!status.ok() || !track)
        fail(status.code, __func__, __LINE__, "Error %d after NewMovieTrack", status.code);
    auto store = memoryStore(movie, __func__, __LINE__);
    status = track->newMedia(mediaCodeForMediaType(mediaType), movie.timeScale(), MediaStorage::Memory, store);
    if (!status.ok())
        fail(status.code, __func__, __LINE__, "Error %d after NewTrackMedia", status.code);
    if (!track->media())
        fail(kMovieInvalidMedia, __func__, __LINE__, "NewTrackMedia returned NULL");
    status = track->insertMedia(0, 0, movie.duration().valueIn(movie.timeScale()), 1.0);
    if (!status.ok())
        fail(status.code, __func__, __LINE__, "Error %d after InsertMediaIntoTrack", status.code);
    if (!movie.indexOfTrack(track))
        raiseError(errorWithDomain(kOSStatusErrorDomain, kMovieInvalidTrack), "-[QTTrack trackWithQuickTimeTrack:] failed");
    return track;
}

} // namespace plyra
