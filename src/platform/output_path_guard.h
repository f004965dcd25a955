// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace plyra {

/// Decides, before anything is written, whether a file may be written at a path: only a
/// regular file (also behind a symbolic link) or a new name in an existing, writable
/// folder qualifies. Devices, FIFOs, sockets, folders and links to them are refused, and
/// so is anything that would land in a protected place: the package of the document
/// being read, or one of the files it reads. Every writer of frames, movies and warp
/// fields asks it, and so can a save dialog before it accepts a name.
/// Threads: a plain value; check() may run on any thread.
class OutputPathGuard {
public:
    /// Refuses writing to this file or anywhere inside this folder, under whatever name
    /// (symbolic links, "..", hard links of a file). A path that does not exist is ignored.
    void protect(const std::string& path);

    /// The path to write to: the path itself, or for a symbolic link to a regular file the
    /// file it leads to (so that the link stays a link). None, with the reason in error
    /// ("it is a character device, not a regular file"), when nothing may be written there.
    std::optional<std::string> check(const std::string& path, std::string* error = nullptr) const;

private:
    struct Protected {
        std::string canonical;
        dev_t device = 0;
        ino_t inode = 0;
        bool folder = false;
    };
    std::optional<std::string> protectedReason(const std::string& canonical) const;

    std::vector<Protected> m_protected;
};

} // namespace plyra
