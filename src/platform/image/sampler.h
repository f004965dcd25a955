// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/geometry.h"
#include "platform/image/image.h"

namespace plyra {

/// How a kernel is meant to read between the pixels of a sampler.
enum class SamplerFilter { Nearest, Linear };

/// An image as a kernel reads it: placed by an affine matrix, read with nearest or linear
/// filtering, and clamped at its edges (a read beyond the edge repeats the edge pixel).
///
/// The matrix maps the image's own space into the sampler's space, the space of the
/// kernel's output: the image point p appears at matrix.map(p), so reading the sampler at
/// output point q reads the image at matrix⁻¹(q). samplerMatrixFromRectToRect(image
/// extent, output rectangle) is such a matrix: it stretches the image over the output.
///
/// When the matrix shrinks an 8-bit bitmap image to about 0.7 or less (in the direction
/// it shrinks least), the renderer hands the kernel the box-reduced level of the image
/// (Image::reducedLevel) nearest to that scale instead of the full image, so that small
/// output does not alias. Kernel images used as inputs are read at full resolution.
/// Threads: a value.
class Sampler {
public:
    Sampler() = default;
    explicit Sampler(Image image, Matrix matrix = {}, SamplerFilter filter = SamplerFilter::Nearest);

    const Image& image() const { return m_image; }
    const Matrix& matrix() const { return m_matrix; }
    SamplerFilter filter() const { return m_filter; }
    /// The image's extent in sampler space.
    Rect extent() const;

private:
    Image m_image;
    Matrix m_matrix;
    SamplerFilter m_filter = SamplerFilter::Nearest;
};

} // namespace plyra
