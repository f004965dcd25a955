// SPDX-License-Identifier: MIT
#include "render/frame_conversion_queue.h"

#include "engine/image_conversion.h"
#include "platform/log.h"

#include <new>

namespace plyra {

FrameConversionQueue::FrameConversionQueue(Sink sink)
    : m_sink(std::move(sink))
    , m_thread([this] { run(); })
{
}

FrameConversionQueue::~FrameConversionQueue()
{
    {
        std::lock_guard guard(m_mutex);
        m_stop = true;
        m_images.clear();
    }
    m_wake.notify_all();
    m_thread.join();
}

void FrameConversionQueue::push(Image image)
{
    push([image = std::move(image)] { return render(image); });
}

void FrameConversionQueue::push(Producer producer)
{
    {
        std::lock_guard guard(m_mutex);
        m_images.push_back(std::move(producer));
    }
    m_wake.notify_one();
}

unsigned FrameConversionQueue::pending() const
{
    std::lock_guard guard(m_mutex);
    return static_cast<unsigned>(m_images.size()) + m_inHand;
}

void FrameConversionQueue::waitUntilIdle()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_images.empty() && m_inHand == 0; });
}

std::optional<Bitmap> FrameConversionQueue::render(const Image& image)
{
    // This thread has nobody to throw to: a frame too large for memory becomes no frame.
    try {
        return bitmapFromImage(image);
    } catch (const std::bad_alloc&) {
        logLine("Could not render a frame: there is not enough memory for it");
        return std::nullopt;
    }
}

void FrameConversionQueue::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || !m_images.empty(); });
        if (m_images.empty())
            return; // stopped
        Producer producer = std::move(m_images.front());
        m_images.pop_front();
        m_inHand = 1;
        lock.unlock();
        m_sink(producer());
        lock.lock();
        m_inHand = 0;
        if (m_images.empty())
            m_idle.notify_all();
    }
}

} // namespace plyra
