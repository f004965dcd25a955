// SPDX-License-Identifier: MIT
#include "platform/movie/animated_gif_writer.h"

#include "platform/log.h"
#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_output_file_internal.h"
#include "platform/user_text.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace plyra {
namespace {

// GIF delays count hundredths of a second.
constexpr AVRational kGifTimeBase{1, 100};
constexpr std::int64_t kGifUnitsPerSecond = 100;

struct FrameFree {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using FramePtr = std::unique_ptr<AVFrame, FrameFree>;

struct GraphFree {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};
using GraphPtr = std::unique_ptr<AVFilterGraph, GraphFree>;

/// A picture as the filters take it: straight alpha, blue-green-red-alpha bytes, top row
/// first.
FramePtr filterFrame(const RgbaImage& image, int64_t pts)
{
    FramePtr frame(av_frame_alloc());
    if (!frame)
        return nullptr;
    frame->format = AV_PIX_FMT_BGRA;
    frame->width = image.width();
    frame->height = image.height();
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    for (int y = 0; y < image.height(); ++y) {
        const uint8_t* source = image.row(image.height() - 1 - y);
        uint8_t* target = frame->data[0] + static_cast<std::ptrdiff_t>(y) * frame->linesize[0];
        for (int x = 0; x < image.width(); ++x, source += 4, target += 4) {
            const unsigned alpha = source[3];
            target[0] = unpremultipliedChannel(source[2], alpha);
            target[1] = unpremultipliedChannel(source[1], alpha);
            target[2] = unpremultipliedChannel(source[0], alpha);
            target[3] = static_cast<uint8_t>(alpha);
        }
    }
    frame->pts = pts;
    return frame;
}

/// One filter graph of the two passes: sources of BGRA pictures, one chain of filters,
/// and a sink whose frames are handed on as they come out.
/// Threads: one thread.
class FilterPass {
public:
    /// Adds a source of pictures of that size, numbered from 0 in the order added.
    MovieStatus addSource(int width, int height)
    {
        if (!m_graph)
            m_graph.reset(avfilter_graph_alloc());
        if (!m_graph)
            return MovieStatus::failure(kMovieMemoryError, "Out of memory while setting up the GIF palette");
        const std::string arguments = formatString("video_size=%dx%d:pix_fmt=%d:time_base=1/100:pixel_aspect=1/1",
                                                   width, height, static_cast<int>(AV_PIX_FMT_BGRA));
        AVFilterContext* source = nullptr;
        const std::string name = "source" + std::to_string(m_sources.size());
        const int made = avfilter_graph_create_filter(&source, avfilter_get_by_name("buffer"), name.c_str(),
                                                      arguments.c_str(), nullptr, m_graph.get());
        if (made < 0)
            return ffmpegFailure("Could not set up the GIF palette", made);
        m_sources.push_back(source);
        return MovieStatus::success();
    }

    /// Joins every source, in order, to the inputs of the filter, and the filter to a sink.
    MovieStatus connect(const char* filterName, const char* options)
    {
        AVFilterContext* filter = nullptr;
        int result = avfilter_graph_create_filter(&filter, avfilter_get_by_name(filterName), filterName, options,
                                                  nullptr, m_graph.get());
        if (result >= 0)
            result = avfilter_graph_create_filter(&m_sink, avfilter_get_by_name("buffersink"), "sink", nullptr,
                                                  nullptr, m_graph.get());
        for (unsigned k = 0; result >= 0 && k < m_sources.size(); ++k)
            result = avfilter_link(m_sources[k], 0, filter, k);
        if (result >= 0)
            result = avfilter_link(filter, 0, m_sink, 0);
        if (result >= 0)
            result = avfilter_graph_config(m_graph.get(), nullptr);
        return result < 0 ? ffmpegFailure(std::string("Could not set up the GIF filter ") + filterName, result)
                          : MovieStatus::success();
    }

    /// Gives a picture (or, with none, the end of the pictures) to a source, then hands
    /// every frame the sink has to `take`.
    MovieStatus send(unsigned source, AVFrame* frame, const std::function<MovieStatus(AVFrame*)>& take)
    {
        const int sent = av_buffersrc_add_frame_flags(m_sources[source], frame, AV_BUFFERSRC_FLAG_KEEP_REF);
        if (sent < 0)
            return ffmpegFailure("Could not map a frame onto the GIF palette", sent);
        FramePtr out(av_frame_alloc());
        for (;;) {
            const int received = av_buffersink_get_frame(m_sink, out.get());
            if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
                return MovieStatus::success();
            if (received < 0)
                return ffmpegFailure("Could not map a frame onto the GIF palette", received);
            MovieStatus taken = take(out.get());
            av_frame_unref(out.get());
            if (!taken.ok())
                return taken;
        }
    }

private:
    GraphPtr m_graph;
    std::vector<AVFilterContext*> m_sources;
    AVFilterContext* m_sink = nullptr;
};

/// FFmpeg's GIF encoder and muxer writing one file.
/// Threads: one thread.
class GifOutput {
public:
    ~GifOutput()
    {
        if (m_format && m_format->pb)
            avio_closep(&m_format->pb);
        avformat_free_context(m_format);
        avcodec_free_context(&m_encoder);
        av_packet_free(&m_packet);
    }

    /// The last frame lasts `finalDelay` hundredths of a second.
    MovieStatus open(const std::string& file, int width, int height, std::int64_t finalDelay)
    {
        const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_GIF);
        if (!codec)
            return MovieStatus::failure(kMovieCodecUnavailable, "FFmpeg has no GIF encoder");
        m_encoder = avcodec_alloc_context3(codec);
        m_packet = av_packet_alloc();
        if (!m_encoder || !m_packet || avformat_alloc_output_context2(&m_format, nullptr, "gif", nullptr) < 0)
            return MovieStatus::failure(kMovieMemoryError, "Out of memory while setting up the GIF encoder");
        m_encoder->width = width;
        m_encoder->height = height;
        m_encoder->pix_fmt = AV_PIX_FMT_PAL8;
        m_encoder->time_base = kGifTimeBase;
        int result = avcodec_open2(m_encoder, codec, nullptr);
        if (result < 0)
            return ffmpegFailure("Could not open the GIF encoder", result);
        AVStream* stream = avformat_new_stream(m_format, nullptr);
        if (!stream || avcodec_parameters_from_context(stream->codecpar, m_encoder) < 0)
            return MovieStatus::failure(kMovieMemoryError, "Out of memory while setting up the GIF file");
        stream->time_base = kGifTimeBase;
        result = avio_open(&m_format->pb, file.c_str(), AVIO_FLAG_WRITE);
        if (result < 0)
            return ffmpegFailure("Could not open \"" + file + "\"", result);
        AVDictionary* options = nullptr;
        av_dict_set(&options, "loop", "0", 0); // for ever
        av_dict_set_int(&options, "final_delay", std::clamp<std::int64_t>(finalDelay, 0, 65535), 0);
        result = avformat_write_header(m_format, &options);
        av_dict_free(&options);
        return result < 0 ? ffmpegFailure("Could not write the GIF header", result) : MovieStatus::success();
    }

    /// Compresses one palette frame, or with none the end of the frames.
    MovieStatus encode(const AVFrame* frame)
    {
        int result = avcodec_send_frame(m_encoder, frame);
        while (result >= 0) {
            result = avcodec_receive_packet(m_encoder, m_packet);
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
                return MovieStatus::success();
            if (result < 0)
                break;
            av_packet_rescale_ts(m_packet, m_encoder->time_base, m_format->streams[0]->time_base);
            m_packet->stream_index = 0;
            result = av_write_frame(m_format, m_packet);
            av_packet_unref(m_packet);
            if (result < 0)
                return ffmpegFailure("Could not write a GIF frame", result);
        }
        return ffmpegFailure("Could not compress a GIF frame", result);
    }

    MovieStatus finish()
    {
        MovieStatus flushed = encode(nullptr);
        if (!flushed.ok())
            return flushed;
        int result = av_write_trailer(m_format);
        if (result >= 0)
            result = avio_closep(&m_format->pb);
        return result < 0 ? ffmpegFailure("Could not finish the GIF file", result) : MovieStatus::success();
    }

private:
    AVCodecContext* m_encoder = nullptr;
    AVFormatContext* m_format = nullptr;
    AVPacket* m_packet = nullptr;
};

/// Both passes over the frames, into one open GIF file.
/// Threads: one thread.
class GifPasses {
public:
    GifPasses(int width, int height, const AnimationTiming& timing, const AnimatedGifWriter::FrameSource& frames)
        : m_width(width), m_height(height), m_count(timing.frameCount()), m_timing(timing), m_frames(frames)
    {
    }

    MovieStatus makePalette()
    {
        FilterPass pass;
        MovieStatus status = pass.addSource(m_width, m_height);
        if (status.ok())
            status = pass.connect("palettegen", "stats_mode=full");
        const auto keep = [this](AVFrame* palette) {
            m_palette.reset(av_frame_clone(palette));
            return MovieStatus::success();
        };
        for (std::size_t k = 0; status.ok() && k < m_count; ++k)
            status = sendFrame(pass, k, keep);
        if (status.ok())
            status = pass.send(0, nullptr, keep);
        if (status.ok() && !m_palette)
            return MovieStatus::failure(kMovieInvalidMedia, "The GIF palette could not be made");
        return status;
    }

    MovieStatus mapAndEncode(GifOutput& output)
    {
        FilterPass pass;
        MovieStatus status = pass.addSource(m_width, m_height);
        if (status.ok())
            status = pass.addSource(m_palette->width, m_palette->height);
        if (status.ok())
            status = pass.connect("paletteuse", "dither=sierra2_4a");
        const auto encode = [&output](AVFrame* frame) { return output.encode(frame); };
        if (status.ok())
            status = pass.send(1, m_palette.get(), encode);
        if (status.ok())
            status = pass.send(1, nullptr, encode);
        for (std::size_t k = 0; status.ok() && k < m_count; ++k)
            status = sendFrame(pass, k, encode);
        if (status.ok())
            status = pass.send(0, nullptr, encode);
        return status;
    }

private:
    MovieStatus sendFrame(FilterPass& pass, std::size_t index, const std::function<MovieStatus(AVFrame*)>& take)
    {
        MovieStatus status;
        const std::optional<RgbaImage> image = m_frames(index, &status);
        if (!image)
            return status.ok() ? MovieStatus::failure(kMovieInvalidMedia, formatString("Frame %zu is missing", index + 1))
                               : status;
        if (image->width() != m_width || image->height() != m_height)
            return MovieStatus::failure(kMovieParamError, formatString("Frame %zu is %d x %d pixels, not %d x %d",
                                                                       index + 1, image->width(), image->height(),
                                                                       m_width, m_height));
        FramePtr frame = filterFrame(*image, m_timing.startIn(index, kGifUnitsPerSecond));
        if (!frame)
            return MovieStatus::failure(kMovieMemoryError, "Out of memory while preparing a GIF frame");
        return pass.send(0, frame.get(), take);
    }

    int m_width;
    int m_height;
    std::size_t m_count;
    const AnimationTiming& m_timing;
    const AnimatedGifWriter::FrameSource& m_frames;
    FramePtr m_palette;
};

} // namespace

MovieStatus AnimatedGifWriter::write(const std::string& path, int width, int height, const AnimationTiming& timing,
                                     const FrameSource& frames)
{
    initializeFfmpegLogging();
    const std::size_t count = timing.frameCount();
    if (count == 0 || width < 1 || height < 1 || width > 65535 || height > 65535)
        return MovieStatus::failure(kMovieParamError, formatString(
            "Could not write \"%s\": an animated GIF needs frames of 1 to 65535 pixels a side", path.c_str()));
    MovieOutputFile file(path);
    if (!file.status().ok())
        return file.status();
    GifPasses passes(width, height, timing, frames);
    MovieStatus status = passes.makePalette();
    GifOutput output;
    const std::int64_t finalDelay = timing.startIn(count, kGifUnitsPerSecond) - timing.startIn(count - 1, kGifUnitsPerSecond);
    if (status.ok())
        status = output.open(file.sidePath(), width, height, finalDelay);
    if (status.ok())
        status = passes.mapAndEncode(output);
    if (status.ok())
        status = output.finish();
    if (!status.ok())
        return MovieStatus::failure(status.code, fillIn(userText("AnimatedGifWriter", "Could not write \"%1\": %2"), {path, status.message}));
    return file.commit(userText("AnimatedGifWriter", "Could not move the finished GIF to \"%1\": %2"));
}

} // namespace plyra
