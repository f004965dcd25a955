// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace plyra {

/// What kind of directory entry a mode describes, as a user would call it.
inline const char* fileKindName(mode_t mode)
{
    if (S_ISREG(mode))
        return "a regular file";
    if (S_ISDIR(mode))
        return "a folder";
    if (S_ISFIFO(mode))
        return "a FIFO (named pipe)";
    if (S_ISCHR(mode))
        return "a character device";
    if (S_ISBLK(mode))
        return "a block device";
    if (S_ISSOCK(mode))
        return "a socket";
    if (S_ISLNK(mode))
        return "a symbolic link";
    return "not a regular file";
}

/// A byte count for messages: "512 bytes", "16 MB", "30.0 GB" (binary multiples).
std::string byteSizeText(std::uint64_t bytes);

} // namespace plyra
