// SPDX-License-Identifier: MIT
#include "engine/sample_coords_kernels_internal.h"

#include "platform/image/kernel_registry.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <mutex>

PLYRA_NO_FP_CONTRACT

namespace plyra::sampling {
namespace {

std::atomic<SamplingPath> g_path{SamplingPath::Fastest};

// Grid tables are read a whole vector at a time from any column, so they carry this many
// spare entries (more than the widest vector has float lanes).
constexpr int kTablePadding = 64;
// Node positions beyond this many output pixels are cut back, so that the arithmetic of
// the row loops stays finite whatever a node holds.
constexpr float kPositionLimit = 1.0e7f;

/// Where the grid nodes lie. The kernel is given only the spacing r, but the grid has
/// nx = coordinates-image width nodes across the extent with the first and the last on
/// its edges, so node i sits at extent.x + i · W / (nx − 1), which is r only when r divides
/// W. The node spacing is taken from the coordinates image and the extent, never from r.
struct GridGeometry {
    int nx = 1;
    int ny = 1;
    Rect extent;
    float spacingX = 1.0f;
    float spacingY = 1.0f;
    float columnsPerPixel = 1.0f;
    float rowsPerPixel = 1.0f;
};

GridGeometry gridGeometry(const SamplerView& coords, const Rect& extent)
{
    GridGeometry g;
    g.nx = std::max(coords.levelWidth, 1);
    g.ny = std::max(coords.levelHeight, 1);
    g.extent = extent;
    if (g.nx > 1 && extent.width > 0.0f) {
        g.spacingX = extent.width / float(g.nx - 1);
        g.columnsPerPixel = float(g.nx - 1) / extent.width;
    }
    if (g.ny > 1 && extent.height > 0.0f) {
        g.spacingY = extent.height / float(g.ny - 1);
        g.rowsPerPixel = float(g.ny - 1) / extent.height;
    }
    return g;
}

float sanePosition(float value, float fallback)
{
    return std::isfinite(value) ? std::clamp(value, -kPositionLimit, kPositionLimit) : fallback;
}

/// A node's five values: positions in both images and the dissolve factor, decoded from
/// its four floats. The fourth float packs the last image's row (its integer part) and
/// half the dissolve factor (its fraction); both are decoded here, before any
/// interpolation, because the packed number cannot be interpolated as a whole. The
/// vertical position in the last image is the coordinates image's fifth channel, the
/// unrounded value the warp field computed, when it has one; otherwise the whole row,
/// which is up to one row low wherever a node does not fall on a whole pixel.
/// Non-finite values fall back to the node's own position and no dissolve.
void readNode(const SamplerView& coords, const GridGeometry& g, int i, int j, float out[GridRow::ChannelCount])
{
    const float* p = coords.rgbaFloat(i, j);
    const float ownX = g.extent.x + float(i) * g.spacingX;
    const float ownY = g.extent.y + float(j) * g.spacingY;
    out[GridRow::FirstX] = sanePosition(p[0], ownX);
    out[GridRow::FirstY] = sanePosition(p[1], ownY);
    out[GridRow::LastX] = sanePosition(p[2], ownX);
    if (std::isfinite(p[3])) {
        const float row = std::floor(p[3]);
        out[GridRow::LastY] = std::clamp(coords.fifth ? sanePosition(coords.fifthChannel(i, j), row) : row,
                                         -kPositionLimit, kPositionLimit);
        out[GridRow::Dissolve] = std::clamp(2.0f * (p[3] - row), 0.0f, 1.0f);
    } else {
        out[GridRow::LastY] = ownY;
        out[GridRow::Dissolve] = 0.0f;
    }
}

/// The decoded nodes of the two node rows around the current output row, for the
/// columns a tile uses. Output rows between the same two node rows (about r of them)
/// share one decoding.
/// Threads: scratch of one tile on one thread.
class NodeRowPair {
public:
    NodeRowPair(const SamplerView& coords, const GridGeometry& g, int firstColumn, int count)
        : m_coords(coords), m_g(g), m_firstColumn(firstColumn), m_count(count)
    {
        for (int ch = 0; ch < GridRow::ChannelCount; ++ch) {
            m_below[ch].resize(static_cast<std::size_t>(count));
            m_above[ch].resize(static_cast<std::size_t>(count));
        }
    }

    /// Interpolates node rows j and j + 1 at fraction fy into `row`, with the differences
    /// between neighbouring columns and the spare entries at the end.
    void interpolate(int j, float fy, GridRow& row)
    {
        decode(j);
        for (int ch = 0; ch < GridRow::ChannelCount; ++ch) {
            const float* below = m_below[ch].data();
            const float* above = m_above[ch].data();
            float* value = row.value[ch].data();
            interpolateNodeRows(below, above, fy, m_count, value, row.delta[ch].data());
            std::fill(row.value[ch].begin() + m_count, row.value[ch].end(), value[m_count - 1]);
            std::fill(row.delta[ch].begin() + m_count - 1, row.delta[ch].end(), 0.0f);
        }
    }

private:
    void decode(int j)
    {
        if (j == m_row)
            return;
        if (j == m_row + 1 && j + 1 < m_g.ny) {
            std::swap(m_below, m_above);
            decodeRow(j + 1, m_above);
        } else {
            decodeRow(j, m_below);
            decodeRow(std::min(j + 1, m_g.ny - 1), m_above);
        }
        m_row = j;
    }

    void decodeRow(int j, std::vector<float> (&out)[GridRow::ChannelCount]) const
    {
        for (int k = 0; k < m_count; ++k) {
            float node[GridRow::ChannelCount];
            readNode(m_coords, m_g, m_firstColumn + k, j, node);
            for (int ch = 0; ch < GridRow::ChannelCount; ++ch)
                out[ch][static_cast<std::size_t>(k)] = node[ch];
        }
    }

    const SamplerView& m_coords;
    const GridGeometry& m_g;
    int m_firstColumn;
    int m_count;
    int m_row = -2;
    std::vector<float> m_below[GridRow::ChannelCount];
    std::vector<float> m_above[GridRow::ChannelCount];
};

ImageTaps tapsFor(const SamplerView& view)
{
    ImageTaps taps;
    taps.pixels = reinterpret_cast<const std::uint32_t*>(view.bytes);
    taps.stride = static_cast<int>(view.bytesPerRow / 4);
    taps.originX = view.originX;
    taps.originY = view.originY;
    taps.lastX = view.originX + view.width - 1;
    taps.lastY = view.originY + view.height - 1;
    taps.lastIndex = (view.height - 1) * taps.stride + view.width - 1;
    taps.toTexel = view.toTexel;
    taps.maxU = float(taps.lastX + 2);
    taps.maxV = float(taps.lastY + 2);
    return taps;
}

void clearTile(const KernelOutput& out)
{
    for (int y = out.y; y < out.y + out.height; ++y)
        std::memset(out.at(out.x, y), 0, static_cast<std::size_t>(out.width) * 4);
}

/// The per-pixel column table of a tile; answers the first and last column used.
void fillColumns(const KernelOutput& out, const GridGeometry& g, std::vector<int>& column,
                 std::vector<float>& fraction, int& firstColumn, int& lastColumn)
{
    cellsOfPixels(out.x, out.width, g.extent.x, g.columnsPerPixel, g.nx, column.data(), fraction.data());
    firstColumn = column[0];
    lastColumn = column[out.width - 1];
    for (int x = 0; x < out.width; ++x)
        column[x] -= firstColumn;
}

/// Whether the samplers are what the kernels read: 8-bit images, then float nodes.
bool samplersFit(const KernelCall& call, int imageCount)
{
    for (int k = 0; k < imageCount; ++k)
        if (call.samplers[k].format != SamplerView::Format::Rgba8)
            return false;
    return call.samplers[imageCount].format == SamplerView::Format::RgbaFloat;
}

/// The per-tile scratch of the row loops: the column table and one grid row.
struct TileScratch {
    std::vector<int> column;
    std::vector<float> fraction;
    GridRow grid;
    int firstColumn = 0;
    int count = 0;

    TileScratch(const KernelOutput& out, const GridGeometry& g)
        : column(static_cast<std::size_t>(out.width))
        , fraction(static_cast<std::size_t>(out.width))
    {
        int lastColumn = 0;
        fillColumns(out, g, column, fraction, firstColumn, lastColumn);
        count = std::min(lastColumn - firstColumn + 2, g.nx - firstColumn);
        for (int ch = 0; ch < GridRow::ChannelCount; ++ch) {
            grid.value[ch].resize(static_cast<std::size_t>(count + kTablePadding));
            grid.delta[ch].resize(static_cast<std::size_t>(count + kTablePadding));
        }
    }
};

/// The tile loop shared by both kernels: samplers are the image(s) then the coordinates.
void runSampling(const KernelCall& call, int imageCount, bool useLastPositions)
{
    const KernelOutput& out = call.output;
    if (out.width <= 0 || !samplersFit(call, imageCount)) {
        clearTile(out);
        return;
    }
    const SamplerView& coords = call.samplers[imageCount];
    const GridGeometry g = gridGeometry(coords, call.extent);
    TileScratch scratch(out, g);
    RowJob job;
    job.width = out.width;
    job.column = scratch.column.data();
    job.fraction = scratch.fraction.data();
    job.grid = &scratch.grid;
    job.first = tapsFor(call.samplers[0]);
    if (imageCount == 2)
        job.last = tapsFor(call.samplers[1]);
    job.twoImages = imageCount == 2;
    job.useLastPositions = useLastPositions;
    const bool simd = g_path.load(std::memory_order_relaxed) == SamplingPath::Fastest;
    NodeRowPair nodes(coords, g, scratch.firstColumn, scratch.count);
    for (int y = out.y; y < out.y + out.height; ++y) {
        int j = 0;
        float fy = 0.0f;
        cellOf(float(y) + 0.5f, g.extent.y, g.rowsPerPixel, g.ny, j, fy);
        nodes.interpolate(j, fy, scratch.grid);
        job.out = out.at(out.x, y);
        if (simd)
            sampleRowSimd(job);
        else
            sampleRowScalar(job, 0, job.width);
    }
}

// sampleCoords2(sampler first, sampler last, sampler coords, float resolution)
void twoImagesKernel(const KernelCall& call)
{
    runSampling(call, 2, false);
}

// sampleCoords(sampler image, sampler coords, float resolution, float fromLastImage):
// warps one image; with fromLastImage set it is the last image and is read at the last
// image's positions (floats 2 and 3 of the nodes), else at the first image's (0 and 1).
void oneImageKernel(const KernelCall& call)
{
    runSampling(call, 1, call.scalars.size() > 1 && call.scalars[1] != 0.0f);
}

} // namespace

void registerSamplingKernels()
{
    static std::once_flag once;
    std::call_once(once, [] {
        using T = KernelArgumentType;
        KernelRegistry::shared().add({kOneImageKernelName, {T::Sampler, T::Sampler, T::Float, T::Float}, oneImageKernel});
        KernelRegistry::shared().add(
            {kTwoImagesKernelName, {T::Sampler, T::Sampler, T::Sampler, T::Float}, twoImagesKernel});
    });
}

void setSamplingPath(SamplingPath path)
{
    g_path.store(path, std::memory_order_relaxed);
}

SamplingPath samplingPath()
{
    return g_path.load(std::memory_order_relaxed);
}

} // namespace plyra::sampling
