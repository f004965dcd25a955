// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace plyra {

class AsyncMovieWriter;
class MovieFrameDecoder;
class MovieMedia;

/// Decodes frames of a movie, which may still be growing, on a thread of its own and
/// scales them for the view, so that showing a movie never holds up the main thread:
/// decoding a large frame can take longer than a frame lasts. Only the newest request
/// counts; one decoder stays open, so frames asked for one after the other are decoded
/// once each.
/// Threads: setWriter() and request() on the main thread; frameDecoded() is delivered
/// there. The fetcher's thread takes the movie's lock while it decodes.
class MovieFrameFetcher : public QObject {
    Q_OBJECT

public:
    explicit MovieFrameFetcher(QObject* parent = nullptr);
    ~MovieFrameFetcher() override;

    /// The movie to read, or none. Returns once no decode of the old movie is running;
    /// frames of the old movie still on their way carry an older generation.
    void setWriter(AsyncMovieWriter* writer);
    int generation() const { return m_generation; }
    /// Asks for frame `index` scaled into `size` (keeping its proportions or filling it);
    /// replaces a request not yet started.
    void request(int index, QSize size, bool keepAspect);

signals:
    /// The frame asked for, top row first; a null image when it could not be decoded.
    void frameDecoded(int generation, int index, const QImage& image);

private:
    struct Request {
        int generation = 0;
        int index = 0;
        QSize size;
        bool keepAspect = true;
    };

    void run();
    QImage decode(const Request& request);

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::optional<Request> m_request;
    AsyncMovieWriter* m_writer = nullptr;
    int m_generation = 0;
    bool m_working = false;
    bool m_stop = false;
    // The fetcher's thread alone uses these, and setWriter() while that thread is idle.
    const MovieMedia* m_media = nullptr;
    std::unique_ptr<MovieFrameDecoder> m_decoder;
    std::thread m_thread;
};

} // namespace plyra
