// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/image/image.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace plyra {

/// Renders finished frames into bitmaps on a thread of its own, strictly in the order they
/// are handed over, and passes each bitmap to a sink, so that the thread that polls the
/// jobs never spends a whole frame's rendering at once. A frame may also come from a
/// producer of its own (a frame shown again, read back from where it was kept).
/// Threads: push(), pending(), waitUntilIdle() and the destructor on the owner's thread;
/// the sink runs on the queue's thread, one bitmap at a time.
class FrameConversionQueue {
public:
    /// Gets each rendered frame, or nothing when the image gave none.
    using Sink = std::function<void(std::optional<Bitmap>)>;
    /// Makes one frame on the queue's thread.
    using Producer = std::function<std::optional<Bitmap>()>;

    explicit FrameConversionQueue(Sink sink);
    /// Drops the frames not yet started, lets the one in hand reach the sink, and stops.
    ~FrameConversionQueue();
    FrameConversionQueue(const FrameConversionQueue&) = delete;
    FrameConversionQueue& operator=(const FrameConversionQueue&) = delete;

    void push(Image image);
    void push(Producer producer);
    /// Frames handed over that have not yet reached the sink.
    unsigned pending() const;
    /// Returns once every frame handed over has reached the sink.
    void waitUntilIdle();

private:
    void run();
    static std::optional<Bitmap> render(const Image& image);

    Sink m_sink;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<Producer> m_images;
    unsigned m_inHand = 0;
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace plyra
