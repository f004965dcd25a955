// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace plyra {

/// The temporary files this process has made and not yet removed or renamed into place
/// (temporary movies, files written beside their target), so that an interrupted run can
/// remove them on its way out.
/// Threads: any thread; the list is guarded by a mutex.
class TemporaryFiles {
public:
    static void add(const std::string& path);
    /// Forgets the path (it was removed or renamed into place); nothing for an unknown one.
    static void forget(const std::string& path);
    static std::vector<std::string> paths();
    /// Removes every file still listed and forgets them.
    static void removeAll();
    /// Removes the files in folder named prefix + "PID-TICKS_..." whose process has
    /// ended (a killed process leaves them); a running process's stay. Files of the
    /// older form, prefix + six characters, go only while no other process of this
    /// program (plyra, plyra-render) runs. Returns how many were removed.
    static int removeThoseOfEndedProcesses(const std::string& folder, const std::string& prefix);
};

} // namespace plyra
