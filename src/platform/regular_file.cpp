// SPDX-License-Identifier: MIT
#include "platform/regular_file.h"

#include "platform/file_kind_internal.h"
#include "platform/log.h"
#include "platform/stop_request.h"
#include "platform/user_text.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>
#include <utility>

namespace plyra {
namespace {

// Small enough that a stop request is seen within a few milliseconds.
constexpr std::size_t kChunkBytes = std::size_t{1} << 20;

bool fail(FileReadError* error, FileProblem problem, std::string reason)
{
    if (error)
        *error = {problem, std::move(reason)};
    return false;
}

bool failWithErrno(FileReadError* error, int code)
{
    if (code == ENOENT || code == ENOTDIR)
        return fail(error, FileProblem::Missing, userText("RegularFile", "no such file"));
    return fail(error, FileProblem::Unreadable, std::strerror(code));
}

// The same checks before opening (by path) and after (by descriptor, which closes the
// gap in which the entry could be swapped).
bool acceptable(const struct stat& info, std::uint64_t maxBytes, FileReadError* error)
{
    if (S_ISDIR(info.st_mode))
        return fail(error, FileProblem::Folder, userText("RegularFile", "it is a folder, not a file"));
    if (!S_ISREG(info.st_mode))
        return fail(error, FileProblem::NotRegular,
            fillIn(userText("RegularFile", "it is %1, not a regular file"), {fileKindName(info.st_mode)}));
    const auto size = static_cast<std::uint64_t>(info.st_size);
    if (size == 0)
        return fail(error, FileProblem::Empty, userText("RegularFile", "the file is empty"));
    if (size > maxBytes)
        return fail(error, FileProblem::TooLarge,
            fillIn(userText("RegularFile", "the file is too large (%1; files of this kind may have at most %2)"),
                {byteSizeText(size), byteSizeText(maxBytes)}));
    return true;
}

} // namespace

std::string byteSizeText(std::uint64_t bytes)
{
    constexpr double kKiB = 1024.0;
    const auto b = static_cast<double>(bytes);
    if (b < kKiB)
        return fillIn(userText("RegularFile", "%1 bytes"), {std::to_string(bytes)});
    if (b < kKiB * kKiB)
        return formatString("%.0f KB", b / kKiB);
    if (b < kKiB * kKiB * kKiB)
        return formatString("%.0f MB", b / (kKiB * kKiB));
    // The decimal sign is the interface language's, so it is part of the translated text.
    const auto tenths = static_cast<std::uint64_t>(std::llround(b / (kKiB * kKiB * kKiB) * 10.0));
    return fillIn(userText("RegularFile", "%1.%2 GB"), {std::to_string(tenths / 10), std::to_string(tenths % 10)});
}

RegularFile::RegularFile(int fd, std::uint64_t size, std::uint64_t maxBytes)
    : m_fd(fd)
    , m_size(size)
    , m_maxBytes(maxBytes)
{
}

RegularFile::RegularFile(RegularFile&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1))
    , m_size(other.m_size)
    , m_maxBytes(other.m_maxBytes)
{
}

RegularFile& RegularFile::operator=(RegularFile&& other) noexcept
{
    if (this != &other) {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = std::exchange(other.m_fd, -1);
        m_size = other.m_size;
        m_maxBytes = other.m_maxBytes;
    }
    return *this;
}

RegularFile::~RegularFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

int RegularFile::release()
{
    return std::exchange(m_fd, -1);
}

std::optional<RegularFile> RegularFile::open(const std::string& path, std::uint64_t maxBytes, FileReadError* error)
{
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        failWithErrno(error, errno);
        return std::nullopt;
    }
    if (!acceptable(info, maxBytes, error))
        return std::nullopt;
    // Without O_NONBLOCK, opening a FIFO waits for a writer, for ever.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        failWithErrno(error, errno);
        return std::nullopt;
    }
    RegularFile file(fd, 0, maxBytes);
    if (::fstat(fd, &info) != 0) {
        failWithErrno(error, errno);
        return std::nullopt;
    }
    if (!acceptable(info, maxBytes, error))
        return std::nullopt;
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) {
        failWithErrno(error, errno);
        return std::nullopt;
    }
    file.m_size = static_cast<std::uint64_t>(info.st_size);
    return file;
}

bool RegularFile::readRest(std::vector<std::uint8_t>& bytes, FileReadError* error)
{
    try {
        bytes.reserve(bytes.size() + static_cast<std::size_t>(std::min(m_size, m_maxBytes)));
        for (;;) {
            if (StopRequest::isRequested())
                return fail(error, FileProblem::Interrupted, userText("RegularFile", "reading was interrupted"));
            // One byte beyond the limit tells a file that grew since it was opened.
            const std::uint64_t room = m_maxBytes + 1 - std::min<std::uint64_t>(bytes.size(), m_maxBytes + 1);
            if (room == 0)
                return fail(error, FileProblem::TooLarge,
                    fillIn(userText("RegularFile", "the file is too large (files of this kind may have at most %1)"),
                        {byteSizeText(m_maxBytes)}));
            const std::size_t old = bytes.size();
            bytes.resize(old + static_cast<std::size_t>(std::min<std::uint64_t>(room, kChunkBytes)));
            const ssize_t n = ::read(m_fd, bytes.data() + old, bytes.size() - old);
            const int readErrno = errno;
            bytes.resize(old + static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
            if (n < 0 && readErrno == EINTR)
                continue;
            if (n < 0)
                return failWithErrno(error, readErrno);
            if (n == 0)
                return true;
        }
    } catch (const std::bad_alloc&) {
        std::vector<std::uint8_t>().swap(bytes);
        return fail(error, FileProblem::OutOfMemory, userText("RegularFile", "there is not enough memory to read it"));
    }
}

std::optional<std::vector<std::uint8_t>> RegularFile::read(const std::string& path, std::uint64_t maxBytes,
                                                           FileReadError* error)
{
    std::optional<RegularFile> file = open(path, maxBytes, error);
    if (!file)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    if (!file->readRest(bytes, error))
        return std::nullopt;
    return bytes;
}

} // namespace plyra
