// SPDX-License-Identifier: MIT
#include "platform/movie/movie_codec_internal.h"

#include "platform/movie/movie.h"

#include "platform/log.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstdarg>
#include <mutex>
#include <array>
#include <string>

namespace plyra {
namespace {

const std::array<MovieCodecSetup, 5> kCodecs{{
    {fourCharCode("mp4v"), "mpeg4", AV_PIX_FMT_YUV420P, false, true, true, nullptr},
    {fourCharCode("avc1"), "libx264", AV_PIX_FMT_YUV420P, false, true, true, nullptr},
    {fourCharCode("mjpb"), "mjpeg", AV_PIX_FMT_YUV420P, false, true, true,
     "Motion JPEG B has no encoder here; writing Motion JPEG A (mjpa) instead"},
    {fourCharCode("rle "), "qtrle", AV_PIX_FMT_ARGB, true, false, false, nullptr},
    {fourCharCode("pxlt"), "prores_ks", AV_PIX_FMT_YUV422P10LE, false, true, false,
     "Pixlet has no encoder here; writing Apple ProRes instead"},
}};

// Codecs that other containers than QuickTime need: VP9 for WebM (the container stores
// no four-character code, so the track gets no tag).
const std::array<MovieCodecSetup, 1> kContainerCodecs{{
    {fourCharCode("vp09"), "libvpx-vp9", AV_PIX_FMT_YUV420P, false, false, false, nullptr},
}};

double qualityFraction(int quality)
{
    return std::clamp(quality, 0, 1023) / 1023.0;
}

// The first pixel format of the encoder's list that the scaler can make from RGBA:
// encoders list their preferred format first.
std::optional<AVPixelFormat> encoderPixelFormat(const AVCodec& encoder)
{
    for (const AVPixelFormat* format = encoder.pix_fmts; format && *format != AV_PIX_FMT_NONE; ++format)
        if (sws_isSupportedOutput(*format) > 0)
            return *format;
    return std::nullopt;
}

// A code outside the table: what it means in a QuickTime file, and FFmpeg's encoder for
// that, unless the encoder is experimental or takes no pictures the scaler can make.
std::optional<MovieCodecSetup> quickTimeCodecSetup(FourCharCode code)
{
    const std::string text = fourCharCodeString(code);
    const uint32_t tag = MKTAG(text[0], text[1], text[2], text[3]);
    const AVCodecTag* const tables[] = {avformat_get_mov_video_tags(), nullptr};
    const AVCodecID id = av_codec_get_id(tables, tag);
    const AVCodec* encoder = id == AV_CODEC_ID_NONE ? nullptr : avcodec_find_encoder(id);
    if (!encoder || (encoder->capabilities & AV_CODEC_CAP_EXPERIMENTAL) || encoder->type != AVMEDIA_TYPE_VIDEO)
        return std::nullopt;
    const std::optional<AVPixelFormat> format = encoderPixelFormat(*encoder);
    if (!format)
        return std::nullopt;
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(*format);
    return MovieCodecSetup{code,
                           encoder->name,
                           *format,
                           (description->flags & AV_PIX_FMT_FLAG_ALPHA) != 0,
                           description->log2_chroma_w > 0,
                           description->log2_chroma_h > 0,
                           nullptr,
                           tag};
}

} // namespace

MovieCodecParameters::MovieCodecParameters()
    : parameters(avcodec_parameters_alloc())
{
}

MovieCodecParameters::~MovieCodecParameters()
{
    avcodec_parameters_free(&parameters);
}

std::shared_ptr<const MovieCodecParameters> MovieCodecParameters::fromContext(const AVCodecContext* context)
{
    auto result = std::make_shared<MovieCodecParameters>();
    if (!result->parameters || avcodec_parameters_from_context(result->parameters, context) < 0)
        return nullptr;
    return result;
}

std::shared_ptr<const MovieCodecParameters> MovieCodecParameters::copyOf(const AVCodecParameters* source)
{
    auto result = std::make_shared<MovieCodecParameters>();
    if (!result->parameters || avcodec_parameters_copy(result->parameters, source) < 0)
        return nullptr;
    return result;
}

std::optional<MovieCodecSetup> movieCodecSetup(FourCharCode code)
{
    const auto found = std::find_if(kCodecs.begin(), kCodecs.end(),
                                    [code](const MovieCodecSetup& setup) { return setup.code == code; });
    if (found != kCodecs.end())
        return *found;
    for (const MovieCodecSetup& setup : kContainerCodecs)
        if (setup.code == code)
            return setup;
    return quickTimeCodecSetup(code);
}

std::vector<FourCharCode> standardMovieCodecs()
{
    std::vector<FourCharCode> codes;
    for (const MovieCodecSetup& setup : kCodecs)
        codes.push_back(setup.code);
    return codes;
}

int qscaleForQuality(int quality)
{
    return 31 - static_cast<int>(qualityFraction(quality) * 30.0 + 0.5);
}

int crfForQuality(int quality)
{
    return 51 - static_cast<int>(qualityFraction(quality) * 39.0 + 0.5);
}

int vp9CrfForQuality(int quality)
{
    return 63 - static_cast<int>(qualityFraction(quality) * 48.0 + 0.5);
}

int proresProfileForQuality(int quality)
{
    return std::clamp(quality, 0, 1023) * 4 / 1023;
}

FourCharCode fourCharCodeFromTag(uint32_t codecTag)
{
    // FFmpeg keeps tags with the first character in the lowest byte.
    return ((codecTag & 0xffu) << 24) | ((codecTag & 0xff00u) << 8) | ((codecTag >> 8) & 0xff00u)
         | (codecTag >> 24);
}

void initializeFfmpegLogging()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Only FFmpeg's errors reach the log; its progress chatter would drown ours.
        av_log_set_level(AV_LOG_ERROR);
        av_log_set_callback([](void* object, int level, const char* format, va_list args) {
            if (level > av_log_get_level())
                return;
            std::array<char, 1024> line{};
            int prefix = 1;
            av_log_format_line2(object, level, format, args, line.data(), static_cast<int>(line.size()), &prefix);
            std::string text = line.data();
            while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
                text.pop_back();
            if (!text.empty())
                logLine("FFmpeg: " + text);
        });
    });
}

std::string ffmpegErrorText(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

MovieStatus ffmpegFailure(const std::string& step, int error)
{
    return MovieStatus::failure(error, step + ": " + ffmpegErrorText(error));
}

bool isMovieCodecAvailable(FourCharCode codecType)
{
    const std::optional<MovieCodecSetup> setup = movieCodecSetup(codecType);
    return setup && avcodec_find_encoder_by_name(setup->encoderName) != nullptr;
}

} // namespace plyra
