// SPDX-License-Identifier: MIT
#include "render/windows/movie_frame_fetcher.h"

#include "platform/movie/movie_frame_decoder.h"
#include "render/async_movie_writer.h"

namespace plyra {

MovieFrameFetcher::MovieFrameFetcher(QObject* parent)
    : QObject(parent)
    , m_thread([this] { run(); })
{
}

MovieFrameFetcher::~MovieFrameFetcher()
{
    {
        std::lock_guard guard(m_mutex);
        m_stop = true;
        m_request.reset();
    }
    m_wake.notify_all();
    m_thread.join();
}

void MovieFrameFetcher::setWriter(AsyncMovieWriter* writer)
{
    std::unique_lock lock(m_mutex);
    m_request.reset();
    // The old movie may go once this returns: let a decode of it finish first.
    m_idle.wait(lock, [this] { return !m_working; });
    m_decoder.reset();
    m_media = nullptr;
    m_writer = writer;
    ++m_generation;
}

void MovieFrameFetcher::request(int index, QSize size, bool keepAspect)
{
    {
        std::lock_guard guard(m_mutex);
        m_request = Request{m_generation, index, size, keepAspect};
    }
    m_wake.notify_one();
}

void MovieFrameFetcher::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || m_request; });
        if (m_stop)
            return;
        const Request request = *m_request;
        m_request.reset();
        m_working = true;
        lock.unlock();
        const QImage image = decode(request);
        lock.lock();
        m_working = false;
        m_idle.notify_all();
        // A queued call: the receiver lives on the main thread.
        if (!m_stop)
            emit frameDecoded(request.generation, request.index, image);
    }
}

QImage MovieFrameFetcher::decode(const Request& request)
{
    if (!m_writer)
        return {};
    std::optional<RgbaImage> frame;
    m_writer->lock();
    const MovieTrack* track = m_writer->movie().lastVideoTrack();
    const MovieMedia* media = track ? track->media() : nullptr;
    if (media != m_media) {
        m_decoder.reset();
        m_media = media;
    }
    if (m_media && request.index >= 0 && static_cast<std::size_t>(request.index) < m_media->sampleCount()) {
        if (!m_decoder)
            m_decoder = std::make_unique<MovieFrameDecoder>(*m_media);
        frame = m_decoder->decode(static_cast<std::size_t>(request.index));
    }
    m_writer->unlock();
    if (!frame)
        return {};
    // Movie frames come bottom row first; widgets draw top row first.
    const QImage bottomUp(frame->bytes().data(), frame->width(), frame->height(),
        static_cast<qsizetype>(frame->bytesPerRow()), QImage::Format_RGBA8888_Premultiplied);
    const QSize target = request.keepAspect ? bottomUp.size().scaled(request.size, Qt::KeepAspectRatio) : request.size;
    if (target.isEmpty() || target == bottomUp.size())
        return bottomUp.mirrored(false, true);
    return bottomUp.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).mirrored(false, true);
}

} // namespace plyra
