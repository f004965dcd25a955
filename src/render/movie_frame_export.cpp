// SPDX-License-Identifier: MIT
#include "render/movie_frame_export.h"

#include "platform/movie/animated_gif_writer.h"
#include "platform/movie/animated_webp_writer.h"
#include "platform/movie/movie.h"
#include "platform/movie/movie_frame_decoder.h"

#include <QCoreApplication>
#include <QFile>

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

/// When each sample of the medium starts and when the last ends, in 600ths of a second.
AnimationTiming timingOf(const MovieMedia& media)
{
    AnimationTiming timing;
    const auto in600ths = [&media](std::int64_t time) {
        return media.timeScale() == kMovieTimeScale ? time : time * kMovieTimeScale / media.timeScale();
    };
    for (std::size_t index = 0; index < media.sampleCount(); ++index)
        timing.startTimes.push_back(in600ths(media.sample(index).time));
    const MovieSample& last = media.sample(media.sampleCount() - 1);
    timing.endTime = in600ths(last.time + last.duration);
    return timing;
}

/// Decodes the medium's frames in order and writes them with `write`.
template<typename Write>
bool writeAnimation(const Movie& movie, QString* error, Write write)
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
    status = write(first->width(), first->height(), timingOf(*media), frames);
    return status.ok() || fail(error, QString::fromStdString(status.message));
}

} // namespace

bool MovieFrameExport::writeAnimatedGif(const Movie& movie, const QString& path, QString* error)
{
    return writeAnimation(movie, error, [&path](int width, int height, const AnimationTiming& timing, const auto& frames) {
        return AnimatedGifWriter::write(QFile::encodeName(path).toStdString(), width, height, timing, frames);
    });
}

bool MovieFrameExport::writeAnimatedWebp(const Movie& movie, const QString& path, int quality, QString* error)
{
    return writeAnimation(movie, error, [&path, quality](int width, int height, const AnimationTiming& timing, const auto& frames) {
        return AnimatedWebpWriter::write(QFile::encodeName(path).toStdString(), width, height, timing, quality, frames);
    });
}

} // namespace plyra
