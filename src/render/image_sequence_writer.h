// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/image.h"
#include "platform/side_file.h"
#include "render/frame_output.h"

#include <QString>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace plyra {

/// Writes the frames of a render as numbered image files while the render goes on: each
/// finished frame is rendered and encoded on one of the writer's threads, several frames
/// at once, into a file beside its final name. Once every frame is in, the files that
/// show a frame again (held frames, the way back of a ping-pong) are copied from its
/// file, and only then does any file take its name, so that a render that fails or is
/// stopped leaves nothing at any frame's name.
/// Threads: push(), pending(), failure(), waitUntilIdle(), commit() and the destructor on
/// the owner's thread; rendering and encoding on the writer's threads.
class ImageSequenceWriter {
public:
    /// One file of the sequence: the computed frame it shows and where it goes (a target
    /// the caller has checked); none, with the reason, when it may not be written.
    using FileTarget = std::function<std::optional<std::string>(std::size_t file, std::uint32_t* frame, QString* error)>;

    ImageSequenceWriter(FrameFileFormat format, unsigned threads);
    /// Drops the frames not started, lets those in hand finish, and removes every file
    /// not yet committed.
    ~ImageSequenceWriter();
    ImageSequenceWriter(const ImageSequenceWriter&) = delete;
    ImageSequenceWriter& operator=(const ImageSequenceWriter&) = delete;

    /// Renders and encodes computed frame `frame` into a file beside `target`.
    void push(std::uint32_t frame, Image image, std::string target);
    /// Frames handed over and not yet in their files.
    unsigned pending() const;
    /// The first frame that could not be written, with the reason; none while all went well.
    std::optional<QString> failure() const;
    void waitUntilIdle();

    /// Waits for every frame, makes the `fileCount` files of the sequence (a frame's file
    /// where it was pushed, a copy of it anywhere else), then renames every one into
    /// place. False with the reason when any frame or copy failed; nothing is then renamed.
    bool commit(std::size_t fileCount, const FileTarget& target, QString* error);

private:
    struct Task {
        std::uint32_t frame;
        Image image;
        std::string target;
    };
    struct Staged {
        std::unique_ptr<SideFile> side;
        std::string target;
    };

    void run();
    void write(const Task& task);
    std::unique_ptr<SideFile> copyOf(const SideFile& source, const std::string& target, QString* error) const;

    FrameFileFormat m_format;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<Task> m_tasks;
    unsigned m_inHand = 0;
    bool m_stop = false;
    std::map<std::uint32_t, Staged> m_staged;
    std::optional<QString> m_failure;
    std::vector<std::thread> m_threads;
};

} // namespace plyra
