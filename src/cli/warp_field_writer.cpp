// SPDX-License-Identifier: MIT
#include "cli/warp_field_writer.h"

#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "platform/log.h"

#include "platform/atomic_file_writer.h"

#include <bit>
#include <cstring>

namespace plyra {
namespace {

std::string rectText(const Rect& r)
{
    return formatString("%g,%g,%g,%g", static_cast<double>(r.x), static_cast<double>(r.y),
        static_cast<double>(r.width), static_cast<double>(r.height));
}

void appendLittleEndian(std::vector<char>& bytes, float value)
{
    std::uint32_t bits = std::bit_cast<std::uint32_t>(value);
    for (int i = 0; i < 4; ++i) {
        bytes.push_back(static_cast<char>(bits & 0xffu));
        bits >>= 8;
    }
}

} // namespace

std::string warpFieldHeader(const MorphCalculationJob& job)
{
    const GridSize grid = job.gridSize();
    return formatString("plyra-warp-field nx=%u ny=%u d0=%s d1=%s\n", grid.nx, grid.ny,
        rectText(job.maxDisplacement0()).c_str(), rectText(job.maxDisplacement1()).c_str());
}

std::vector<char> encodeWarpField(const MorphCalculationJob& job)
{
    const std::string header = warpFieldHeader(job);
    std::vector<char> bytes(header.begin(), header.end());
    const std::size_t floats = job.gridSize().nodeCount() * 4;
    const std::vector<float>& coords = job.coords();
    bytes.reserve(bytes.size() + floats * 4);
    for (std::size_t i = 0; i < floats && i < coords.size(); ++i)
        appendLittleEndian(bytes, coords[i]);
    return bytes;
}

bool writeWarpField(const std::vector<MorphLine::Ptr>& lines, float time, Size size, float interval,
    const std::string& path, std::string* error)
{
    const MorphCalculationJob::Ptr job = MorphCalculationJob::create(time, size, interval);
    // The field needs only the lines; the computation runs here, on this thread.
    Morpher::create(Image(), Image(), lines)->processMorphCalculationJob(*job);

    const std::vector<char> bytes = encodeWarpField(*job);
    return AtomicFileWriter::write(path, bytes.data(), bytes.size(), error);
}

} // namespace plyra
