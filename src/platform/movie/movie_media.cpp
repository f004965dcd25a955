// SPDX-License-Identifier: MIT
#include "platform/movie/movie_track.h"

#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_sample_store_internal.h"
#include "platform/movie/movie_sample_table_internal.h"

#include <algorithm>

namespace plyra {

MovieMedia::MovieMedia(FourCharCode mediaType, int32_t timeScale, MediaStorage storage,
                       std::shared_ptr<MovieSampleStore> store)
    : m_mediaType(mediaType)
    , m_timeScale(timeScale)
    , m_storage(storage)
    , m_store(std::move(store))
    , m_samples(std::make_unique<MovieSampleTable>())
{
}

MovieMedia::~MovieMedia() = default;

std::string MovieMedia::codecName() const
{
    if (!m_codec || !m_codec->parameters)
        return {};
    return avcodec_get_name(m_codec->parameters->codec_id);
}

size_t MovieMedia::sampleCount() const
{
    return m_samples->size();
}

MovieSample MovieMedia::sample(size_t index) const
{
    return m_samples->sample(index);
}

int64_t MovieMedia::duration() const
{
    if (m_samples->empty())
        return 0;
    const MovieSample last = m_samples->sample(m_samples->size() - 1);
    return last.time + last.duration;
}

std::optional<size_t> MovieMedia::sampleIndexAtTime(int64_t mediaTime) const
{
    // Samples are stored in time order; find the last one starting at or before the time.
    const std::optional<size_t> index = m_samples->lastStartingBy(mediaTime);
    if (!index)
        return std::nullopt;
    const MovieSample found = m_samples->sample(*index);
    if (mediaTime >= found.time + found.duration)
        return std::nullopt;
    return index;
}

std::vector<uint8_t> MovieMedia::sampleData(size_t index) const
{
    std::vector<uint8_t> data;
    if (index >= m_samples->size())
        return data;
    const std::shared_ptr<MovieSampleStore>& store = m_samples->store(index);
    if (!store || !store->read(m_samples->offset(index), m_samples->sample(index).size, data))
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
    m_samples->append(sample, std::move(store), offset);
}

void MovieMedia::appendSampleOf(const MovieMedia& source, size_t index, int64_t time, int64_t duration)
{
    MovieSample sample = source.sample(index);
    sample.time = time;
    sample.duration = duration;
    appendSample(sample, source.m_samples->store(index), source.m_samples->offset(index));
}

} // namespace plyra
