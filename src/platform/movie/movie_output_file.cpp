// SPDX-License-Identifier: MIT
#include "platform/movie/movie_output_file_internal.h"

#include "platform/log.h"
#include "platform/user_text.h"
#include "platform/output_path_guard.h"

#include <cerrno>
#include <cstring>

namespace plyra {

MovieOutputFile::MovieOutputFile(const std::string& path)
    : m_path(path)
{
    std::string refusal;
    m_target = OutputPathGuard().check(path, &refusal);
    if (!m_target) {
        m_status = MovieStatus::failure(kMovieFileError, fillIn(userText("MovieOutputFile", "Could not write \"%1\": %2"), {path, refusal}));
        return;
    }
    m_side = std::make_unique<SideFile>(*m_target);
    if (m_side->path().empty()) {
        const int code = errno; // before looking up the text, which may change errno
        m_status = MovieStatus::failure(kMovieFileError,
            fillIn(userText("MovieOutputFile", "Could not write beside \"%1\": %2"), {path, std::strerror(code)}));
        m_side.reset();
    }
}

MovieStatus MovieOutputFile::commit(const std::string& failureText)
{
    if (!m_side)
        return m_status;
    if (!m_side->commit(*m_target)) {
        const int code = errno;
        return MovieStatus::failure(kMovieFileError, fillIn(failureText, {m_path, std::strerror(code)}));
    }
    return MovieStatus::success();
}

} // namespace plyra
