// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/kernel.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace plyra {

/// The program-wide cache of the sampling filter's kernel sources and compiled kernels:
/// the one-image kernel (resource "sampleCoords") and the two-images kernel
/// ("sampleCoords2"). Sources are read from the kernel directory once; a source that
/// cannot be read stays missing and is tried again on the next request.
/// Threads: any thread; one mutex guards everything.
class KernelSourceCache {
public:
    static KernelSourceCache& shared();

    /// The source for the two-images kernel or the one-image kernel, loading both
    /// resources when either is missing; empty when it cannot be read.
    std::string source(bool twoImages);
    /// Nothing when the text equals the cached one; otherwise stores a copy and drops the
    /// compiled kernel, so the next kernel() compiles again.
    void setSource(bool twoImages, const std::string& source);
    /// The compiled kernel: the last kernel its source defines, compiled on first use.
    std::shared_ptr<const Kernel> kernel(bool twoImages);

    void setDirectory(const std::filesystem::path& directory);
    std::filesystem::path directory() const;

private:
    struct Entry {
        const char* resource;
        std::optional<std::string> source;
        std::shared_ptr<const Kernel> kernel;
    };

    Entry& entry(bool twoImages) { return twoImages ? m_twoImages : m_oneImage; }
    void loadMissingLocked();
    void setSourceLocked(Entry& entry, const std::string& source);
    std::filesystem::path directoryLocked() const;

    mutable std::mutex m_mutex;
    Entry m_oneImage{"sampleCoords", std::nullopt, nullptr};
    Entry m_twoImages{"sampleCoords2", std::nullopt, nullptr};
    std::filesystem::path m_directory;
};

} // namespace plyra
