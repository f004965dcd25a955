// SPDX-License-Identifier: MIT
#include "platform/movie/movie_track.h"

#include "platform/log.h"
#include "platform/movie/movie_encoder_internal.h"
#include "platform/movie/movie_sample_store_internal.h"

#include <algorithm>

namespace plyra {
namespace {

const AddImageAttributes kDefaultImageAttributes{};

} // namespace

MovieTrack::MovieTrack(int trackId, int32_t movieTimeScale, MovieSize size, int16_t volume)
    : m_trackId(trackId)
    , m_movieTimeScale(movieTimeScale)
    , m_size(size)
    , m_volume(volume)
    , m_range{MovieTime::zero(movieTimeScale), MovieTime::zero(movieTimeScale)}
{
}

MovieTrack::~MovieTrack() = default;

FourCharCode MovieTrack::mediaType() const
{
    return m_media ? m_media->mediaType() : 0;
}

void MovieTrack::setRange(const MovieTimeRange& range)
{
    m_range = {range.time.convertedTo(m_movieTimeScale), range.duration.convertedTo(m_movieTimeScale)};
}

void MovieTrack::extendRangeTo(int64_t trackEnd)
{
    const int64_t end = std::max(m_range.end().value, trackEnd);
    m_range.duration.value = end - m_range.time.value;
}

MovieStatus MovieTrack::newMedia(FourCharCode mediaType, int32_t timeScale, MediaStorage storage,
                                 std::shared_ptr<MovieSampleStore> store)
{
    if (m_media)
        return MovieStatus::failure(kMovieInvalidMedia, "The track already has media");
    if (timeScale <= 0 || !store)
        return MovieStatus::failure(kMovieParamError, "Media need a positive time scale and a store");
    m_media = std::make_unique<MovieMedia>(mediaType, timeScale, storage, std::move(store));
    return MovieStatus::success();
}

MovieStatus MovieTrack::insertMedia(int64_t trackStart, int64_t mediaTime, int64_t mediaDuration, double rate)
{
    if (!m_media)
        return MovieStatus::failure(kMovieInvalidMedia, "The track has no media");
    if (trackStart < 0 || mediaTime < 0 || mediaDuration < 0 || !(rate > 0))
        return MovieStatus::failure(kMovieParamError, "Media cannot be inserted at a negative time or rate");
    m_edits.push_back({trackStart, mediaTime, mediaDuration, rate});
    const MovieTime span{mediaDuration, m_media->timeScale(), 0};
    extendRangeTo(trackStart + static_cast<int64_t>(static_cast<double>(span.valueIn(m_movieTimeScale)) / rate));
    return MovieStatus::success();
}

MovieStatus MovieTrack::insertSegmentOfTrack(const MovieTrack& source, const MovieTimeRange& range,
                                             const MovieTime& atTime)
{
    const MovieMedia* from = source.media();
    if (!from || from->sampleCount() == 0)
        return MovieStatus::failure(kMovieInvalidMedia, "The source track has no samples");
    if (!m_media || m_media->mediaType() != from->mediaType())
        return MovieStatus::failure(kMovieInvalidMedia, "The track's media do not match the source's");
    if (m_media->sampleCount() > 0 && m_media->codecParameters() != from->codecParameters())
        return MovieStatus::failure(kMovieInvalidMedia, "The track's samples use another codec");
    const int32_t scale = from->timeScale();
    const int64_t start = range.time.valueIn(scale);
    const int64_t end = range.end().valueIn(scale);
    const int64_t destination = atTime.valueIn(m_media->timeScale());
    if (destination < m_media->duration())
        return MovieStatus::failure(kMovieInvalidTime, "Segments are added at or after the end of a track");
    if (end <= start)
        return MovieStatus::success();

    if (m_media->timeScale() != scale)
        return MovieStatus::failure(kMovieInvalidMedia, "The track's media use another time scale");

    size_t first = 0;
    while (first < from->sampleCount() && from->sample(first).time + from->sample(first).duration <= start)
        ++first;
    // Start on a key frame, so that the copy decodes on its own.
    while (first > 0 && first < from->sampleCount() && !from->sample(first).sync)
        --first;
    if (first == from->sampleCount() || from->sample(first).time >= end)
        return MovieStatus::success();

    if (!m_media->codecParameters())
        m_media->setCodec(from->codecType(), from->sharedCodecParameters());
    const int64_t copyStart = from->sample(first).time;
    for (size_t i = first; i < from->sampleCount() && from->sample(i).time < end; ++i) {
        const MovieSample& sample = from->sample(i);
        const int64_t duration = std::min(sample.time + sample.duration, end) - sample.time;
        m_media->appendSampleOf(*from, i, destination + sample.time - copyStart, std::max<int64_t>(duration, 1));
    }
    extendRangeTo(MovieTime{m_media->duration(), scale, 0}.valueIn(m_movieTimeScale));
    return MovieStatus::success();
}

void MovieTrack::finishCompression()
{
    m_encoder.reset();
}

MovieStatus MovieTrack::startEncoding(const RgbaImage& image, const AddImageAttributes& attributes)
{
    if (m_media->sampleCount() > 0)
        return MovieStatus::failure(kMovieInvalidMedia,
                                    "Images can only be added to a track whose frames were all added as images");
    const bool sized = m_size.width >= 1 && m_size.height >= 1;
    MovieStatus status;
    m_encoder = MovieEncoder::create(attributes.codecType, attributes.codecQuality,
                                     sized ? static_cast<int>(m_size.width) : image.width(),
                                     sized ? static_cast<int>(m_size.height) : image.height(),
                                     m_media->timeScale(), &status);
    if (!m_encoder)
        return status;
    m_media->setCodec(attributes.codecType, m_encoder->parameters());
    if (!sized)
        m_size = {static_cast<float>(image.width()), static_cast<float>(image.height())};
    return MovieStatus::success();
}

void MovieTrack::noteAttributeChange(const AddImageAttributes& attributes)
{
    if (m_attributeChangeLogged)
        return;
    if (attributes.codecType == m_encoder->codecType() && attributes.codecQuality == m_encoder->quality())
        return;
    m_attributeChangeLogged = true;
    logLine(formatString("Track %d keeps codec \"%s\" at quality %d for all its frames", m_trackId,
                         fourCharCodeString(m_encoder->codecType()).c_str(), m_encoder->quality()));
}

MovieStatus MovieTrack::addImage(const RgbaImage& image, const MovieTime& duration,
                                 const std::optional<AddImageAttributes>& attributes)
{
    if (!m_media || m_media->mediaType() != kVideoMediaType)
        return MovieStatus::failure(kMovieInvalidMedia, "Images can only be added to video tracks");
    if (image.isEmpty())
        return MovieStatus::failure(kMovieParamError, "The image to append is empty");
    if (duration.value < 0 || duration.scale <= 0 || duration.isIndefinite())
        return MovieStatus::failure(kMovieInvalidTime, "A frame cannot last a negative or endless time");
    const AddImageAttributes& chosen = attributes ? *attributes : kDefaultImageAttributes;
    if (!m_encoder) {
        MovieStatus started = startEncoding(image, chosen);
        if (!started.ok())
            return started;
    } else {
        noteAttributeChange(chosen);
    }
    // A file cannot hold two frames at one time: a zero duration becomes one tick.
    const int64_t ticks = std::max<int64_t>(duration.valueIn(m_media->timeScale()), 1);
    MovieMedia& media = *m_media;
    const auto store = media.store();
    MovieStatus result = m_encoder->encode(image, media.duration(), ticks, [&](const EncodedPacket& packet) {
        MovieStatus appended;
        const int64_t offset = store->append(packet.data, packet.size, &appended);
        if (offset < 0)
            return appended;
        media.appendSample({packet.time, packet.duration, static_cast<int64_t>(packet.size), packet.sync},
                           store, offset);
        return MovieStatus::success();
    });
    extendRangeTo(MovieTime{media.duration(), media.timeScale(), 0}.valueIn(m_movieTimeScale));
    return result;
}

} // namespace plyra
