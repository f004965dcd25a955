// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace plyra {

/// A process told apart from any later one that gets the same id: its id and the time it
/// started, in clock ticks since boot. Files a process leaves for itself (temporary
/// movies, recovery copies) carry it, so that a later start knows whose they are and
/// whether that process still runs.
/// Threads: a plain value; any thread.
struct ProcessIdentity {
    pid_t pid = 0;
    std::uint64_t startTicks = 0;

    static ProcessIdentity current();
    /// The running process with that id; none when there is none.
    static std::optional<ProcessIdentity> of(pid_t pid);
    /// Whether this very process still runs (a zombie counts as ended).
    bool isRunning() const;

    /// "PID-TICKS", as it appears in file names.
    std::string token() const;
    /// The identity a token names; none for any other text.
    static std::optional<ProcessIdentity> fromToken(std::string_view token);

    bool operator==(const ProcessIdentity&) const = default;
};

/// When the running process started, by the wall clock (to the second): files older than
/// this were left by processes that are gone, or by earlier runs.
std::chrono::system_clock::time_point processStartTime();

} // namespace plyra
