// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// Why a file could not be read.
enum class FileProblem {
    None,
    Missing,     ///< nothing at the path
    Folder,      ///< a directory
    NotRegular,  ///< a FIFO, device or socket (also behind a symbolic link)
    Empty,       ///< a regular file of no bytes
    TooLarge,    ///< more bytes than the reader takes for its kind of file
    Unreadable,  ///< the system refused (permissions, I/O error...)
    Interrupted, ///< a stop was requested while reading
    OutOfMemory, ///< the bytes did not fit in memory
    Damaged,     ///< the bytes are not what the reader understands
};

/// Why a read failed: the problem and a reason to show after the path, such as
/// "it is a FIFO (named pipe), not a regular file".
/// Threads: a plain value.
struct FileReadError {
    FileProblem problem = FileProblem::None;
    std::string reason;
};

/// A regular file opened for reading. Only regular files are opened (symbolic links are
/// followed, and what they lead to must be a regular file): FIFOs, devices and sockets
/// are refused before opening, and the open itself never blocks, so that a FIFO put in
/// place at the last moment cannot hang the reader. Files larger than the reader's limit
/// are refused before anything is read.
/// Threads: a value owned by one thread; different files on different threads.
class RegularFile {
public:
    /// Opens the file when it is a regular file of 1 to maxBytes bytes; none, with the
    /// problem, otherwise.
    static std::optional<RegularFile> open(const std::string& path, std::uint64_t maxBytes, FileReadError* error);
    /// Reads a whole regular file of 1 to maxBytes bytes in chunks, looking for a stop
    /// request between them; none, with the problem, otherwise (also when memory runs out).
    static std::optional<std::vector<std::uint8_t>> read(const std::string& path, std::uint64_t maxBytes,
                                                         FileReadError* error);

    RegularFile(RegularFile&& other) noexcept;
    RegularFile& operator=(RegularFile&& other) noexcept;
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;
    ~RegularFile();

    int descriptor() const { return m_fd; }
    /// The size when the file was opened.
    std::uint64_t size() const { return m_size; }
    /// Hands the descriptor over; the caller closes it.
    int release();
    /// Reads from the current position to the end (at most maxBytes in all).
    bool readRest(std::vector<std::uint8_t>& bytes, FileReadError* error);

private:
    RegularFile(int fd, std::uint64_t size, std::uint64_t maxBytes);

    int m_fd = -1;
    std::uint64_t m_size = 0;
    std::uint64_t m_maxBytes = 0;
};

} // namespace plyra
