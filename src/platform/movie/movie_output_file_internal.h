// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_status.h"
#include "platform/side_file.h"

#include <memory>
#include <optional>
#include <string>

namespace plyra {

/// Where a finished movie file goes: the target, once OutputPathGuard allows writing it,
/// and a side file beside it that is written first and renamed over the target by
/// commit(), so that a failed write leaves the target as it was.
/// Threads: one thread.
class MovieOutputFile {
public:
    /// Checks the path and makes the side file; status() says why when either fails.
    explicit MovieOutputFile(const std::string& path);

    const MovieStatus& status() const { return m_status; }
    /// The file to write; empty unless status() is a success.
    std::string sidePath() const { return m_side ? m_side->path() : std::string(); }
    /// Moves the written file into place; `kind` names it in the message ("movie", "GIF").
    /// failureText says, with the file as %1 and the system's reason as %2, that the
    /// finished file could not take the target's place.
    MovieStatus commit(const std::string& failureText);

private:
    std::string m_path;
    std::optional<std::string> m_target;
    std::unique_ptr<SideFile> m_side;
    MovieStatus m_status;
};

} // namespace plyra
