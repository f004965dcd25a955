// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/kernel.h"

#include <deque>
#include <memory>

namespace plyra {

/// Prepares the sampler views of one block of a kernel image: asks the region-of-interest
/// callback what each sampler needs, picks the level of 8-bit bitmaps that the sampler's
/// shrinking calls for, and renders kernel inputs into buffers over their regions. Owns
/// those buffers until it is destroyed, so it lives as long as the kernel call.
/// Threads: one block on one thread.
class SamplerViewBuilder {
public:
    SamplerViewBuilder(const KernelApplication& application, const Rect& destRect);
    SamplerViewBuilder(const SamplerViewBuilder&) = delete;
    SamplerViewBuilder& operator=(const SamplerViewBuilder&) = delete;

    /// The view of the sampler that is sampler argument number samplerIndex.
    SamplerView viewFor(const Sampler& sampler, int samplerIndex);

    /// The level an 8-bit bitmap is read at through this matrix: the nearest whole
    /// power-of-two reduction to the matrix's scale (as graphics hardware picks the
    /// nearest mipmap level), 0 when the image is not shrunk below about 0.7.
    static int levelFor(const Matrix& matrix, int width, int height);

private:
    Rect regionOfInterest(int samplerIndex) const;
    SamplerView bitmapView(const Sampler& sampler, const Rect& roi);
    SamplerView floatBitmapView(const Sampler& sampler, const Rect& roi) const;
    SamplerView kernelImageView(const Sampler& sampler, const Rect& roi);

    const KernelApplication& m_application;
    Rect m_destRect;
    std::deque<std::shared_ptr<const Bitmap>> m_buffers;
};

} // namespace plyra
