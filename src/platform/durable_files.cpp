// SPDX-License-Identifier: MIT
#include "platform/durable_files.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace plyra {
namespace {

int syncDescriptor(int fd)
{
    if (fd < 0)
        return errno;
    const int result = ::fsync(fd) == 0 ? 0 : errno;
    ::close(fd);
    // A file system that cannot sync a folder (some network ones) says EINVAL: its
    // entries are as durable as it makes them.
    return result == EINVAL ? 0 : result;
}

// Takes over folderFd.
int syncTreeAt(int folderFd)
{
    DIR* folder = ::fdopendir(folderFd);
    if (!folder) {
        ::close(folderFd);
        return errno;
    }
    int failure = 0;
    while (const dirent* entry = ::readdir(folder)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        struct stat info {};
        if (::fstatat(::dirfd(folder), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        int result = 0;
        if (S_ISDIR(info.st_mode))
            result = syncTreeAt(::openat(::dirfd(folder), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
        else if (S_ISREG(info.st_mode))
            result = syncDescriptor(::openat(::dirfd(folder), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        if (failure == 0)
            failure = result;
    }
    const int own = ::fsync(::dirfd(folder)) == 0 || errno == EINVAL ? 0 : errno;
    ::closedir(folder);
    return failure != 0 ? failure : own;
}

} // namespace

int syncFile(const std::string& path)
{
    return syncDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
}

int syncFolder(const std::string& path)
{
    return syncDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

int syncTree(const std::string& root)
{
    const int fd = ::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return fd < 0 ? errno : syncTreeAt(fd);
}

std::string parentFolder(const std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

} // namespace plyra
