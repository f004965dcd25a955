// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"
#include "render/frame_output.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <string>

namespace plyra {

/// What a rendered movie is saved as: a QuickTime movie (.mov), an MPEG-4 movie (.mp4),
/// a WebM movie (.webm), an animated GIF (.gif), an animated WebP (.webp) or a numbered
/// image sequence (a name with a frame number placeholder).
enum class MovieOutputKind { QuickTime, Mpeg4, WebM, AnimatedGif, AnimatedWebP, ImageSequence };

/// The numbered file names of an image sequence: "DIR/NAME_%04d.png" names frame 1
/// "DIR/NAME_0001.png". The file name (not the folder) holds exactly one "%d" or "%0Nd"
/// (N from 1 to 9), "%%" in the file name stands for a percent sign (the folder is taken
/// as it is), and the extension is a frame format's (.png, .jpg, .jpeg, .tif, .tiff).
/// Threads: a value.
class ImageSequencePattern {
public:
    /// The pattern, or none with the reason in error.
    static std::optional<ImageSequencePattern> parse(const QString& path, QString* error = nullptr);
    /// Whether the file name asks for a sequence at all (holds a "%" other than "%%").
    static bool looksLikePattern(const QString& path);

    /// The file of frame `number` (counted from 1).
    QString fileName(std::size_t number) const;
    FrameFileFormat format() const { return m_format; }

private:
    QString m_before;
    QString m_after;
    int m_digits = 0;
    FrameFileFormat m_format = FrameFileFormat::Png;
};

/// The kind of movie output a path asks for, or none (with the reason in error).
std::optional<MovieOutputKind> movieOutputKindForPath(const QString& path, QString* error = nullptr);

/// The extension of a kind's files ("mov", "mp4", "webm", "gif", "webp"); empty for a
/// sequence.
QString movieOutputExtension(MovieOutputKind kind);

/// The codec (four-character code) a render for that kind of output compresses its
/// frames with, given the codec the document asks for: a QuickTime movie takes it as it
/// is; an MPEG-4 movie is H.264 ("avc1") and a WebM movie VP9 ("vp09") whatever was
/// asked, so that browsers and phones play them; the frames of a GIF or WebP wait without
/// loss ("rle ") until the file is made from them. A sequence compresses nothing.
std::string movieCodecForOutput(MovieOutputKind kind, const std::string& asked);
/// Says in the log, once a run, that a container takes another codec than the one asked.
void noteCodecForOutput(MovieOutputKind kind, const std::string& asked);

/// The file container of a kind that is written as a movie file.
std::optional<MovieContainer> movieContainerForOutput(MovieOutputKind kind);

} // namespace plyra
