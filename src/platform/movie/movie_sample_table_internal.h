// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_track.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace plyra {

class MovieSampleStore;

/// The samples of one medium, kept small enough that a movie's memory hardly grows with
/// its length: per sample only its size (4 bytes) and key-frame flag (1 bit). Times,
/// durations, stores and offsets are kept per run of samples that follow each other in
/// time with one duration and lie one after the other in one store, which appended
/// frames always do; an offset inside a run is the run's plus the sizes before, summed
/// from a checkpoint kept every 64 samples.
/// Threads: owned by its medium.
class MovieSampleTable {
public:
    std::size_t size() const { return m_sizes.size(); }
    bool empty() const { return m_sizes.empty(); }
    MovieSample sample(std::size_t index) const;
    int64_t offset(std::size_t index) const;
    const std::shared_ptr<MovieSampleStore>& store(std::size_t index) const;
    /// The last sample that starts at or before the time, or none (samples are in time order).
    std::optional<std::size_t> lastStartingBy(int64_t time) const;

    /// Appends a sample; its size must fit in 32 bits.
    void append(const MovieSample& sample, std::shared_ptr<MovieSampleStore> store, int64_t offset);

private:
    static constexpr std::size_t kCheckpointSpacing = 64;

    struct Run {
        std::size_t first = 0;
        std::size_t count = 0;
        int64_t time = 0;
        int64_t duration = 0;
        int64_t offset = 0;
        uint32_t store = 0;
    };
    const Run& runOf(std::size_t index) const;
    uint32_t storeIndex(std::shared_ptr<MovieSampleStore> store);

    std::deque<uint32_t> m_sizes;
    std::vector<bool> m_sync;
    std::deque<int64_t> m_checkpoints;
    std::vector<Run> m_runs;
    int64_t m_lastRunEnd = 0; // the offset just after the last run's data
    std::vector<std::shared_ptr<MovieSampleStore>> m_stores;
};

} // namespace plyra
