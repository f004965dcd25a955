// SPDX-License-Identifier: MIT
#include "platform/atomic_file_writer.h"

#include "platform/output_path_guard.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace plyra {
namespace {

bool fail(std::string* error, std::string reason)
{
    if (error)
        *error = std::move(reason);
    return false;
}

// 0 on success, else the errno of the failure.
int writeAll(int fd, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno;
        if (n == 0)
            return ENOSPC;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return 0;
}

} // namespace

bool AtomicFileWriter::write(const std::string& path, const void* data, std::size_t size, std::string* error)
{
    const std::optional<std::string> target = OutputPathGuard().check(path, error);
    if (!target)
        return false;
    const std::unique_ptr<SideFile> side = stage(*target, data, size, error);
    if (!side)
        return false;
    if (!side->commit(*target))
        return fail(error, std::strerror(errno));
    return true;
}

std::unique_ptr<SideFile> AtomicFileWriter::stage(const std::string& target, const void* data, std::size_t size,
                                                  std::string* error)
{
    auto side = std::make_unique<SideFile>(target);
    if (side->path().empty()) {
        fail(error, std::strerror(errno));
        return nullptr;
    }
    const int fd = ::open(side->path().c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0) {
        fail(error, std::strerror(errno));
        return nullptr;
    }
    int failure = writeAll(fd, static_cast<const char*>(data), size);
    // Some file systems report a full disk only when the file is closed.
    if (::close(fd) != 0 && failure == 0)
        failure = errno;
    if (failure != 0) {
        fail(error, std::strerror(failure));
        return nullptr;
    }
    return side;
}

} // namespace plyra
