// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace plyra {

/// Keeps rendered frames aside, uncompressed, in a temporary file that has no name (it
/// goes with the process, however that ends), until they are shown again: the way back
/// of a ping-pong movie is made from them without computing a frame twice. Memory does
/// not grow with the number of frames, and a frame comes back exactly as it went in.
/// Threads: one thread at a time.
class FrameSpool {
public:
    /// Opens the file in `directory`; error() says why when it cannot.
    explicit FrameSpool(const std::string& directory = "/tmp");
    ~FrameSpool();
    FrameSpool(const FrameSpool&) = delete;
    FrameSpool& operator=(const FrameSpool&) = delete;

    /// Why the file could not be made or written; empty while all is well.
    const std::string& error() const { return m_error; }

    /// Keeps a copy of the frame under its number; false (with error()) when it cannot.
    bool put(std::uint32_t frame, const Bitmap& bitmap);
    /// The frame kept under that number; none (with error()) when there is none or it
    /// cannot be read.
    std::optional<Bitmap> get(std::uint32_t frame);

private:
    struct Entry {
        std::uint64_t offset;
        int width;
        int height;
    };

    int m_file = -1;
    std::uint64_t m_end = 0;
    std::map<std::uint32_t, Entry> m_entries;
    std::string m_error;
};

} // namespace plyra
