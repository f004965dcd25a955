// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace plyra {

/// A new, empty file beside a target (".NAME.XXXXXX" in the same folder), which is
/// written first and renamed over the target only once complete, so that a failed or
/// interrupted write leaves the target as it was. Removed unless committed; listed with
/// TemporaryFiles meanwhile, so that an interrupted process can remove it on its way out.
/// Threads: one thread.
class SideFile {
public:
    /// Makes the file; path() is empty (and errno says why) when it cannot be made.
    explicit SideFile(const std::string& target);
    ~SideFile();
    SideFile(const SideFile&) = delete;
    SideFile& operator=(const SideFile&) = delete;

    const std::string& path() const { return m_path; }
    /// Renames the file over the target; false (errno says why) when it cannot.
    bool commit(const std::string& target);

private:
    std::string m_path;
};

} // namespace plyra
