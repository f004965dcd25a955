// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <map>
#include <memory>
#include <string>

struct AVFormatContext;

namespace plyra {

/// Writes the tracks of a movie that hold samples into a file of the container, copying
/// the compressed samples as they are (no re-encoding).
/// Threads: the thread that uses the movie.
MovieStatus writeMovieFile(const Movie& movie, const std::string& path, bool fastStart, MovieContainer container);

/// Reads a movie file into a Movie whose samples refer to the file.
/// Threads: any thread; the movie it makes is the caller's.
class MovieFileReader {
public:
    static std::unique_ptr<Movie> read(const std::string& path, MovieStatus* status);

private:
    using TrackMap = std::map<int, MovieTrack*>; // by stream index

    static TrackMap addTracks(const AVFormatContext& input, Movie& movie,
                              const std::shared_ptr<MovieSampleStore>& fileStore);
    /// Reads every packet into its track's samples; FFmpeg's result (AVERROR_EOF at the end).
    static int readSamples(AVFormatContext& input, const TrackMap& tracks,
                           const std::shared_ptr<MovieSampleStore>& fileStore,
                           const std::shared_ptr<MovieSampleStore>& memoryStore);
    /// Ranges and the movie's attributes from what was read.
    static void describe(Movie& movie, const TrackMap& tracks);
};

} // namespace plyra
