// SPDX-License-Identifier: MIT
#include "platform/movie/movie_file_io_internal.h"

#include "platform/log.h"
#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_sample_store_internal.h"
#include "platform/user_text.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <map>
#include <vector>

namespace plyra {
namespace {

void report(MovieStatus* status, MovieStatus value)
{
    if (status)
        *status = std::move(value);
}

MovieStatus readFailure(const std::string& path, const std::string& why)
{
    return MovieStatus::failure(kMovieFileError,
                                fillIn(userText("MovieFileReader", "Could not read the movie \"%1\": %2"), {path, why}));
}

/// Closes the demuxer however reading ends.
/// Threads: the reading thread.
struct InputCloser {
    AVFormatContext* context = nullptr;
    ~InputCloser() { avformat_close_input(&context); }
};

FourCharCode mediaTypeOf(const AVCodecParameters& parameters)
{
    switch (parameters.codec_type) {
    case AVMEDIA_TYPE_VIDEO:
        return kVideoMediaType;
    case AVMEDIA_TYPE_AUDIO:
        return kSoundMediaType;
    default:
        return 0;
    }
}

} // namespace

std::unique_ptr<Movie> Movie::open(const std::string& path, MovieStatus* status)
{
    return MovieFileReader::read(path, status);
}

std::unique_ptr<Movie> MovieFileReader::read(const std::string& path, MovieStatus* status)
{
    MovieStatus opened;
    auto fileStore = MovieSampleStore::openFile(path, &opened);
    if (!fileStore) {
        report(status, std::move(opened));
        return nullptr;
    }
    InputCloser input;
    AVDictionary* options = nullptr;
    // The stored sample table as it is: edits are not applied to the samples.
    av_dict_set(&options, "ignore_editlist", "1", 0);
    initializeFfmpegLogging();
    const int result = avformat_open_input(&input.context, path.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (result < 0) {
        report(status, readFailure(path, ffmpegErrorText(result)));
        return nullptr;
    }
    std::unique_ptr<Movie> movie(new Movie(path));
    movie->m_fileStore = fileStore;
    const TrackMap tracks = addTracks(*input.context, *movie, fileStore);
    const int readResult = readSamples(*input.context, tracks, fileStore, movie->sampleStore(MediaStorage::Memory));
    if (readResult < 0 && readResult != AVERROR_EOF) {
        report(status, readFailure(path, ffmpegErrorText(readResult)));
        return nullptr;
    }
    describe(*movie, tracks);
    report(status, MovieStatus::success());
    return movie;
}

MovieFileReader::TrackMap MovieFileReader::addTracks(const AVFormatContext& input, Movie& movie,
                                                     const std::shared_ptr<MovieSampleStore>& fileStore)
{
    TrackMap tracks;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream* stream = input.streams[i];
        const AVCodecParameters& parameters = *stream->codecpar;
        const FourCharCode mediaType = mediaTypeOf(parameters);
        if (mediaType == 0 || stream->time_base.num != 1 || stream->time_base.den <= 0)
            continue;
        const MovieSize size{static_cast<float>(parameters.width), static_cast<float>(parameters.height)};
        MovieTrack* track = movie.newTrack(size, mediaType == kSoundMediaType ? 256 : 0);
        track->newMedia(mediaType, stream->time_base.den, MediaStorage::File, fileStore);
        track->media()->setCodec(fourCharCodeFromTag(parameters.codec_tag), MovieCodecParameters::copyOf(&parameters));
        tracks[static_cast<int>(i)] = track;
    }
    return tracks;
}

int MovieFileReader::readSamples(AVFormatContext& input, const TrackMap& tracks,
                                 const std::shared_ptr<MovieSampleStore>& fileStore,
                                 const std::shared_ptr<MovieSampleStore>& memoryStore)
{
    AVPacket* packet = av_packet_alloc();
    if (!packet)
        return AVERROR(ENOMEM);
    int result = 0;
    std::vector<uint8_t> check;
    while ((result = av_read_frame(&input, packet)) >= 0) {
        const auto found = tracks.find(packet->stream_index);
        if (found != tracks.end()) {
            MovieMedia& media = *found->second->media();
            const int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
            const MovieSample sample{time, std::max<int64_t>(packet->duration, 1), packet->size,
                                     (packet->flags & AV_PKT_FLAG_KEY) != 0};
            // Samples refer to their bytes in the file; a packet that does not say where
            // it lies, or whose bytes are not there as read, is kept in memory instead.
            if (packet->pos >= 0 && fileStore->read(packet->pos, packet->size, check)
                && std::equal(check.begin(), check.end(), packet->data)) {
                media.appendSample(sample, fileStore, packet->pos);
            } else {
                const int64_t offset = memoryStore->append(packet->data, static_cast<size_t>(packet->size), nullptr);
                media.appendSample(sample, memoryStore, offset);
            }
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return result;
}

void MovieFileReader::describe(Movie& movie, const TrackMap& tracks)
{
    for (const auto& [index, track] : tracks) {
        const MovieMedia& media = *track->media();
        track->setRange({MovieTime::zero(), MovieTime{media.duration(), media.timeScale(), 0}});
    }
    const MovieTrack* video = nullptr;
    for (const auto& entry : tracks) {
        if (entry.second->mediaType() == kVideoMediaType) {
            video = entry.second; // the first video track gives the natural size
            break;
        }
    }
    movie.setHasVideo(video != nullptr);
    movie.setHasAudio(std::any_of(tracks.begin(), tracks.end(),
                                  [](const auto& entry) { return entry.second->mediaType() == kSoundMediaType; }));
    movie.setHasDuration(true);
    movie.setDuration(movie.duration());
    movie.setEditable(false);
    if (video && video->size().width >= 1)
        movie.setNaturalSize(video->size());
}

} // namespace plyra
