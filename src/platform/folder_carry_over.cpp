// SPDX-License-Identifier: MIT
#include "platform/folder_carry_over.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace plyra {
namespace {

/// A descriptor closed on every path out.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) { }
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }

private:
    int m_fd;
};

int copyBytes(int from, int to)
{
    // A clone shares the blocks (Btrfs, XFS): as fast as a link, yet a file of its own.
    if (::ioctl(to, FICLONE, from) == 0)
        return 0;
    for (;;) {
        const ssize_t n = ::copy_file_range(from, nullptr, to, nullptr, std::size_t{1} << 30, 0);
        if (n == 0)
            return 0;
        if (n > 0)
            continue;
        if (errno == EINTR)
            continue;
        if (errno != EXDEV && errno != ENOSYS && errno != EINVAL && errno != EOPNOTSUPP)
            return errno;
        break;
    }
    std::vector<char> buffer(std::size_t{1} << 20);
    for (;;) {
        const ssize_t n = ::read(from, buffer.data(), buffer.size());
        if (n == 0)
            return 0;
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno;
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(to, buffer.data() + done, static_cast<std::size_t>(n - done));
            if (w < 0 && errno == EINTR)
                continue;
            if (w < 0)
                return errno;
            done += w;
        }
    }
}

int copyFileAt(int fromFolder, const char* fromName, int toFolder, const char* toName, bool follow)
{
    const Descriptor source(::openat(fromFolder, fromName, O_RDONLY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW)));
    struct stat info {};
    if (!source.valid() || ::fstat(source.get(), &info) != 0)
        return errno;
    if (!S_ISREG(info.st_mode))
        return EINVAL;
    const Descriptor target(::openat(toFolder, toName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 07777));
    if (!target.valid())
        return errno;
    int failure = copyBytes(source.get(), target.get());
    if (failure == 0) {
        const timespec times[2] = {info.st_atim, info.st_mtim};
        ::fchmod(target.get(), info.st_mode & 07777);
        ::futimens(target.get(), times);
    }
    if (failure != 0)
        ::unlinkat(toFolder, toName, 0);
    return failure;
}

int linkOrCopyAt(int fromFolder, const char* fromName, int toFolder, const char* toName, bool follow)
{
    // Refused across file systems, for files of others (protected hard links), or where
    // links are not supported: a copy then.
    if (::linkat(fromFolder, fromName, toFolder, toName, follow ? AT_SYMLINK_FOLLOW : 0) == 0)
        return 0;
    if (errno == EEXIST)
        return EEXIST;
    return copyFileAt(fromFolder, fromName, toFolder, toName, follow);
}

int makeSpecialAt(int fromFolder, const char* name, const struct stat& info, int toFolder, const char* toName)
{
    if (S_ISLNK(info.st_mode)) {
        std::vector<char> target(static_cast<std::size_t>(info.st_size > 0 ? info.st_size : 4095) + 1);
        const ssize_t n = ::readlinkat(fromFolder, name, target.data(), target.size() - 1);
        if (n < 0)
            return errno;
        target[static_cast<std::size_t>(n)] = '\0';
        return ::symlinkat(target.data(), toFolder, toName) == 0 ? 0 : errno;
    }
    return ::mknodat(toFolder, toName, info.st_mode, info.st_rdev) == 0 ? 0 : errno;
}

using Failure = FolderCarryOver::Failure;

std::optional<Failure> carryFolder(int fromFd, int toFd, const std::string& prefix, const FolderCarryOver::Skip& skip);

std::optional<Failure> carryEntry(int fromFd, int toFd, const std::string& name, const std::string& relative,
    const FolderCarryOver::Skip& skip)
{
    struct stat info {};
    if (::fstatat(fromFd, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return Failure{relative, std::strerror(errno)};
    struct stat existing {};
    const bool present = ::fstatat(toFd, name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0;
    if (!S_ISDIR(info.st_mode)) {
        if (present)
            return std::nullopt;
        const int result = S_ISREG(info.st_mode) ? linkOrCopyAt(fromFd, name.c_str(), toFd, name.c_str(), false)
                                                 : makeSpecialAt(fromFd, name.c_str(), info, toFd, name.c_str());
        return result == 0 ? std::nullopt : std::optional<Failure>(Failure{relative, std::strerror(result)});
    }
    if (!present && ::mkdirat(toFd, name.c_str(), 0700) != 0)
        return Failure{relative, std::strerror(errno)};
    const Descriptor from(::openat(fromFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    const Descriptor to(::openat(toFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    if (!from.valid() || !to.valid())
        return Failure{relative, std::strerror(errno)};
    if (std::optional<Failure> failure = carryFolder(from.get(), to.get(), relative + "/", skip))
        return failure;
    // Mode and times last: a read-only folder still takes its entries, and adding them
    // does not change the times it keeps.
    if (!present) {
        const timespec times[2] = {info.st_atim, info.st_mtim};
        ::fchmod(to.get(), info.st_mode & 07777);
        ::futimens(to.get(), times);
    }
    return std::nullopt;
}

std::optional<Failure> carryFolder(int fromFd, int toFd, const std::string& prefix, const FolderCarryOver::Skip& skip)
{
    DIR* folder = ::fdopendir(::dup(fromFd));
    if (!folder)
        return Failure{prefix, std::strerror(errno)};
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(folder);
    for (const std::string& name : names) {
        const std::string relative = prefix + name;
        if (skip && skip(relative))
            continue;
        if (std::optional<Failure> failure = carryEntry(fromFd, toFd, name, relative, skip))
            return failure;
    }
    return std::nullopt;
}

} // namespace

std::optional<FolderCarryOver::Failure> FolderCarryOver::carryTree(const std::string& from, const std::string& to,
    const Skip& skip)
{
    const Descriptor fromFd(::open(from.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const Descriptor toFd(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fromFd.valid() || !toFd.valid())
        return Failure{std::string(), std::strerror(errno)};
    return carryFolder(fromFd.get(), toFd.get(), std::string(), skip);
}

int FolderCarryOver::carryEntry(const std::string& from, const std::string& to)
{
    struct stat info {};
    if (::lstat(from.c_str(), &info) != 0)
        return errno;
    if (S_ISDIR(info.st_mode))
        return EISDIR;
    return S_ISREG(info.st_mode) ? linkOrCopyAt(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), false)
                                 : makeSpecialAt(AT_FDCWD, from.c_str(), info, AT_FDCWD, to.c_str());
}

int FolderCarryOver::linkOrCopy(const std::string& from, const std::string& to)
{
    return linkOrCopyAt(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), true);
}

} // namespace plyra
