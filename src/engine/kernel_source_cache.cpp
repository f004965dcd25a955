// SPDX-License-Identifier: MIT
#include "engine/kernel_source_cache_internal.h"

#include "engine/sample_coords_kernels_internal.h"
#include "platform/image/kernel_registry.h"
#include "platform/log.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace plyra {
namespace {

std::optional<std::string> readResource(const std::filesystem::path& directory, const char* name)
{
    const std::filesystem::path path = directory / (std::string(name) + ".cikernel");
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file)
        text << file.rdbuf();
    if (!file || file.bad()) {
        logLine(formatString("Cannot read the kernel resource %s", path.string().c_str()));
        return std::nullopt;
    }
    return text.str();
}

} // namespace

KernelSourceCache& KernelSourceCache::shared()
{
    static KernelSourceCache cache;
    return cache;
}

std::string KernelSourceCache::source(bool twoImages)
{
    std::lock_guard guard(m_mutex);
    loadMissingLocked();
    return entry(twoImages).source.value_or(std::string());
}

void KernelSourceCache::setSource(bool twoImages, const std::string& source)
{
    std::lock_guard guard(m_mutex);
    setSourceLocked(entry(twoImages), source);
}

std::shared_ptr<const Kernel> KernelSourceCache::kernel(bool twoImages)
{
    std::lock_guard guard(m_mutex);
    Entry& e = entry(twoImages);
    if (e.kernel)
        return e.kernel;
    loadMissingLocked();
    if (!e.source)
        return nullptr;
    sampling::registerSamplingKernels();
    KernelCompileResult result = kernelsWithString(*e.source);
    if (!result.ok()) {
        logLine(formatString("Cannot compile the kernel %s: %s", e.resource, result.errorMessage.c_str()));
        return nullptr;
    }
    e.kernel = result.kernels.back();
    return e.kernel;
}

void KernelSourceCache::setDirectory(const std::filesystem::path& directory)
{
    std::lock_guard guard(m_mutex);
    m_directory = directory;
}

std::filesystem::path KernelSourceCache::directory() const
{
    std::lock_guard guard(m_mutex);
    return directoryLocked();
}

void KernelSourceCache::loadMissingLocked()
{
    if (m_oneImage.source && m_twoImages.source)
        return;
    // Both are read again when either is missing; a text that did not change keeps its
    // compiled kernel, one that cannot be read keeps what the cache had.
    const std::filesystem::path dir = directoryLocked();
    for (Entry* e : {&m_oneImage, &m_twoImages})
        if (std::optional<std::string> text = readResource(dir, e->resource))
            setSourceLocked(*e, *text);
}

void KernelSourceCache::setSourceLocked(Entry& e, const std::string& source)
{
    if (e.source && *e.source == source)
        return;
    e.source = source;
    e.kernel.reset();
}

std::filesystem::path KernelSourceCache::directoryLocked() const
{
    if (!m_directory.empty())
        return m_directory;
    if (const char* fromEnvironment = std::getenv("PLYRA_KERNEL_DIR"); fromEnvironment && *fromEnvironment)
        return fromEnvironment;
    // An installed program finds its kernels beside it, in share/plyra/kernels.
    std::error_code ignored;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", ignored);
    if (!executable.empty()) {
        const std::filesystem::path installed = executable.parent_path().parent_path() / "share" / "plyra" / "kernels";
        if (std::filesystem::is_directory(installed, ignored))
            return installed;
    }
#ifdef PLYRA_KERNEL_DIR
    return PLYRA_KERNEL_DIR;
#else
    return "resources/kernels";
#endif
}

} // namespace plyra
