// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace plyra {

class Movie;

/// Makes the animated forms of a rendered movie: an animated GIF (AnimatedGifWriter) or
/// an animated WebP (AnimatedWebpWriter), each frame lasting as long as in the movie.
/// Frames are decoded from the movie's last video track one at a time, so memory does not
/// grow with the number of frames. Nothing partial is ever left at an output path: the
/// file is written beside its name and renamed into place once complete.
/// Threads: the thread that holds the movie (AsyncMovieWriter::lock).
class MovieFrameExport {
public:
    /// The movie as an animated GIF at path; false with the reason otherwise.
    static bool writeAnimatedGif(const Movie& movie, const QString& path, QString* error);
    /// The movie as an animated WebP at path, at the quality (0–1023, the highest
    /// lossless); false with the reason otherwise.
    static bool writeAnimatedWebp(const Movie& movie, const QString& path, int quality, QString* error);
};

} // namespace plyra
