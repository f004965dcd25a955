// SPDX-License-Identifier: MIT
#include "platform/temporary_files.h"

#include "platform/process_identity.h"

#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <optional>
#include <sys/stat.h>
#include <mutex>
#include <unistd.h>

namespace plyra {
namespace {

struct Registry {
    std::mutex mutex;
    std::vector<std::string> paths;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

// Whether another process of this program runs (its name as the system keeps it).
bool anotherOfThisProgramRuns()
{
    const std::string self = std::to_string(::getpid());
    DIR* processes = ::opendir("/proc");
    if (!processes)
        return true;
    bool found = false;
    while (const dirent* entry = ::readdir(processes)) {
        const std::string pid = entry->d_name;
        if (pid == self || pid.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::string name;
        std::getline(std::ifstream("/proc/" + pid + "/comm"), name);
        if (name == "plyra" || name == "plyra-render") {
            found = true;
            break;
        }
    }
    ::closedir(processes);
    return found;
}

} // namespace

void TemporaryFiles::add(const std::string& path)
{
    Registry& r = registry();
    std::lock_guard guard(r.mutex);
    r.paths.push_back(path);
}

void TemporaryFiles::forget(const std::string& path)
{
    Registry& r = registry();
    std::lock_guard guard(r.mutex);
    const auto it = std::find(r.paths.begin(), r.paths.end(), path);
    if (it != r.paths.end())
        r.paths.erase(it);
}

std::vector<std::string> TemporaryFiles::paths()
{
    Registry& r = registry();
    std::lock_guard guard(r.mutex);
    return r.paths;
}

void TemporaryFiles::removeAll()
{
    Registry& r = registry();
    std::lock_guard guard(r.mutex);
    for (const std::string& path : r.paths)
        ::unlink(path.c_str());
    r.paths.clear();
}

int TemporaryFiles::removeThoseOfEndedProcesses(const std::string& folder, const std::string& prefix)
{
    DIR* files = ::opendir(folder.c_str());
    if (!files)
        return 0;
    std::vector<std::string> ended;
    std::vector<std::string> unnamed;
    while (const dirent* entry = ::readdir(files)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        const std::string rest = name.substr(prefix.size());
        const std::size_t end = rest.find('_');
        const std::optional<ProcessIdentity> owner = end == std::string::npos ? std::nullopt : ProcessIdentity::fromToken(rest.substr(0, end));
        if (owner && !owner->isRunning())
            ended.push_back(name);
        else if (!owner && rest.size() == 6)
            unnamed.push_back(name);
    }
    ::closedir(files);
    if (!unnamed.empty() && !anotherOfThisProgramRuns())
        ended.insert(ended.end(), unnamed.begin(), unnamed.end());
    int removed = 0;
    const std::string base = folder.empty() || folder.back() == '/' ? folder : folder + "/";
    for (const std::string& name : ended) {
        struct stat info {};
        // Only files of this user: /tmp is shared.
        if (::lstat((base + name).c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == ::getuid()
            && ::unlink((base + name).c_str()) == 0)
            ++removed;
    }
    return removed;
}

} // namespace plyra
