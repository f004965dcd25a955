// SPDX-License-Identifier: MIT
#include "platform/output_path_guard.h"

#include "platform/file_kind_internal.h"
#include "platform/user_text.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace plyra {
namespace {

std::optional<std::string> refuse(std::string* error, std::string reason)
{
    if (error)
        *error = std::move(reason);
    return std::nullopt;
}

std::string unusableFolder(const std::string& folder, int code)
{
    if (code == ENOENT)
        return fillIn(userText("OutputPathGuard", "the folder '%1' does not exist"), {folder});
    return fillIn(userText("OutputPathGuard", "the folder '%1' cannot be used: %2"), {folder, std::strerror(code)});
}

std::optional<std::string> canonicalPath(const std::string& path)
{
    char* resolved = ::realpath(path.c_str(), nullptr);
    if (!resolved)
        return std::nullopt;
    std::string result(resolved);
    std::free(resolved);
    return result;
}

std::string parentOf(const std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool isInside(const std::string& path, const std::string& folder)
{
    if (folder == "/")
        return true;
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 && path[folder.size()] == '/';
}

// The existing entry at the path, when there is one, is what a write would replace;
// target becomes the file to write (a symbolic link's regular file).
bool checkExistingEntry(const std::string& path, std::string& target, std::string* error)
{
    target = path;
    struct stat entry {};
    if (::lstat(path.c_str(), &entry) != 0) {
        if (errno == ENOENT)
            return true;
        return refuse(error, std::strerror(errno)).has_value();
    }
    if (S_ISLNK(entry.st_mode)) {
        struct stat pointee {};
        const std::optional<std::string> resolved = canonicalPath(path);
        if (!resolved || ::stat(path.c_str(), &pointee) != 0)
            return refuse(error, userText("OutputPathGuard", "it is a symbolic link that leads nowhere")).has_value();
        if (!S_ISREG(pointee.st_mode))
            return refuse(error, fillIn(userText("OutputPathGuard", "it is a symbolic link to '%1', which is %2, not a regular file"),
                                     {*resolved, fileKindName(pointee.st_mode)}))
                .has_value();
        target = *resolved;
        return true;
    }
    if (S_ISDIR(entry.st_mode))
        return refuse(error, userText("OutputPathGuard", "it is a folder")).has_value();
    if (!S_ISREG(entry.st_mode))
        return refuse(error, fillIn(userText("OutputPathGuard", "it is %1, not a regular file"), {fileKindName(entry.st_mode)}))
            .has_value();
    return true;
}

} // namespace

void OutputPathGuard::protect(const std::string& path)
{
    struct stat info {};
    const std::optional<std::string> canonical = canonicalPath(path);
    if (!canonical || ::stat(canonical->c_str(), &info) != 0)
        return;
    m_protected.push_back({*canonical, info.st_dev, info.st_ino, S_ISDIR(info.st_mode)});
}

std::optional<std::string> OutputPathGuard::protectedReason(const std::string& canonical) const
{
    struct stat existing {};
    const bool exists = ::stat(canonical.c_str(), &existing) == 0;
    for (const Protected& entry : m_protected) {
        if (entry.folder && (canonical == entry.canonical || isInside(canonical, entry.canonical)))
            return fillIn(userText("OutputPathGuard", "it lies inside '%1', the document being read"), {entry.canonical});
        if (!entry.folder
            && (canonical == entry.canonical || (exists && existing.st_dev == entry.device && existing.st_ino == entry.inode)))
            return fillIn(userText("OutputPathGuard", "it is '%1', a file the document reads"), {entry.canonical});
    }
    return std::nullopt;
}

std::optional<std::string> OutputPathGuard::check(const std::string& path, std::string* error) const
{
    if (path.empty())
        return refuse(error, userText("OutputPathGuard", "no file name was given"));
    const std::string name = nameOf(path);
    if (name.empty() || name == "." || name == "..")
        return refuse(error, userText("OutputPathGuard", "it names a folder, not a file"));
    std::string target;
    if (!checkExistingEntry(path, target, error))
        return std::nullopt;
    const std::string folder = parentOf(target);
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0)
        return refuse(error, unusableFolder(folder, errno));
    if (!S_ISDIR(info.st_mode))
        return refuse(error, fillIn(userText("OutputPathGuard", "'%1' is not a folder"), {folder}));
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return refuse(error, fillIn(userText("OutputPathGuard", "the folder '%1' is not writable (%2)"), {folder, std::strerror(errno)}));
    const std::optional<std::string> canonicalFolder = canonicalPath(folder);
    if (!canonicalFolder)
        return refuse(error, unusableFolder(folder, errno));
    const std::string canonical = (*canonicalFolder == "/" ? std::string() : *canonicalFolder) + "/" + nameOf(target);
    if (std::optional<std::string> reason = protectedReason(canonical))
        return refuse(error, std::move(*reason));
    return target;
}

} // namespace plyra
