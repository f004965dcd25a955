// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/kernel.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plyra {

/// A native kernel as registered: the name that kernel source text refers to, its
/// argument list and its function.
struct NativeKernel {
    std::string name;
    std::vector<KernelArgumentType> signature;
    KernelFunction function;
};

/// The native kernels that kernel source text may name.
/// Threads: any thread; guarded by a mutex.
class KernelRegistry {
public:
    static KernelRegistry& shared();

    /// Adds a kernel, replacing one of the same name.
    void add(NativeKernel kernel);
    std::optional<NativeKernel> find(std::string_view name) const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, NativeKernel, std::less<>> m_kernels;
};

/// What compiling kernel source gives: the kernels it defines, in order, or a message.
struct KernelCompileResult {
    std::vector<std::shared_ptr<const Kernel>> kernels;
    std::string errorMessage;

    bool ok() const { return errorMessage.empty(); }
};

/// Compiles kernel source text. The text declares one or more kernels, each naming a
/// native kernel of the registry and its argument list:
///
///     // comment, or /* comment */
///     kernel vec4 sampleCoords2(sampler image1, sampler image2, sampler coords, float resolution);
///
/// Argument types are "sampler" and "float"; argument names are free. Compiling fails,
/// with a message naming the line, for a syntax error, a name the registry does not know,
/// an argument list that differs from the native kernel's, or text without kernels.
KernelCompileResult kernelsWithString(std::string_view source,
                                      const KernelRegistry& registry = KernelRegistry::shared());

} // namespace plyra
