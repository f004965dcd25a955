// SPDX-License-Identifier: MIT
#include "platform/movie/movie_track.h"

#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_sample_store_internal.h"

#include <algorithm>

namespace plyra {

MovieMedia::MovieMedia(FourCharCode mediaType, int32_t timeScale, MediaStorage storage,
                       std::shared_ptr<MovieSampleStore> store)
    : m_mediaType(mediaType)
    , m_timeScale(timeScale)
    , m_storage(storage)
    , m_store(std::move(store))
{
}

MovieMedia::~MovieMedia() = default;

std::string MovieMedia::codecName() const
{
    if (!m_codec || !m_codec->parameters)
        return {};
    return avcodec_get_name(m_codec->parameters->codec_id);
}

int64_t MovieMedia::duration() const
{
    if (m_samples.empty())
        return 0;
    const MovieSample& last = m_samples.back();
    return last.time + last.duration;
}

std::optional<size_t> MovieMedia::sampleIndexAtTime(int64_t mediaTime) const
{
    // Samples are stored in time order; find the last one starting at or before the time.
    const auto after = std::upper_bound(m_samples.begin(), m_samples.end(), mediaTime,
                                        [](int64_t time, const MovieSample& s) { return time < s.time; });
    if (after == m_samples.begin())
        return std::nullopt;
    const auto index = static_cast<size_t>(after - m_samples.begin()) - 1;
    const MovieSample& found = m_samples[index];
    if (mediaTime >= found.time + found.duration)
        return std::nullopt;
    return index;
}

std::vector<uint8_t> MovieMedia::sampleData(size_t index) const
{
    std::vector<uint8_t> data;
    if (index >= m_samples.size())
        return data;
    const SampleLocation& location = m_locations[index];
    if (!location.store || !location.store->read(location.offset, m_samples[index].size, data))
        data.clear();
    return data;
}

void MovieMedia::setCodec(FourCharCode codecType, std::shared_ptr<const MovieCodecParameters> codec)
{
    m_codecType = codecType;
    m_codec = std::move(codec);
}

void MovieMedia::appendSample(const MovieSample& sample, std::shared_ptr<MovieSampleStore> store, int64_t offset)
{
    m_samples.push_back(sample);
    m_locations.push_back({std::move(store), offset});
}

void MovieMedia::appendSampleOf(const MovieMedia& source, size_t index, int64_t time, int64_t duration)
{
    MovieSample sample = source.m_samples[index];
    sample.time = time;
    sample.duration = duration;
    appendSample(sample, source.m_locations[index].store, source.m_locations[index].offset);
}

} // namespace plyra
