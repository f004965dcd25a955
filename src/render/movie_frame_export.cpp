// SPDX-License-Identifier: MIT
#include "render/movie_frame_export.h"

#include "platform/atomic_file_writer.h"
#include "platform/movie/animated_gif_writer.h"
#include "platform/movie/movie.h"
#include "platform/movie/movie_frame_decoder.h"
#include "platform/side_file.h"
#include "render/output_path_check.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

namespace plyra {
namespace {

bool fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

const MovieMedia* videoMedia(const Movie& movie)
{
    const MovieTrack* track = movie.lastVideoTrack();
    return track ? track->media() : nullptr;
}

/// A decoded frame (premultiplied, bottom row first) as an image, top row first.
QImage imageFromFrame(const RgbaImage& frame)
{
    QImage image(frame.width(), frame.height(), QImage::Format_RGBA8888_Premultiplied);
    for (int y = 0; y < frame.height(); ++y)
        std::memcpy(image.scanLine(frame.height() - 1 - y), frame.row(y), frame.bytesPerRow());
    return image;
}

/// Writes bytes into a side file beside target; the side file, or none with the reason.
std::unique_ptr<SideFile> writeBeside(const QString& target, const QByteArray& bytes, QString* error)
{
    std::string reason;
    std::unique_ptr<SideFile> side = AtomicFileWriter::stage(QFile::encodeName(target).toStdString(), bytes.constData(),
                                                             static_cast<std::size_t>(bytes.size()), &reason);
    if (!side)
        fail(error, QCoreApplication::translate("MovieFrameExport", "cannot write '%1': %2").arg(target, QString::fromStdString(reason)));
    return side;
}

/// One finished frame file waiting beside its name.
struct StagedFrame {
    std::unique_ptr<SideFile> side;
    std::string target;
};

} // namespace

bool MovieFrameExport::writeAnimatedGif(const Movie& movie, const QString& path, float framesPerSecond, QString* error)
{
    const MovieMedia* media = videoMedia(movie);
    if (!media || media->sampleCount() == 0)
        return fail(error, QCoreApplication::translate("MovieFrameExport", "the movie has no frames"));
    MovieFrameDecoder decoder(*media);
    MovieStatus status;
    const std::optional<RgbaImage> first = decoder.decode(0, &status);
    if (!first)
        return fail(error, QString::fromStdString(status.message));
    const auto frames = [&decoder](std::size_t index, MovieStatus* frameStatus) { return decoder.decode(index, frameStatus); };
    status = AnimatedGifWriter::write(QFile::encodeName(path).toStdString(), first->width(), first->height(),
                                      media->sampleCount(), framesPerSecond, frames);
    return status.ok() || fail(error, QString::fromStdString(status.message));
}

bool MovieFrameExport::writeImageSequence(const Movie& movie, const ImageSequencePattern& pattern,
                                          const MorphDocument& document, QString* error)
{
    const MovieMedia* media = videoMedia(movie);
    if (!media || media->sampleCount() == 0)
        return fail(error, QCoreApplication::translate("MovieFrameExport", "the movie has no frames"));
    MovieFrameDecoder decoder(*media);
    std::vector<StagedFrame> staged;
    for (std::size_t index = 0; index < media->sampleCount(); ++index) {
        const QString name = pattern.fileName(index + 1);
        QString target;
        QString refusal;
        if (!checkOutputPath(document, name, &target, &refusal))
            return fail(error, QCoreApplication::translate("MovieFrameExport", "cannot write '%1': %2").arg(name, refusal));
        MovieStatus status;
        const std::optional<RgbaImage> frame = decoder.decode(index, &status);
        if (!frame)
            return fail(error, QString::fromStdString(status.message));
        const QByteArray bytes = encodeFrame(imageFromFrame(*frame), pattern.format(), error);
        std::unique_ptr<SideFile> side = bytes.isEmpty() ? nullptr : writeBeside(target, bytes, error);
        if (!side)
            return false;
        staged.push_back({std::move(side), QFile::encodeName(target).toStdString()});
    }
    // Every frame is complete: only now does any of them take its name.
    for (StagedFrame& frame : staged)
        if (!frame.side->commit(frame.target))
            return fail(error, QCoreApplication::translate("MovieFrameExport", "cannot move the frame into place at '%1': %2")
                                   .arg(QFile::decodeName(frame.target.c_str()), QString::fromLocal8Bit(std::strerror(errno))));
    return true;
}

} // namespace plyra
