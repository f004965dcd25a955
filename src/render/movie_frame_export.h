// SPDX-License-Identifier: MIT
#pragma once

#include "render/movie_output.h"

#include <QString>

namespace plyra {

class MorphDocument;
class Movie;

/// Writes the frames of a rendered movie in the forms other than a QuickTime movie: an
/// animated GIF (AnimatedGifWriter) or a numbered image sequence. Frames are decoded
/// from the movie's last video track one at a time, so memory does not grow with the
/// number of frames. Nothing partial is ever left at an output path: the GIF and every
/// frame file are written beside their names, and the frames of a sequence are renamed
/// into place only once all of them are written.
/// Threads: the thread that holds the movie (AsyncMovieWriter::lock).
class MovieFrameExport {
public:
    /// The movie as an animated GIF at path, shown at framesPerSecond; false with the
    /// reason otherwise.
    static bool writeAnimatedGif(const Movie& movie, const QString& path, float framesPerSecond, QString* error);
    /// The movie's frames as the numbered files of pattern, frame 1 first; every name must
    /// pass the document's output check. False with the reason otherwise.
    static bool writeImageSequence(const Movie& movie, const ImageSequencePattern& pattern,
                                   const MorphDocument& document, QString* error);
};

} // namespace plyra
