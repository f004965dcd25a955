// SPDX-License-Identifier: MIT
#include "platform/movie/movie_sample_store_internal.h"
#include "platform/movie/movie_sample_table_internal.h"

#include <gtest/gtest.h>

#include <random>

namespace plyra {
namespace {

struct Expected {
    MovieSample sample;
    std::shared_ptr<MovieSampleStore> store;
    int64_t offset;
};

// The compact table answers exactly what a plain list of every sample would, through
// runs that break on a new duration, a gap in time, a jump in the store or another store.
TEST(MovieSampleTable, AnswersLikeAPlainListAcrossEveryKindOfRunBreak)
{
    const auto first = MovieSampleStore::createMemory();
    const auto second = MovieSampleStore::createMemory();
    std::mt19937 random(7);
    std::vector<Expected> expected;
    MovieSampleTable table;
    int64_t time = 0;
    int64_t offset = 0;
    int64_t duration = 30;
    for (int i = 0; i < 1000; ++i) {
        const int kind = static_cast<int>(random() % 40);
        if (kind == 0)
            duration = 1 + static_cast<int64_t>(random() % 50);
        if (kind == 1)
            time += 7;                       // a gap in time
        if (kind == 2)
            offset += 1000;                  // data elsewhere in the store
        const auto& store = kind == 3 ? second : first;
        const MovieSample sample{time, duration, static_cast<int64_t>(random() % 5000), random() % 5 == 0};
        table.append(sample, store, offset);
        expected.push_back({sample, store, offset});
        time += duration;
        offset += sample.size;
    }
    ASSERT_EQ(table.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const MovieSample got = table.sample(i);
        ASSERT_EQ(got.time, expected[i].sample.time) << i;
        ASSERT_EQ(got.duration, expected[i].sample.duration) << i;
        ASSERT_EQ(got.size, expected[i].sample.size) << i;
        ASSERT_EQ(got.sync, expected[i].sample.sync) << i;
        ASSERT_EQ(table.offset(i), expected[i].offset) << i;
        ASSERT_EQ(table.store(i), expected[i].store) << i;
        // Any time within the sample finds it; its start too.
        ASSERT_EQ(table.lastStartingBy(got.time), i);
        ASSERT_EQ(table.lastStartingBy(got.time + got.duration - 1), i);
    }
    EXPECT_FALSE(table.lastStartingBy(-1));
}

} // namespace
} // namespace plyra
