// SPDX-License-Identifier: MIT
#include "platform/movie/movie_encoder_internal.h"

#include "platform/log.h"
#include "platform/user_text.h"
#include "platform/movie/movie.h"

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <mutex>
#include <string>

namespace plyra {
namespace {

void report(MovieStatus* status, MovieStatus value)
{
    if (status)
        *status = std::move(value);
}

// Straight alpha from premultiplied: the codecs that keep alpha store it unassociated.
RgbaImage unpremultiplied(const RgbaImage& image)
{
    RgbaImage result = image;
    for (int y = 0; y < result.height(); ++y) {
        uint8_t* p = result.row(y);
        for (int x = 0; x < result.width(); ++x, p += 4) {
            const unsigned alpha = p[3];
            if (alpha == 255)
                continue;
            for (int c = 0; c < 3; ++c)
                p[c] = unpremultipliedChannel(p[c], alpha);
        }
    }
    return result;
}

// JPEG stores full-range luma and chroma; the other codecs keep the video range.
void setFullRange(SwsContext* scaler)
{
    int* inverseTable = nullptr;
    int* table = nullptr;
    int sourceRange = 0;
    int destinationRange = 0;
    int brightness = 0;
    int contrast = 0;
    int saturation = 0;
    if (sws_getColorspaceDetails(scaler, &inverseTable, &sourceRange, &table, &destinationRange, &brightness,
                                 &contrast, &saturation) >= 0)
        sws_setColorspaceDetails(scaler, inverseTable, sourceRange, table, 1, brightness, contrast, saturation);
}

void logSubstitutionOnce(const MovieCodecSetup& setup)
{
    static std::once_flag mjpegOnce;
    static std::once_flag proresOnce;
    if (!setup.substituteNote)
        return;
    std::call_once(setup.code == fourCharCode("pxlt") ? proresOnce : mjpegOnce,
                   [&setup] { logLine(setup.substituteNote); });
}

} // namespace

MovieEncoder::MovieEncoder(const MovieCodecSetup& setup, int quality)
    : m_setup(setup)
    , m_codecType(setup.code)
    , m_quality(quality)
{
}

MovieEncoder::~MovieEncoder()
{
    sws_freeContext(m_scaler);
    av_packet_free(&m_packet);
    av_frame_free(&m_frame);
    avcodec_free_context(&m_context);
}

std::unique_ptr<MovieEncoder> MovieEncoder::create(FourCharCode codecType, int quality, int width, int height,
                                                   int32_t timeScale, MovieStatus* status)
{
    const std::optional<MovieCodecSetup> setup = movieCodecSetup(codecType);
    if (!setup) {
        report(status, MovieStatus::failure(kMovieCodecUnavailable,
            fillIn(userText("MovieEncoder", "No encoder here writes the codec \"%1\" into a QuickTime movie"),
                {fourCharCodeString(codecType)})));
        return nullptr;
    }
    if (width < 1 || height < 1 || width > 16384 || height > 16384) {
        report(status, MovieStatus::failure(kMovieParamError,
            fillIn(userText("MovieEncoder", "A frame of %1 x %2 pixels cannot be compressed"),
                {std::to_string(width), std::to_string(height)})));
        return nullptr;
    }
    std::unique_ptr<MovieEncoder> encoder(new MovieEncoder(*setup, quality));
    MovieStatus opened = encoder->open(width, height, timeScale);
    if (!opened.ok()) {
        report(status, std::move(opened));
        return nullptr;
    }
    logSubstitutionOnce(*setup);
    report(status, MovieStatus::success());
    return encoder;
}

MovieStatus checkImageCompression(const AddImageAttributes& attributes, int width, int height)
{
    MovieStatus status;
    if (MovieEncoder::create(attributes.codecType, attributes.codecQuality, width, height, kMovieTimeScale, &status))
        return MovieStatus::success();
    return MovieStatus::failure(status.code,
        fillIn(userText("MovieEncoder", "The codec \"%1\" cannot compress frames of %2 x %3 pixels: %4"),
            {fourCharCodeString(attributes.codecType), std::to_string(width), std::to_string(height), status.message}));
}

AVDictionary* MovieEncoder::configureCodec()
{
    AVDictionary* options = nullptr;
    const std::string name = m_setup.encoderName;
    if (name == "mpeg4" || name == "mjpeg") {
        m_context->flags |= AV_CODEC_FLAG_QSCALE;
        m_context->global_quality = qscaleForQuality(m_quality) * FF_QP2LAMBDA;
        m_context->qmin = 1;
        m_context->qmax = 31;
    }
    if (name == "mjpeg") {
        m_context->color_range = AVCOL_RANGE_JPEG;
        m_context->codec_tag = MKTAG('m', 'j', 'p', 'a');
    }
    if (m_setup.codecTag != 0) {
        // A code outside the table: its encoder's fixed-quantiser scale where it has one,
        // and the code itself as the track's tag.
        m_context->codec_tag = m_setup.codecTag;
        m_context->flags |= AV_CODEC_FLAG_QSCALE;
        m_context->global_quality = qscaleForQuality(m_quality) * FF_QP2LAMBDA;
    }
    if (name == "libx264") {
        av_dict_set_int(&options, "crf", crfForQuality(m_quality), 0);
        av_dict_set(&options, "preset", "fast", 0);
        // No look-ahead and no reordering: every frame's packet leaves the encoder at once.
        av_dict_set(&options, "tune", "zerolatency", 0);
    }
    if (name == "libvpx-vp9") {
        // Constant quality, no look-ahead and no hidden reference frames: every frame's
        // packet leaves at once. The effort setting keeps a long movie from taking hours.
        m_context->bit_rate = 0;
        m_context->thread_count = 0;
        av_dict_set_int(&options, "crf", vp9CrfForQuality(m_quality), 0);
        av_dict_set(&options, "deadline", "good", 0);
        av_dict_set_int(&options, "cpu-used", 5, 0);
        av_dict_set_int(&options, "lag-in-frames", 0, 0);
        av_dict_set_int(&options, "auto-alt-ref", 0, 0);
        av_dict_set_int(&options, "row-mt", 1, 0);
    }
    if (name == "prores_ks") {
        // ProRes is slow on one core; its slices encode in parallel without delaying frames.
        m_context->thread_type = FF_THREAD_SLICE;
        m_context->thread_count = 0;
        const int profile = proresProfileForQuality(m_quality);
        av_dict_set_int(&options, "profile", profile, 0);
        if (profile == 4)
            m_context->pix_fmt = AV_PIX_FMT_YUV444P10LE;
    }

    return options;
}

MovieStatus MovieEncoder::open(int width, int height, int32_t timeScale)
{
    initializeFfmpegLogging();
    const AVCodec* codec = avcodec_find_encoder_by_name(m_setup.encoderName);
    if (!codec)
        return MovieStatus::failure(kMovieCodecUnavailable,
                                    formatString("FFmpeg has no %s encoder", m_setup.encoderName));
    m_context = avcodec_alloc_context3(codec);
    m_frame = av_frame_alloc();
    m_packet = av_packet_alloc();
    if (!m_context || !m_frame || !m_packet)
        return MovieStatus::failure(kMovieMemoryError, "Out of memory while setting up the encoder");

    m_context->width = width + (m_setup.needsEvenWidth ? width % 2 : 0);
    m_context->height = height + (m_setup.needsEvenHeight ? height % 2 : 0);
    m_context->pix_fmt = m_setup.pixelFormat;
    m_context->time_base = AVRational{1, timeScale};
    m_context->max_b_frames = 0;
    m_context->thread_count = 1;
    m_context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;

    AVDictionary* options = configureCodec();
    const int result = avcodec_open2(m_context, codec, &options);
    av_dict_free(&options);
    if (result < 0)
        return ffmpegFailure("Could not open the encoder", result);

    m_frame->format = m_context->pix_fmt;
    m_frame->width = m_context->width;
    m_frame->height = m_context->height;
    const int buffers = av_frame_get_buffer(m_frame, 0);
    if (buffers < 0)
        return ffmpegFailure("Could not allocate a frame", buffers);
    m_parameters = MovieCodecParameters::fromContext(m_context);
    if (!m_parameters)
        return MovieStatus::failure(kMovieMemoryError, "Out of memory while describing the codec");
    return MovieStatus::success();
}

MovieStatus MovieEncoder::fillFrame(const RgbaImage& image)
{
    const int made = av_frame_make_writable(m_frame);
    if (made < 0)
        return ffmpegFailure("Could not prepare a frame", made);
    m_scaler = sws_getCachedContext(m_scaler, image.width(), image.height(), AV_PIX_FMT_RGBA,
                                    m_frame->width, m_frame->height, m_context->pix_fmt,
                                    SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr, nullptr);
    if (!m_scaler)
        return MovieStatus::failure(kMovieParamError, "Could not convert the image for the encoder");
    if (m_context->color_range == AVCOL_RANGE_JPEG)
        setFullRange(m_scaler);

    const RgbaImage straight = m_setup.keepsAlpha ? unpremultiplied(image) : RgbaImage();
    const RgbaImage& source = m_setup.keepsAlpha ? straight : image;
    // Rows are stored bottom first; start at the top row and step backwards to flip.
    const uint8_t* top = source.row(source.height() - 1);
    const int stride = -static_cast<int>(source.bytesPerRow());
    sws_scale(m_scaler, &top, &stride, 0, source.height(), m_frame->data, m_frame->linesize);
    return MovieStatus::success();
}

MovieStatus MovieEncoder::encode(const RgbaImage& image, int64_t time, int64_t duration, const PacketSink& sink)
{
    if (image.isEmpty())
        return MovieStatus::failure(kMovieParamError, "The image to append is empty");
    MovieStatus filled = fillFrame(image);
    if (!filled.ok())
        return filled;
    m_frame->pts = time;
    // Fixed-quantiser encoders read the quantiser of each frame from the frame itself.
    m_frame->quality = m_context->global_quality;
    m_pendingDurations[time] = duration;
    const int sent = avcodec_send_frame(m_context, m_frame);
    if (sent < 0)
        return ffmpegFailure("Could not compress the image", sent);
    return drain(sink);
}

MovieStatus MovieEncoder::drain(const PacketSink& sink)
{
    for (;;) {
        const int received = avcodec_receive_packet(m_context, m_packet);
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
            return MovieStatus::success();
        if (received < 0)
            return ffmpegFailure("Could not compress the image", received);
        EncodedPacket packet;
        packet.data = m_packet->data;
        packet.size = static_cast<size_t>(m_packet->size);
        packet.time = m_packet->pts;
        const auto pending = m_pendingDurations.find(m_packet->pts);
        packet.duration = pending != m_pendingDurations.end() ? pending->second : m_packet->duration;
        if (pending != m_pendingDurations.end())
            m_pendingDurations.erase(pending);
        packet.sync = (m_packet->flags & AV_PKT_FLAG_KEY) != 0;
        MovieStatus stored = sink(packet);
        av_packet_unref(m_packet);
        if (!stored.ok())
            return stored;
    }
}

} // namespace plyra
