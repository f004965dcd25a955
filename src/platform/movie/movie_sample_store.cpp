// SPDX-License-Identifier: MIT
#include "platform/movie/movie_sample_store_internal.h"

#include "platform/log.h"
#include "platform/user_text.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace plyra {
namespace {

/// text names the file as %1 and the system's reason as %2.
MovieStatus fileFailure(const std::string& text, const std::string& path, int code)
{
    return MovieStatus::failure(kMovieFileError, fillIn(text, {path, std::strerror(code)}));
}

void report(MovieStatus* status, MovieStatus value)
{
    if (status)
        *status = std::move(value);
}

} // namespace

MovieSampleStore::MovieSampleStore(int fd, bool writable, int64_t size, std::string path)
    : m_fd(fd)
    , m_path(std::move(path))
    , m_writable(writable)
    , m_size(size)
{
}

MovieSampleStore::~MovieSampleStore()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

std::shared_ptr<MovieSampleStore> MovieSampleStore::createFile(const std::string& path, MovieStatus* status)
{
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        const int code = errno;
        report(status, fileFailure(userText("MovieSampleStore", "Could not create the movie storage \"%1\": %2"), path, code));
        return nullptr;
    }
    report(status, MovieStatus::success());
    return std::shared_ptr<MovieSampleStore>(new MovieSampleStore(fd, true, 0, path));
}

std::shared_ptr<MovieSampleStore> MovieSampleStore::openFile(const std::string& path, MovieStatus* status)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat info {};
    if (fd < 0 || ::fstat(fd, &info) != 0) {
        const int code = errno;
        report(status, fileFailure(userText("MovieSampleStore", "Could not open \"%1\": %2"), path, code));
        if (fd >= 0)
            ::close(fd);
        return nullptr;
    }
    report(status, MovieStatus::success());
    return std::shared_ptr<MovieSampleStore>(new MovieSampleStore(fd, false, info.st_size, path));
}

std::shared_ptr<MovieSampleStore> MovieSampleStore::createMemory()
{
    return std::shared_ptr<MovieSampleStore>(new MovieSampleStore(-1, true, 0));
}

int64_t MovieSampleStore::size() const
{
    std::lock_guard guard(m_mutex);
    return m_size;
}

int64_t MovieSampleStore::append(const uint8_t* data, size_t size, MovieStatus* status)
{
    std::lock_guard guard(m_mutex);
    if (!m_writable) {
        report(status, MovieStatus::failure(kMovieFileError, "The movie storage is read-only"));
        return -1;
    }
    const int64_t offset = m_size;
    if (m_fd < 0) {
        m_memory.insert(m_memory.end(), data, data + size);
    } else {
        size_t written = 0;
        while (written < size) {
            const ssize_t n = ::pwrite(m_fd, data + written, size - written, offset + static_cast<off_t>(written));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                const int code = n < 0 ? errno : ENOSPC;
                report(status, MovieStatus::failure(kMovieFileError,
                    fillIn(userText("MovieSampleStore", "Could not write to the movie storage \"%1\": %2"),
                        {m_path, std::strerror(code)})));
                return -1;
            }
            written += static_cast<size_t>(n);
        }
    }
    m_size += static_cast<int64_t>(size);
    return offset;
}

bool MovieSampleStore::read(int64_t offset, int64_t size, std::vector<uint8_t>& out) const
{
    std::lock_guard guard(m_mutex);
    if (offset < 0 || size < 0 || offset > m_size || size > m_size - offset)
        return false;
    out.resize(static_cast<size_t>(size));
    if (m_fd < 0) {
        std::memcpy(out.data(), m_memory.data() + offset, out.size());
        return true;
    }
    size_t done = 0;
    while (done < out.size()) {
        const ssize_t n = ::pread(m_fd, out.data() + done, out.size() - done, offset + static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

} // namespace plyra
