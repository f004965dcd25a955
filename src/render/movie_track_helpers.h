// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <string>

namespace plyra {

/// Media-type names that addTrackOfMediaType() knows, with their four-character codes
/// in brackets.
inline constexpr const char* kMediaTypeVideo = "video";        // "vide"
inline constexpr const char* kMediaTypeSound = "sound";        // "soun"
inline constexpr const char* kMediaTypeText = "text";          // "text"
inline constexpr const char* kMediaTypeBase = "base";          // "gnrc"
inline constexpr const char* kMediaTypeMPEG = "mpeg";          // "MPEG"
inline constexpr const char* kMediaTypeMusic = "music";        // "musi"
inline constexpr const char* kMediaTypeTimeCode = "timecode";  // "tmcd"
inline constexpr const char* kMediaTypeSprite = "sprite";      // "sprt"
inline constexpr const char* kMediaTypeFlash = "flash";        // "flsh"
inline constexpr const char* kMediaTypeMovie = "movie";        // "moov"
inline constexpr const char* kMediaTypeTween = "tween";        // "twen"
inline constexpr const char* kMediaType3D = "3d";              // "qd3d"
inline constexpr const char* kMediaTypeSkin = "skin";          // "skin"

/// The media code of a media-type name: the table above, otherwise the name's first four
/// bytes in the Mac OS Roman encoding (characters it lacks become '?'), most significant
/// first, padded with zero bytes.
FourCharCode mediaCodeForMediaType(const std::string& mediaType);

// Track operations on a movie. The framework's failures end them with a plyra::Exception
// (an internal inconsistency naming the function and line, carrying the status as an
// error of the "NSOSStatusErrorDomain" domain), as described with each.
// Threads: the thread that uses the movie.

/// The movie's editable attribute; false when it has none.
bool isEditable(const Movie& movie);

/// A new, empty track of `movie` shaped like `track` (media type, codec, size, volume) with
/// in-memory media; null when the movie refuses. Throws "NewHandle returned NULL".
MovieTrack* addEmptyCopyOfTrack(Movie& movie, const MovieTrack& track);

/// A new track holding `range` of `track` (movie time of the track's own movie), placed at
/// time 0, with the range 0 to the range's duration; null when no empty copy can be made.
MovieTrack* addCopyOfTrack(Movie& movie, const MovieTrack& track, const MovieTimeRange& range);
/// The same over the track's whole range.
MovieTrack* addCopyOfTrack(Movie& movie, const MovieTrack& track);

/// A new track of that media type, size (truncated to whole pixels) and volume, with empty
/// in-memory media spanning the movie's duration. Throws "Can't add a track when the movie
/// isn't editable", "Error %d after NewMovieTrack", "NewHandle returned NULL",
/// "Error %d after NewTrackMedia", "NewTrackMedia returned NULL",
/// "Error %d after InsertMediaIntoTrack", or, as a generic exception carrying the error,
/// "-[QTTrack trackWithQuickTimeTrack:] failed".
MovieTrack* addTrackOfMediaType(Movie& movie, const std::string& mediaType, MovieSize size, int16_t volume);

} // namespace plyra
