// SPDX-License-Identifier: MIT
#include "render/windows/movie_frame_source.h"

#include "platform/movie/movie_frame_decoder.h"
#include "render/async_movie_writer.h"

#include <algorithm>

namespace plyra {
namespace {

QImage imageFromRgba(const RgbaImage& frame)
{
    // Movie frames come bottom row first; widgets draw top row first.
    const QImage bottomUp(frame.bytes().data(), frame.width(), frame.height(), static_cast<qsizetype>(frame.bytesPerRow()),
        QImage::Format_RGBA8888_Premultiplied);
    return bottomUp.mirrored(false, true);
}

} // namespace

MovieFrameSource::MovieFrameSource() = default;

MovieFrameSource::~MovieFrameSource() = default;

void MovieFrameSource::setWriter(AsyncMovieWriter* writer)
{
    m_decoder.reset();
    m_media = nullptr;
    m_writer = writer;
    m_frameTimes.clear();
    m_duration = 0;
}

bool MovieFrameSource::refresh()
{
    if (!m_writer)
        return true;
    if (!m_writer->tryLock()) {
        m_busy = true;
        return false;
    }
    const Movie& movie = m_writer->movie();
    m_frameTimes = movie.frameTimes();
    m_duration = movie.duration().valueIn(kMovieTimeScale);
    m_writer->unlock();
    m_busy = false;
    return true;
}

std::optional<std::size_t> MovieFrameSource::frameIndexAt(std::int64_t time) const
{
    if (m_frameTimes.empty())
        return std::nullopt;
    const auto after = std::upper_bound(m_frameTimes.begin(), m_frameTimes.end(), time);
    if (after == m_frameTimes.begin())
        return 0;
    return static_cast<std::size_t>(after - m_frameTimes.begin() - 1);
}

std::optional<QImage> MovieFrameSource::decode(std::size_t index)
{
    m_busy = false;
    if (!m_writer)
        return std::nullopt;
    if (!m_writer->tryLock()) {
        m_busy = true;
        return std::nullopt;
    }
    std::optional<QImage> image;
    const MovieTrack* track = m_writer->movie().lastVideoTrack();
    const MovieMedia* media = track ? track->media() : nullptr;
    if (media != m_media) {
        m_decoder.reset();
        m_media = media;
    }
    if (m_media && index < m_media->sampleCount()) {
        if (!m_decoder)
            m_decoder = std::make_unique<MovieFrameDecoder>(*m_media);
        if (const std::optional<RgbaImage> frame = m_decoder->decode(index))
            image = imageFromRgba(*frame);
    }
    m_writer->unlock();
    return image;
}

} // namespace plyra
