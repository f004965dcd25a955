// SPDX-License-Identifier: MIT
#pragma once

#include "platform/user_text.h"

#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace plyra {

/// What kind of directory entry a mode describes, as a user would call it.
inline std::string fileKindName(mode_t mode)
{
    if (S_ISREG(mode))
        return userText("FileKind", "a regular file");
    if (S_ISDIR(mode))
        return userText("FileKind", "a folder");
    if (S_ISFIFO(mode))
        return userText("FileKind", "a FIFO (named pipe)");
    if (S_ISCHR(mode))
        return userText("FileKind", "a character device");
    if (S_ISBLK(mode))
        return userText("FileKind", "a block device");
    if (S_ISSOCK(mode))
        return userText("FileKind", "a socket");
    if (S_ISLNK(mode))
        return userText("FileKind", "a symbolic link");
    return userText("FileKind", "not a regular file");
}

/// A byte count for messages: "512 bytes", "16 MB", "30.0 GB" (binary multiples).
std::string byteSizeText(std::uint64_t bytes);

} // namespace plyra
