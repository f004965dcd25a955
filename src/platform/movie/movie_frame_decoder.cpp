// SPDX-License-Identifier: MIT
#include "platform/movie/movie_frame_decoder.h"

#include "platform/log.h"
#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_track.h"

extern "C" {
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <cstring>

namespace plyra {
namespace {

void premultiply(RgbaImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        uint8_t* p = image.row(y);
        for (int x = 0; x < image.width(); ++x, p += 4) {
            const unsigned alpha = p[3];
            for (int c = 0; c < 3; ++c)
                p[c] = static_cast<uint8_t>((p[c] * alpha + 127) / 255);
        }
    }
}

} // namespace

MovieFrameDecoder::MovieFrameDecoder(const MovieMedia& media)
    : m_media(media)
{
}

MovieFrameDecoder::~MovieFrameDecoder()
{
    sws_freeContext(m_scaler);
    av_packet_free(&m_packet);
    av_frame_free(&m_frame);
    avcodec_free_context(&m_context);
}

MovieStatus MovieFrameDecoder::openCodec()
{
    const MovieCodecParameters* parameters = m_media.codecParameters();
    if (!parameters || !parameters->parameters)
        return MovieStatus::failure(kMovieInvalidMedia, "The track has no codec to decode with");
    initializeFfmpegLogging();
    const AVCodec* codec = avcodec_find_decoder(parameters->parameters->codec_id);
    if (!codec)
        return MovieStatus::failure(kMovieCodecUnavailable, formatString(
            "FFmpeg has no decoder for %s", avcodec_get_name(parameters->parameters->codec_id)));
    m_context = avcodec_alloc_context3(codec);
    m_frame = av_frame_alloc();
    m_packet = av_packet_alloc();
    if (!m_context || !m_frame || !m_packet)
        return MovieStatus::failure(kMovieMemoryError, "Out of memory while setting up the decoder");
    int result = avcodec_parameters_to_context(m_context, parameters->parameters);
    m_context->thread_count = 1;
    if (result >= 0)
        result = avcodec_open2(m_context, codec, nullptr);
    if (result < 0)
        return ffmpegFailure("Could not open the decoder", result);
    return MovieStatus::success();
}

MovieStatus MovieFrameDecoder::send(size_t sampleIndex)
{
    const std::vector<uint8_t> data = m_media.sampleData(sampleIndex);
    if (data.empty())
        return MovieStatus::failure(kMovieFileError, formatString("Could not read frame %zu", sampleIndex));
    av_packet_unref(m_packet);
    const int made = av_new_packet(m_packet, static_cast<int>(data.size()));
    if (made < 0)
        return ffmpegFailure("Could not decode a frame", made);
    std::memcpy(m_packet->data, data.data(), data.size());
    const MovieSample& sample = m_media.sample(sampleIndex);
    m_packet->pts = m_packet->dts = sample.time;
    m_packet->flags = sample.sync ? AV_PKT_FLAG_KEY : 0;
    const int sent = avcodec_send_packet(m_context, m_packet);
    if (sent < 0)
        return ffmpegFailure("Could not decode a frame", sent);
    return MovieStatus::success();
}

MovieStatus MovieFrameDecoder::receive(bool expectFrame)
{
    int received = avcodec_receive_frame(m_context, m_frame);
    if (received == AVERROR(EAGAIN) && expectFrame) {
        // A decoder that holds frames back gives them up when the input ends.
        avcodec_send_packet(m_context, nullptr);
        received = avcodec_receive_frame(m_context, m_frame);
        avcodec_flush_buffers(m_context);
        m_flushed = true;
    }
    if (received == AVERROR(EAGAIN) && !expectFrame)
        return MovieStatus::success();
    if (received < 0)
        return ffmpegFailure("Could not decode a frame", received);
    return MovieStatus::success();
}

RgbaImage MovieFrameDecoder::convertFrame()
{
    RgbaImage image(m_frame->width, m_frame->height);
    const auto format = static_cast<AVPixelFormat>(m_frame->format);
    m_scaler = sws_getCachedContext(m_scaler, m_frame->width, m_frame->height, format, image.width(),
                                    image.height(), AV_PIX_FMT_RGBA, SWS_BICUBIC | SWS_ACCURATE_RND, nullptr,
                                    nullptr, nullptr);
    if (!m_scaler || image.isEmpty())
        return {};
    // Decoded rows run top first; write them from the top row down to store bottom first.
    uint8_t* top = image.row(image.height() - 1);
    const int stride = -static_cast<int>(image.bytesPerRow());
    sws_scale(m_scaler, m_frame->data, m_frame->linesize, 0, m_frame->height, &top, &stride);
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    if (descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA))
        premultiply(image);
    return image;
}

std::optional<RgbaImage> MovieFrameDecoder::decode(size_t sampleIndex, MovieStatus* status)
{
    MovieStatus result;
    if (sampleIndex >= m_media.sampleCount())
        result = MovieStatus::failure(kMovieParamError, formatString("There is no frame %zu", sampleIndex));
    else if (!m_context)
        result = openCodec();
    size_t start = sampleIndex;
    if (result.ok() && !(m_lastDecoded && *m_lastDecoded + 1 == sampleIndex)) {
        while (start > 0 && !m_media.sample(start).sync)
            --start;
        // Forward past no key frame: go on from the frame decoded last instead of
        // decoding from the key frame again (a player that skips frames does this).
        if (m_lastDecoded && *m_lastDecoded >= start && *m_lastDecoded < sampleIndex)
            start = *m_lastDecoded + 1;
        else
            avcodec_flush_buffers(m_context);
    }
    for (size_t i = start; result.ok() && i <= sampleIndex; ++i) {
        result = send(i);
        if (result.ok())
            result = receive(i == sampleIndex);
    }
    if (status)
        *status = result;
    if (!result.ok()) {
        m_lastDecoded.reset();
        m_flushed = false;
        return std::nullopt;
    }
    m_lastDecoded = m_flushed ? std::nullopt : std::optional<size_t>(sampleIndex);
    m_flushed = false;
    return convertFrame();
}

} // namespace plyra
