// SPDX-License-Identifier: MIT
#include "platform/side_file.h"

#include "platform/temporary_files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace plyra {

SideFile::SideFile(const std::string& target)
{
    const std::size_t slash = target.find_last_of('/');
    const std::string directory = slash == std::string::npos ? std::string(".") : target.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
    std::string pattern = (slash == std::string::npos ? std::string() : directory) + "." + name + ".XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const int fd = ::mkstemp(buffer.data());
    if (fd < 0)
        return;
    // mkstemp makes the file private; the result is an ordinary document, or keeps the
    // permissions of the file it replaces.
    struct stat existing {};
    const mode_t mode = ::stat(target.c_str(), &existing) == 0 && S_ISREG(existing.st_mode) ? existing.st_mode & 07777 : 0644;
    ::fchmod(fd, mode);
    ::close(fd);
    m_path = buffer.data();
    TemporaryFiles::add(m_path);
}

SideFile::~SideFile()
{
    if (m_path.empty())
        return;
    const int saved = errno;
    ::unlink(m_path.c_str());
    TemporaryFiles::forget(m_path);
    errno = saved;
}

bool SideFile::commit(const std::string& target)
{
    if (m_path.empty() || std::rename(m_path.c_str(), target.c_str()) != 0)
        return false;
    TemporaryFiles::forget(m_path);
    m_path.clear();
    return true;
}

} // namespace plyra
