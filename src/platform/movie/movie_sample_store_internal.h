// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_status.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace plyra {

/// Holds the compressed bytes of samples: appended to a file (the movie's storage), kept
/// in memory, or read from an existing movie file. Samples refer to it by offset.
/// Threads: any thread; appends and reads are serialised by an internal mutex, so media
/// of different movies may share a store.
class MovieSampleStore {
public:
    /// A store that appends to the file at `path`, created or emptied.
    static std::shared_ptr<MovieSampleStore> createFile(const std::string& path, MovieStatus* status);
    /// A read-only store over an existing file.
    static std::shared_ptr<MovieSampleStore> openFile(const std::string& path, MovieStatus* status);
    static std::shared_ptr<MovieSampleStore> createMemory();

    ~MovieSampleStore();
    MovieSampleStore(const MovieSampleStore&) = delete;
    MovieSampleStore& operator=(const MovieSampleStore&) = delete;

    /// Appends the bytes and returns their offset; -1, with the reason in `status`, on failure.
    int64_t append(const uint8_t* data, size_t size, MovieStatus* status);
    /// Reads `size` bytes at `offset`; false when they are not all there.
    bool read(int64_t offset, int64_t size, std::vector<uint8_t>& out) const;
    bool isWritable() const { return m_writable; }
    bool isInMemory() const { return m_fd < 0; }
    int64_t size() const;

private:
    MovieSampleStore(int fd, bool writable, int64_t size, std::string path = {});

    mutable std::mutex m_mutex;
    int m_fd;
    std::string m_path;
    bool m_writable;
    int64_t m_size;
    std::vector<uint8_t> m_memory;
};

} // namespace plyra
