// SPDX-License-Identifier: MIT
#include "platform/movie/animated_webp_writer.h"

#include "platform/movie/movie_output_file_internal.h"
#include "platform/user_text.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace plyra {
namespace {

constexpr int kMaxSide = 16383; // WebP's limit
constexpr std::int64_t kMillisecondsPerSecond = 1000;
// Encoder effort from 0 (fastest) to 6: a long animation should not take minutes.
constexpr int kMethod = 2;

struct EncoderDelete {
    void operator()(WebPAnimEncoder* encoder) const { WebPAnimEncoderDelete(encoder); }
};
using Encoder = std::unique_ptr<WebPAnimEncoder, EncoderDelete>;

MovieStatus failure(const std::string& reason)
{
    return MovieStatus::failure(kMovieInvalidMedia, reason);
}

/// The picture with straight alpha, top row first, as WebP takes it.
std::vector<std::uint8_t> straightTopFirst(const RgbaImage& image)
{
    std::vector<std::uint8_t> rgba(image.bytesPerRow() * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const std::uint8_t* in = image.row(image.height() - 1 - y);
        std::uint8_t* out = rgba.data() + static_cast<std::size_t>(y) * image.bytesPerRow();
        for (int x = 0; x < image.width(); ++x, in += 4, out += 4) {
            for (int c = 0; c < 3; ++c)
                out[c] = unpremultipliedChannel(in[c], in[3]);
            out[3] = in[3];
        }
    }
    return rgba;
}

MovieStatus addFrame(WebPAnimEncoder* encoder, const RgbaImage& image, int timestamp, const WebPConfig& config)
{
    WebPPicture picture;
    if (!WebPPictureInit(&picture))
        return failure(userText("AnimatedWebpWriter", "libwebp does not match the version it was built for"));
    picture.use_argb = 1;
    picture.width = image.width();
    picture.height = image.height();
    const std::vector<std::uint8_t> rgba = straightTopFirst(image);
    const bool added = WebPPictureImportRGBA(&picture, rgba.data(), static_cast<int>(image.bytesPerRow()))
        && WebPAnimEncoderAdd(encoder, &picture, timestamp, &config);
    WebPPictureFree(&picture);
    return added ? MovieStatus::success() : failure(fillIn(userText("AnimatedWebpWriter", "Could not compress a WebP frame: %1"), {WebPAnimEncoderGetError(encoder)}));
}

MovieStatus writeBytes(const std::string& path, const WebPData& data)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    const bool written = file && std::fwrite(data.bytes, 1, data.size, file) == data.size;
    const bool closed = file && std::fclose(file) == 0;
    return written && closed ? MovieStatus::success() : MovieStatus::failure(kMovieFileError, std::strerror(errno));
}

WebPConfig configFor(int quality)
{
    WebPConfig config;
    WebPConfigInit(&config);
    config.quality = static_cast<float>(std::clamp(quality, 0, 1023)) * 100.0f / 1023.0f;
    config.lossless = quality >= 1023 ? 1 : 0;
    config.method = kMethod;
    return config;
}

MovieStatus encodeAll(WebPAnimEncoder* encoder, const AnimationTiming& timing, int quality,
                      const AnimatedWebpWriter::FrameSource& frames, int width, int height)
{
    const WebPConfig config = configFor(quality);
    for (std::size_t index = 0; index < timing.frameCount(); ++index) {
        MovieStatus status;
        const std::optional<RgbaImage> image = frames(index, &status);
        if (!image)
            return status.ok() ? failure(fillIn(userText("AnimatedWebpWriter", "Frame %1 is missing"), {std::to_string(index + 1)})) : status;
        if (image->width() != width || image->height() != height)
            return MovieStatus::failure(kMovieParamError, fillIn(userText("AnimatedWebpWriter", "Frame %1 is %2 x %3 pixels, not %4 x %5"),
                {std::to_string(index + 1), std::to_string(image->width()), std::to_string(image->height()),
                 std::to_string(width), std::to_string(height)}));
        status = addFrame(encoder, *image, static_cast<int>(timing.startIn(index, kMillisecondsPerSecond)), config);
        if (!status.ok())
            return status;
    }
    // The end of the last frame.
    if (!WebPAnimEncoderAdd(encoder, nullptr, static_cast<int>(timing.startIn(timing.frameCount(), kMillisecondsPerSecond)), nullptr))
        return failure(fillIn(userText("AnimatedWebpWriter", "Could not finish the WebP animation: %1"), {WebPAnimEncoderGetError(encoder)}));
    return MovieStatus::success();
}

} // namespace

MovieStatus AnimatedWebpWriter::write(const std::string& path, int width, int height, const AnimationTiming& timing,
                                      int quality, const FrameSource& frames)
{
    if (timing.frameCount() == 0 || width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        return MovieStatus::failure(kMovieParamError, fillIn(userText("AnimatedWebpWriter",
            "Could not write \"%1\": an animated WebP needs frames of 1 to %2 pixels a side"), {path, std::to_string(kMaxSide)}));
    MovieOutputFile file(path);
    if (!file.status().ok())
        return file.status();
    WebPAnimEncoderOptions options;
    if (!WebPAnimEncoderOptionsInit(&options))
        return failure(userText("AnimatedWebpWriter", "libwebp does not match the version it was built for"));
    options.anim_params.loop_count = 0; // for ever
    const Encoder encoder(WebPAnimEncoderNew(width, height, &options));
    if (!encoder)
        return MovieStatus::failure(kMovieMemoryError, userText("AnimatedWebpWriter", "Out of memory while setting up the WebP encoder"));
    MovieStatus status = encodeAll(encoder.get(), timing, quality, frames, width, height);
    WebPData data;
    WebPDataInit(&data);
    if (status.ok() && !WebPAnimEncoderAssemble(encoder.get(), &data))
        status = failure(fillIn(userText("AnimatedWebpWriter", "Could not assemble the WebP file: %1"), {WebPAnimEncoderGetError(encoder.get())}));
    if (status.ok())
        status = writeBytes(file.sidePath(), data);
    WebPDataClear(&data);
    if (!status.ok())
        return MovieStatus::failure(status.code, fillIn(userText("AnimatedWebpWriter", "Could not write \"%1\": %2"), {path, status.message}));
    return file.commit(userText("AnimatedWebpWriter", "Could not move the finished WebP to \"%1\": %2"));
}

} // namespace plyra
