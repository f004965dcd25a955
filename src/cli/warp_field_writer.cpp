// SPDX-License-Identifier: MIT
#include "cli/warp_field_writer.h"

#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "model/morph_document.h"
#include "platform/log.h"
#include "render/render_settings.h"

#include <QSaveFile>

#include <bit>
#include <cstring>
#include <ostream>

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

int writeWarpField(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    FrameSize size{static_cast<float>(document.frameSize().width()), static_cast<float>(document.frameSize().height())};
    if (options.width && options.height)
        size = {*options.width, *options.height};
    if (!size.isSet()) {
        err << "plyra-render: the document has no frame size; give one with --size WxH\n";
        return 1;
    }
    const float factor = options.interval ? *options.interval : interpolationFactorFromDefaults();
    const MorphCalculationJob::Ptr job = MorphCalculationJob::create(options.time.value_or(0.5f), {size.width, size.height}, factor);
    // The field needs only the lines; the computation runs here, on this thread.
    const Morpher::Ptr morpher = Morpher::create(Image(), Image(), document.morphLines());
    morpher->processMorphCalculationJob(*job);

    const std::vector<char> bytes = encodeWarpField(*job);
    QSaveFile file(QString::fromStdString(options.outputPath));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes.data(), static_cast<qint64>(bytes.size())) != static_cast<qint64>(bytes.size())
        || !file.commit()) {
        err << "plyra-render: cannot write '" << options.outputPath << "': " << file.errorString().toStdString() << "\n";
        return 1;
    }
    return 0;
}

} // namespace plyra
