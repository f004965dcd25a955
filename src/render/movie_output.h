// SPDX-License-Identifier: MIT
#pragma once

#include "render/frame_output.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace plyra {

/// What a rendered movie is saved as: a QuickTime movie (.mov), an animated GIF (.gif)
/// or a numbered image sequence (a name with a frame number placeholder).
enum class MovieOutputKind { QuickTime, AnimatedGif, ImageSequence };

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

} // namespace plyra
