// SPDX-License-Identifier: MIT
#include "render/movie_track_helpers.h"

#include "platform/error/exception.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace plyra {
namespace {

/// A movie of `seconds` one-second 32 × 24 Motion JPEG frames (every one a key frame).
std::unique_ptr<Movie> movieOfSeconds(int seconds)
{
    auto movie = Movie::createInMemory();
    for (int i = 0; i < seconds; ++i) {
        RgbaImage image(32, 24);
        std::fill_n(image.pixel(0, 0), 4 * 32 * 24, static_cast<uint8_t>(i * 20));
        EXPECT_TRUE(movie->addImage(image, {600, 600, 0}, AddImageAttributes{fourCharCode("mjpb"), 512}).ok());
    }
    return movie;
}

/// The exception `operation` throws; fails the test when it throws none.
Exception thrownBy(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const Exception& exception) {
        return exception;
    }
    ADD_FAILURE() << "no exception";
    return Exception("none", "none");
}

TEST(MovieTrackHelpers, MediaTypeNamesMapToTheirCodesOrTheirFirstFourMacRomanBytes)
{
    const std::pair<const char*, uint32_t> table[] = {
        {kMediaTypeVideo, fourCharCode("vide")}, {kMediaTypeSound, fourCharCode("soun")},
        {kMediaTypeText, fourCharCode("text")}, {kMediaTypeBase, fourCharCode("gnrc")},
        {kMediaTypeMPEG, fourCharCode("MPEG")}, {kMediaTypeMusic, fourCharCode("musi")},
        {kMediaTypeTimeCode, fourCharCode("tmcd")}, {kMediaTypeSprite, fourCharCode("sprt")},
        {kMediaTypeFlash, fourCharCode("flsh")}, {kMediaTypeMovie, fourCharCode("moov")},
        {kMediaTypeTween, fourCharCode("twen")}, {kMediaType3D, fourCharCode("qd3d")},
        {kMediaTypeSkin, fourCharCode("skin")}, {"abcdef", 0x61626364u}, {"ab", 0x61620000u}, {"", 0u},
        // "é" is 0x8E, "€" 0xDB and "π" 0xB9 in Mac OS Roman; "中" and a stray 0xFF have no byte there.
        {"\xC3\xA9t\xE2\x82\xAC\xCF\x80x", 0x8e74dbb9u}, {"\xE4\xB8\xAD", 0x3f000000u}, {"\xFF" "abc", 0x3f616263u},
    };
    for (const auto& [name, code] : table)
        EXPECT_EQ(mediaCodeForMediaType(name), code) << name;
}

TEST(MovieTrackHelpers, AddingATrackToAMovieThatIsNotEditableFails)
{
    auto movie = Movie::createInMemory();
    movie->setEditable(false);
    EXPECT_FALSE(isEditable(*movie));
    const Exception exception = thrownBy([&] { addTrackOfMediaType(*movie, kMediaTypeVideo, {320, 240}, 0); });
    EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
    EXPECT_EQ(exception.reason(), "Can't add a track when the movie isn't editable");
    EXPECT_NE(exception.location().find("movie_track_helpers.cpp:"), std::string::npos);
    ASSERT_TRUE(exception.error());
    EXPECT_EQ(exception.error()->domain(), "NSOSStatusErrorDomain");
    EXPECT_EQ(movie->trackCount(), 0u);
    EXPECT_FALSE(isEditable(*Movie::createInMemory())); // absent counts as not editable
}

TEST(MovieTrackHelpers, NewTrackIsTruncatedToWholePixelsAndSpansTheMovie)
{
    auto movie = Movie::createInMemory();
    movie->setEditable(true);
    movie->setDuration({1200, 600, 0});
    MovieTrack* track = addTrackOfMediaType(*movie, kMediaTypeVideo, {320.99f, 240.01f}, 256);
    ASSERT_TRUE(track && track->media());
    EXPECT_EQ(track->size().width, 320);
    EXPECT_EQ(track->size().height, 240);
    EXPECT_EQ(track->mediaType(), fourCharCode("vide"));
    EXPECT_EQ(track->media()->timeScale(), 600);
    EXPECT_EQ(track->range(), (MovieTimeRange{{0, 600, 0}, {1200, 600, 0}}));
    ASSERT_EQ(track->edits().size(), 1u);
    EXPECT_EQ(track->edits()[0].mediaDuration, 1200);

    MovieTrack* odd = addTrackOfMediaType(*movie, "zz", {-5, 1e9f}, 0);
    EXPECT_EQ(odd->mediaType(), 0x7a7a0000u);
    EXPECT_EQ(odd->size().width, 0);
    EXPECT_EQ(odd->size().height, 32767);
}

TEST(MovieTrackHelpers, CopyOfARangeStartsAtZeroAndLastsTheRange)
{
    auto source = movieOfSeconds(8);
    MovieTrack& track = *source->lastVideoTrack();
    track.setRange({{5 * 600, 600, 0}, {2 * 600, 600, 0}});
    auto target = Movie::createInMemory();
    MovieTrack* copy = addCopyOfTrack(*target, track);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->range(), (MovieTimeRange{{0, 600, 0}, {1200, 600, 0}}));
    ASSERT_EQ(copy->media()->sampleCount(), 2u);
    EXPECT_EQ(copy->media()->sampleData(0), track.media()->sampleData(5));
    EXPECT_EQ(copy->media()->sampleData(1), track.media()->sampleData(6));
    EXPECT_EQ(copy->size().width, 32);
}

TEST(MovieTrackHelpers, CopyOfAWholeTrackAndOfAnExplicitRange)
{
    auto source = movieOfSeconds(3);
    auto target = Movie::createInMemory();
    MovieTrack* whole = addCopyOfTrack(*target, *source->lastVideoTrack());
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->media()->sampleCount(), 3u);
    EXPECT_EQ(whole->range().duration.value, 1800);
    MovieTrack* part = addCopyOfTrack(*target, *source->lastVideoTrack(), {{300, 600, 0}, {600, 600, 0}});
    ASSERT_TRUE(part);
    // Frames 0 and 1 overlap 0.5 s to 1.5 s; the last is cut at the range's end.
    ASSERT_EQ(part->media()->sampleCount(), 2u);
    EXPECT_EQ(part->media()->sample(1).duration, 300);
    EXPECT_EQ(part->range().duration.value, 600);
}

TEST(MovieTrackHelpers, EmptyCopyHasTheSourceShapeOrIsNullWithoutMedia)
{
    auto source = movieOfSeconds(2);
    auto target = Movie::createInMemory();
    MovieTrack* copy = addEmptyCopyOfTrack(*target, *source->lastVideoTrack());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->media()->codecName(), "mjpeg");
    EXPECT_EQ(copy->media()->sampleCount(), 0u);
    EXPECT_EQ(copy->range().duration.value, 0);

    MovieTrack* bare = source->newTrack({10, 10}, 0);
    EXPECT_EQ(addEmptyCopyOfTrack(*target, *bare), nullptr);
    EXPECT_EQ(addCopyOfTrack(*target, *bare), nullptr);
    EXPECT_EQ(target->trackCount(), 1u);
}

TEST(MovieTrackHelpers, CopyThatCannotBeInsertedRaisesTheInsertFailure)
{
    auto source = Movie::createInMemory();
    MovieTrack* empty = source->newTrack({10, 10}, 0);
    ASSERT_TRUE(empty->newMedia(kVideoMediaType, 600, MediaStorage::Memory, source->sampleStore(MediaStorage::Memory)).ok());
    auto target = Movie::createInMemory();
    const Exception exception = thrownBy([&] { addCopyOfTrack(*target, *empty); });
    EXPECT_EQ(exception.reason(), "Error -2008 after InsertMediaIntoTrack");
    ASSERT_TRUE(exception.error());
    EXPECT_EQ(exception.error()->code(), -2008);
}

} // namespace
} // namespace plyra
