// SPDX-License-Identifier: MIT
#include "platform/movie/movie_file_io_internal.h"

#include "platform/log.h"
#include "platform/user_text.h"
#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_output_file_internal.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace plyra {
namespace {

/// One track on its way into the file: its media, its stream and the next sample.
/// Threads: the writing thread.
struct TrackOutput {
    const MovieMedia* media = nullptr;
    AVStream* stream = nullptr;
    size_t next = 0;
};

/// text names the file as %1 and FFmpeg's reason as %2.
MovieStatus ffmpegFailure(const std::string& text, const std::string& path, int error)
{
    return MovieStatus::failure(error, fillIn(text, {path, ffmpegErrorText(error)}));
}

/// The muxer of one output file.
/// Threads: the writing thread.
class MovieMuxer {
public:
    ~MovieMuxer()
    {
        if (m_context && m_context->pb)
            avio_closep(&m_context->pb);
        avformat_free_context(m_context);
    }

    /// Writes to path; messages name shownPath, the file the user asked for.
    MovieStatus open(const std::string& path, const std::string& shownPath, MovieContainer container)
    {
        m_path = path;
        m_shownPath = shownPath;
        m_container = container;
        initializeFfmpegLogging();
        const char* const formats[] = {"mov", "mp4", "webm"};
        const int made = avformat_alloc_output_context2(&m_context, nullptr, formats[static_cast<int>(container)], path.c_str());
        if (made < 0 || !m_context)
            return ffmpegFailure(userText("MovieFileWriter", "Could not set up the movie file \"%1\": %2"), m_shownPath,
                made < 0 ? made : AVERROR(ENOMEM));
        return MovieStatus::success();
    }

    AVStream* addStream(const MovieMedia& media)
    {
        AVStream* stream = avformat_new_stream(m_context, nullptr);
        if (!stream || avcodec_parameters_copy(stream->codecpar, media.codecParameters()->parameters) < 0)
            return nullptr;
        stream->time_base = AVRational{1, media.timeScale()};
        return stream;
    }

    MovieStatus writeHeader(bool fastStart, int32_t videoTimeScale)
    {
        const int opened = avio_open(&m_context->pb, m_path.c_str(), AVIO_FLAG_WRITE);
        if (opened < 0)
            return ffmpegFailure(userText("MovieFileWriter", "Could not create \"%1\": %2"), m_shownPath, opened);
        AVDictionary* options = nullptr;
        if (m_container == MovieContainer::WebM) {
            // The index of a WebM file goes in front too, for players that stream it.
            if (fastStart)
                av_dict_set(&options, "cues_to_front", "1", 0);
        } else {
            if (fastStart)
                av_dict_set(&options, "movflags", "+faststart", 0);
            av_dict_set_int(&options, "movie_timescale", kMovieTimeScale, 0);
            if (videoTimeScale > 0)
                av_dict_set_int(&options, "video_track_timescale", videoTimeScale, 0);
        }
        const int written = avformat_write_header(m_context, &options);
        av_dict_free(&options);
        if (written < 0)
            return ffmpegFailure(
                userText("MovieFileWriter", "Could not start writing \"%1\": %2"), m_shownPath, written);
        return MovieStatus::success();
    }

    MovieStatus writeSample(TrackOutput& output)
    {
        const MovieSample& sample = output.media->sample(output.next);
        std::vector<uint8_t> data = output.media->sampleData(output.next);
        if (data.size() != static_cast<size_t>(sample.size))
            return MovieStatus::failure(kMovieFileError, formatString(
                "Could not read frame %zu of the movie's storage", output.next));
        AVPacket* packet = av_packet_alloc();
        if (!packet || av_new_packet(packet, static_cast<int>(data.size())) < 0) {
            av_packet_free(&packet);
            return MovieStatus::failure(kMovieMemoryError, "Out of memory while writing the movie");
        }
        std::memcpy(packet->data, data.data(), data.size());
        packet->pts = packet->dts = sample.time;
        packet->duration = sample.duration;
        packet->flags = sample.sync ? AV_PKT_FLAG_KEY : 0;
        packet->stream_index = output.stream->index;
        av_packet_rescale_ts(packet, AVRational{1, output.media->timeScale()}, output.stream->time_base);
        const int written = av_interleaved_write_frame(m_context, packet);
        av_packet_free(&packet);
        ++output.next;
        if (written < 0)
            return ffmpegFailure(
                userText("MovieFileWriter", "Could not write a frame to \"%1\": %2"), m_shownPath, written);
        return MovieStatus::success();
    }

    MovieStatus finish()
    {
        const int ended = av_write_trailer(m_context);
        const int closed = avio_closep(&m_context->pb);
        if (ended < 0)
            return ffmpegFailure(userText("MovieFileWriter", "Could not finish \"%1\": %2"), m_shownPath, ended);
        if (closed < 0)
            return ffmpegFailure(userText("MovieFileWriter", "Could not close \"%1\": %2"), m_shownPath, closed);
        return MovieStatus::success();
    }

private:
    AVFormatContext* m_context = nullptr;
    std::string m_path;
    std::string m_shownPath;
    MovieContainer m_container = MovieContainer::QuickTime;
};

std::vector<TrackOutput> tracksToWrite(const Movie& movie)
{
    std::vector<TrackOutput> outputs;
    for (size_t i = 0; i < movie.trackCount(); ++i) {
        const MovieMedia* media = movie.track(i)->media();
        if (media && media->codecParameters() && media->sampleCount() > 0)
            outputs.push_back({media, nullptr, 0});
    }
    return outputs;
}

/// The common time scale of the video tracks, or 0 when they differ.
int32_t videoTimeScale(const std::vector<TrackOutput>& outputs)
{
    int32_t scale = 0;
    for (const TrackOutput& output : outputs) {
        if (output.media->mediaType() != kVideoMediaType)
            continue;
        if (scale != 0 && scale != output.media->timeScale())
            return 0;
        scale = output.media->timeScale();
    }
    return scale;
}

/// The track whose next sample comes first in time, or null when all are written.
TrackOutput* nextInTime(std::vector<TrackOutput>& outputs)
{
    TrackOutput* earliest = nullptr;
    double earliestSeconds = 0;
    for (TrackOutput& output : outputs) {
        if (output.next >= output.media->sampleCount())
            continue;
        const double seconds = MovieTime{output.media->sample(output.next).time, output.media->timeScale(), 0}.seconds();
        if (!earliest || seconds < earliestSeconds) {
            earliest = &output;
            earliestSeconds = seconds;
        }
    }
    return earliest;
}

MovieStatus muxInto(const std::string& path, const std::string& shownPath, std::vector<TrackOutput>& outputs,
                    bool fastStart, MovieContainer container)
{
    MovieMuxer muxer;
    MovieStatus status = muxer.open(path, shownPath, container);
    for (TrackOutput& output : outputs) {
        if (!status.ok())
            return status;
        output.stream = muxer.addStream(*output.media);
        if (!output.stream)
            status = MovieStatus::failure(kMovieMemoryError, "Out of memory while describing a track");
    }
    if (status.ok())
        status = muxer.writeHeader(fastStart, videoTimeScale(outputs));
    while (status.ok()) {
        TrackOutput* output = nextInTime(outputs);
        if (!output)
            return muxer.finish();
        status = muxer.writeSample(*output);
    }
    return status;
}

} // namespace

MovieStatus writeMovieFile(const Movie& movie, const std::string& path, bool fastStart, MovieContainer container)
{
    std::vector<TrackOutput> outputs = tracksToWrite(movie);
    if (outputs.empty())
        return MovieStatus::failure(kMovieInvalidMedia,
            fillIn(userText("MovieFileWriter", "Could not write \"%1\": the movie has no frames"), {path}));
    // Only a regular file or a new name is replaced; a link to a file keeps being a link.
    MovieOutputFile file(path);
    if (!file.status().ok())
        return file.status();
    const MovieStatus status = muxInto(file.sidePath(), path, outputs, fastStart, container);
    return status.ok() ? file.commit(userText("MovieFileWriter", "Could not move the finished movie to \"%1\": %2")) : status;
}

MovieStatus Movie::writeToFile(const std::string& path, bool flatten, MovieContainer container)
{
    return writeMovieFile(*this, path, flatten, container);
}

} // namespace plyra
