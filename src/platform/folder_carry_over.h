// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace plyra {

/// Carries files and folders into a folder that is being built, without reading them
/// where it can: a hard link where the file system allows one (instant, whatever the
/// size), else a clone or a copy that keeps the mode and the times. Folders are made
/// anew with their mode and times; symbolic links, FIFOs and sockets are made anew.
/// Threads: any thread; the caller owns the destination.
class FolderCarryOver {
public:
    /// Whether an entry, named by its path relative to the source folder
    /// ("renders/final.mov"), stays behind.
    using Skip = std::function<bool(const std::string& relativePath)>;
    struct Failure {
        std::string path; ///< the entry that could not be carried, relative to the source
        std::string reason;
    };

    /// Every entry under from, less those skip names, into the existing folder to.
    /// Entries that exist in to already are left as they are there.
    static std::optional<Failure> carryTree(const std::string& from, const std::string& to, const Skip& skip);
    /// One entry that is not a folder, as it is, to a new name (its folder must exist):
    /// a file is linked or copied, a symbolic link or FIFO made anew. 0 or the errno.
    static int carryEntry(const std::string& from, const std::string& to);
    /// The file at from (symbolic links followed) to a new name: a hard link, else a
    /// clone or copy. 0 or the errno of the failure.
    static int linkOrCopy(const std::string& from, const std::string& to);
};

} // namespace plyra
