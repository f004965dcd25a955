// SPDX-License-Identifier: MIT
#include "platform/stills/png_encoder.h"

#include "platform/user_text.h"

#include <spng.h>
#include <zlib.h>

#include <cstdlib>
#include <memory>

namespace plyra {
namespace {

// Measured on morph frames of photographs (bench/still_frames_bench): the Up predictor
// with run-length matching encodes at several times the speed of the default filter
// search and zlib level, at a fraction more bytes than the best filter.
constexpr int kFilter = SPNG_FILTER_CHOICE_UP;
constexpr int kStrategy = Z_RLE;
constexpr int kLevel = 1;

struct ContextFree {
    void operator()(spng_ctx* context) const { spng_ctx_free(context); }
};
using Context = std::unique_ptr<spng_ctx, ContextFree>;

std::optional<std::vector<std::uint8_t>> failure(std::string* error, const std::string& step, int code)
{
    if (error)
        *error = fillIn(userText("PngEncoder", "cannot encode the PNG image (%1): %2"), {step, spng_strerror(code)});
    return std::nullopt;
}

int configure(spng_ctx* context, const PixelRows& picture, bool opaque, int dotsPerMeter)
{
    spng_ihdr header{};
    header.width = static_cast<std::uint32_t>(picture.width);
    header.height = static_cast<std::uint32_t>(picture.height);
    header.bit_depth = 8;
    header.color_type = opaque ? SPNG_COLOR_TYPE_TRUECOLOR : SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    spng_phys resolution{static_cast<std::uint32_t>(dotsPerMeter), static_cast<std::uint32_t>(dotsPerMeter), 1};
    int result = spng_set_option(context, SPNG_ENCODE_TO_BUFFER, 1);
    for (const auto& [option, value] : {std::pair{SPNG_FILTER_CHOICE, kFilter}, std::pair{SPNG_IMG_COMPRESSION_STRATEGY, kStrategy},
                                        std::pair{SPNG_IMG_COMPRESSION_LEVEL, kLevel}})
        result = result ? result : spng_set_option(context, option, value);
    result = result ? result : spng_set_ihdr(context, &header);
    return result ? result : spng_set_phys(context, &resolution);
}

} // namespace

std::optional<std::vector<std::uint8_t>> PngEncoder::encode(const PixelRows& picture, int dotsPerMeter, std::string* error)
{
    if (picture.isEmpty()) {
        if (error)
            *error = userText("PngEncoder", "there is no picture to encode");
        return std::nullopt;
    }
    const Context context(spng_ctx_new(SPNG_CTX_ENCODER));
    if (!context)
        return failure(error, userText("PngEncoder", "setting up"), SPNG_EMEM);
    const bool opaque = picture.isOpaque();
    if (const int result = configure(context.get(), picture, opaque, dotsPerMeter))
        return failure(error, userText("PngEncoder", "setting up"), result);
    int result = spng_encode_image(context.get(), nullptr, 0, SPNG_FMT_PNG, SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE);
    if (result)
        return failure(error, userText("PngEncoder", "starting"), result);
    const StoredPixels stored = opaque ? StoredPixels::Rgb : StoredPixels::StraightRgba;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(picture.width) * (opaque ? 3 : 4));
    for (int y = 0; y < picture.height && result == 0; ++y) {
        storeRow(picture, y, stored, row.data());
        result = spng_encode_row(context.get(), row.data(), row.size());
    }
    if (result != SPNG_EOI)
        return failure(error, userText("PngEncoder", "compressing"), result);
    std::size_t size = 0;
    int bufferError = 0;
    void* bytes = spng_get_png_buffer(context.get(), &size, &bufferError);
    if (!bytes)
        return failure(error, userText("PngEncoder", "finishing"), bufferError ? bufferError : SPNG_EMEM);
    std::vector<std::uint8_t> file(static_cast<const std::uint8_t*>(bytes), static_cast<const std::uint8_t*>(bytes) + size);
    std::free(bytes);
    return file;
}

} // namespace plyra
