// SPDX-License-Identifier: MIT
#include "platform/image/sampler.h"

#include <utility>

namespace plyra {

Sampler::Sampler(Image image, Matrix matrix, SamplerFilter filter)
    : m_image(std::move(image))
    , m_matrix(matrix)
    , m_filter(filter)
{
}

Rect Sampler::extent() const
{
    return m_matrix.mapRect(m_image.extent());
}

} // namespace plyra
