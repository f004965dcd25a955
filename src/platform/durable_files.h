// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace plyra {

/// fsync for what a save writes, so that a crash or power loss after a commit finds the
/// bytes and the names on disk: a file's bytes, a folder's entries, a whole tree. Each
/// returns 0 or the errno of the first failure.
/// Threads: any thread.
int syncFile(const std::string& path);
int syncFolder(const std::string& path);
/// Every regular file and folder under root, and root itself; links and special files
/// have nothing to sync of their own (their folder's entry is synced).
int syncTree(const std::string& root);
/// The folder that holds path ("." for a bare name).
std::string parentFolder(const std::string& path);

} // namespace plyra
