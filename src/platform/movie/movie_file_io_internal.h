// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <memory>
#include <string>

namespace plyra {

/// Writes the tracks of a movie that hold samples into a QuickTime file, copying the
/// compressed samples as they are (no re-encoding).
/// Threads: the thread that uses the movie.
MovieStatus writeMovieFile(const Movie& movie, const std::string& path, bool fastStart);

/// Reads a movie file into a Movie whose samples refer to the file.
/// Threads: any thread; the movie it makes is the caller's.
class MovieFileReader {
public:
    static std::unique_ptr<Movie> read(const std::string& path, MovieStatus* status);
};

} // namespace plyra
