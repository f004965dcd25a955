// SPDX-License-Identifier: MIT
#include "platform/temporary_files.h"

#include <algorithm>
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

} // namespace plyra
