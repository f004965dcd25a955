// SPDX-License-Identifier: MIT
#include "platform/image/kernel.h"

#include <cmath>
#include <utility>

namespace plyra {
namespace {

std::array<float, 4> texel(const SamplerView& view, int i, int j)
{
    if (view.format == SamplerView::Format::RgbaFloat) {
        const float* p = view.rgbaFloat(i, j);
        return {p[0], p[1], p[2], p[3]};
    }
    const std::uint8_t* p = view.rgba8(i, j);
    return {float(p[0]), float(p[1]), float(p[2]), float(p[3])};
}

} // namespace

std::array<float, 4> SamplerView::sample(float x, float y) const
{
    const float u = toTexel.mapX(x, y);
    const float v = toTexel.mapY(x, y);
    if (filter == SamplerFilter::Nearest)
        return texel(*this, int(std::floor(u + 0.5f)), int(std::floor(v + 0.5f)));
    const float fu = std::floor(u);
    const float fv = std::floor(v);
    const int i = int(fu);
    const int j = int(fv);
    const float wx = u - fu;
    const float wy = v - fv;
    const auto p00 = texel(*this, i, j);
    const auto p10 = texel(*this, i + 1, j);
    const auto p01 = texel(*this, i, j + 1);
    const auto p11 = texel(*this, i + 1, j + 1);
    std::array<float, 4> result{};
    for (int c = 0; c < 4; ++c) {
        const float bottom = p00[c] + (p10[c] - p00[c]) * wx;
        const float top = p01[c] + (p11[c] - p01[c]) * wx;
        result[c] = bottom + (top - bottom) * wy;
    }
    return result;
}

Kernel::Kernel(std::string name, std::vector<KernelArgumentType> signature, KernelFunction function)
    : m_name(std::move(name))
    , m_signature(std::move(signature))
    , m_function(std::move(function))
{
}

bool Kernel::accepts(const std::vector<KernelArgument>& arguments) const
{
    if (arguments.size() != m_signature.size())
        return false;
    for (std::size_t k = 0; k < arguments.size(); ++k) {
        const bool isSampler = std::holds_alternative<Sampler>(arguments[k]);
        if (isSampler != (m_signature[k] == KernelArgumentType::Sampler))
            return false;
    }
    return true;
}

} // namespace plyra
