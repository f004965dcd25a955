// SPDX-License-Identifier: MIT
#pragma once

#include "platform/side_file.h"

#include <cstddef>
#include <memory>
#include <string>

namespace plyra {

/// Writes a file whole or not at all: the bytes go to a side file that replaces the
/// target only once every byte is on disk. Only a regular file or a new name is ever
/// replaced (OutputPathGuard without protections); a symbolic link to a regular file
/// stays a link and its file gets the bytes.
/// Threads: any thread; different paths at once.
class AtomicFileWriter {
public:
    /// False, with the system's reason ("No space left on device") in error, when the
    /// file could not be written; the target is then unchanged.
    static bool write(const std::string& path, const void* data, std::size_t size, std::string* error = nullptr);
    /// The first half of write(), for a target already checked: the bytes in a side file
    /// beside it, which the caller commits (or drops, leaving the target as it was).
    /// None, with the system's reason in error, when the bytes could not be written.
    static std::unique_ptr<SideFile> stage(const std::string& target, const void* data, std::size_t size,
                                           std::string* error = nullptr);
};

} // namespace plyra
