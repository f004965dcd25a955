// SPDX-License-Identifier: MIT
#include "platform/movie/movie_sample_table_internal.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace plyra {

const MovieSampleTable::Run& MovieSampleTable::runOf(std::size_t index) const
{
    const auto after = std::upper_bound(m_runs.begin(), m_runs.end(), index,
                                        [](std::size_t i, const Run& run) { return i < run.first; });
    return *(after - 1);
}

MovieSample MovieSampleTable::sample(std::size_t index) const
{
    const Run& run = runOf(index);
    const auto step = static_cast<int64_t>(index - run.first);
    return {run.time + step * run.duration, run.duration, static_cast<int64_t>(m_sizes[index]), m_sync[index]};
}

int64_t MovieSampleTable::offset(std::size_t index) const
{
    const Run& run = runOf(index);
    const std::size_t checkpoint = index / kCheckpointSpacing * kCheckpointSpacing;
    std::size_t from = run.first;
    int64_t result = run.offset;
    if (checkpoint > run.first) {
        from = checkpoint;
        result = m_checkpoints[index / kCheckpointSpacing];
    }
    for (std::size_t i = from; i < index; ++i)
        result += m_sizes[i];
    return result;
}

const std::shared_ptr<MovieSampleStore>& MovieSampleTable::store(std::size_t index) const
{
    return m_stores[runOf(index).store];
}

std::optional<std::size_t> MovieSampleTable::lastStartingBy(int64_t time) const
{
    const auto after = std::upper_bound(m_runs.begin(), m_runs.end(), time,
                                        [](int64_t t, const Run& run) { return t < run.time; });
    if (after == m_runs.begin())
        return std::nullopt;
    const Run& run = *(after - 1);
    const auto steps = static_cast<std::size_t>((time - run.time) / std::max<int64_t>(run.duration, 1));
    return run.first + std::min(steps, run.count - 1);
}

uint32_t MovieSampleTable::storeIndex(std::shared_ptr<MovieSampleStore> store)
{
    const auto known = std::find(m_stores.begin(), m_stores.end(), store);
    if (known != m_stores.end())
        return static_cast<uint32_t>(known - m_stores.begin());
    m_stores.push_back(std::move(store));
    return static_cast<uint32_t>(m_stores.size() - 1);
}

void MovieSampleTable::append(const MovieSample& sample, std::shared_ptr<MovieSampleStore> store, int64_t offset)
{
    assert(sample.size >= 0 && sample.size <= std::numeric_limits<uint32_t>::max());
    const uint32_t storeAt = storeIndex(std::move(store));
    const std::size_t index = m_sizes.size();
    const bool continues = !m_runs.empty() && m_runs.back().store == storeAt && m_runs.back().duration == sample.duration
        && m_runs.back().time + static_cast<int64_t>(m_runs.back().count) * m_runs.back().duration == sample.time
        && m_lastRunEnd == offset;
    if (continues)
        ++m_runs.back().count;
    else
        m_runs.push_back({index, 1, sample.time, sample.duration, offset, storeAt});
    if (index % kCheckpointSpacing == 0)
        m_checkpoints.push_back(offset);
    m_sizes.push_back(static_cast<uint32_t>(sample.size));
    m_sync.push_back(sample.sync);
    m_lastRunEnd = offset + sample.size;
}

} // namespace plyra
