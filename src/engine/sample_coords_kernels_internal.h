// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/kernel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// Both sampling paths must give the same bytes, so no compiler may fuse a multiply and
// an add of these files into one rounding step.
#if defined(__clang__)
#define PLYRA_NO_FP_CONTRACT _Pragma("clang fp contract(off)")
#else
#define PLYRA_NO_FP_CONTRACT _Pragma("GCC optimize(\"fp-contract=off\")")
#endif

namespace plyra::sampling {

/// Names of the native kernels, as the kernel resources refer to them.
inline constexpr const char* kOneImageKernelName = "sampleCoords";
inline constexpr const char* kTwoImagesKernelName = "sampleCoords2";

/// Registers both native kernels with the shared kernel registry (once; later calls do
/// nothing).
void registerSamplingKernels();

/// Which implementation the kernels run: the fastest available, or the plain C++ one.
/// Both give identical bytes; the choice exists for tests and benchmarks.
enum class SamplingPath { Fastest, Scalar };
void setSamplingPath(SamplingPath path);
SamplingPath samplingPath();

/// One image as the row loops read it: 32-bit RGBA pixels of a sampler view, the map
/// from output pixels to its texel coordinates, and the clamps.
struct ImageTaps {
    const std::uint32_t* pixels = nullptr; ///< texel (originX, originY)
    int stride = 0;                        ///< pixels per row
    int originX = 0;
    int originY = 0;
    int lastX = 0; ///< last stored texel, absolute
    int lastY = 0;
    int lastIndex = 0; ///< index of texel (lastX, lastY) from pixels
    Matrix toTexel;
    /// Texel coordinates are clamped into [-2, maxU] × [-2, maxV] before conversion to
    /// integers; beyond the edges every read is the edge pixel anyway.
    float maxU = 0.0f;
    float maxV = 0.0f;
};

/// Grid values of one output row, interpolated between two node rows, per node column
/// (index 0 is node column `firstColumn`): the sampling positions in output pixels and
/// the dissolve factor, each with its difference to the next column, so that a pixel at
/// fraction t between columns k and k + 1 takes value[k] + delta[k] · t.
struct GridRow {
    enum Channel { FirstX, FirstY, LastX, LastY, Dissolve, ChannelCount };
    std::vector<float> value[ChannelCount];
    std::vector<float> delta[ChannelCount];
};

/// One output row for the row loops.
struct RowJob {
    int width = 0;
    const int* column = nullptr;   ///< per pixel: node column, relative to the GridRow
    const float* fraction = nullptr; ///< per pixel: position between that column and the next
    const GridRow* grid = nullptr;
    ImageTaps first;  ///< the first image, or the one image
    ImageTaps last;   ///< the last image (two-images kernel only)
    bool twoImages = false;
    bool useLastPositions = false; ///< one-image kernel warping the last image
    std::uint8_t* out = nullptr;   ///< pixel 0 of the row, 8-bit premultiplied RGBA
};

/// Plain C++ implementation of pixels [begin, end) of a row; the reference for the SIMD one.
void sampleRowScalar(const RowJob& job, int begin, int end);
/// Highway implementation (runtime dispatch to the best instruction set); pixels that do
/// not fill a vector go through sampleRowScalar.
void sampleRowSimd(const RowJob& job);

/// The node cell of a pixel centre along one axis: its first node and the fraction.
inline void cellOf(float pixelCentre, float origin, float nodesPerPixel, int nodes, int& node, float& fraction)
{
    const float g = (pixelCentre - origin) * nodesPerPixel;
    node = std::clamp(static_cast<int>(std::floor(std::clamp(g, -1.0f, float(nodes)))), 0, std::max(nodes - 2, 0));
    fraction = std::clamp(g - float(node), 0.0f, 1.0f);
}

/// cellOf for the centres of pixels firstPixel … firstPixel + count − 1, in SIMD (runtime
/// dispatch), each result as cellOf gives it.
void cellsOfPixels(int firstPixel, int count, float origin, float nodesPerPixel, int nodes, int* node, float* fraction);

/// One grid row between two node rows: value[k] = below[k] + (above[k] − below[k]) · fy
/// for k < count, and delta[k] = value[k + 1] − value[k] for k + 1 < count, in SIMD
/// (runtime dispatch); every element is computed as the plain expressions would.
void interpolateNodeRows(const float* below, const float* above, float fy, int count, float* value, float* delta);

/// Blending and bilinear weights are 15-bit fixed point; channels carry 7 fraction bits.
inline constexpr float kWeightScale = 32768.0f;
inline constexpr int kMaxWeight = 32767;

/// Rounded product of Q15 fixed point: (a · b + 2^14) >> 15.
inline int mulFixed15(int a, int b)
{
    return (a * b + 16384) >> 15;
}

} // namespace plyra::sampling
