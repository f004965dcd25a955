// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

namespace plyra {

/// Result codes of the movie framework. Failures inside FFmpeg carry FFmpeg's own
/// (negative) error number instead, with its text in the message.
enum MovieErrorCode : int {
    kMovieNoError = 0,
    kMovieFileError = -36,
    kMovieParamError = -50,
    kMovieMemoryError = -108,
    kMovieInvalidMedia = -2008,
    kMovieInvalidTrack = -2009,
    kMovieInvalidTime = -2015,
    kMovieNotEditable = -2030,
    kMovieCodecUnavailable = -8961,
};

/// The outcome of a movie operation: a code (0 on success) and, on failure, a message
/// that names what failed and why.
/// Threads: a plain value.
struct MovieStatus {
    int code = kMovieNoError;
    std::string message;

    bool ok() const { return code == kMovieNoError; }
    static MovieStatus success() { return {}; }
    static MovieStatus failure(int failureCode, std::string text) { return {failureCode, std::move(text)}; }
};

} // namespace plyra
