// SPDX-License-Identifier: MIT
#include "render/movie_track_helpers.h"

#include "platform/error/exception.h"

#include <gtest/gtest.h>

#include <functional>

namespace plyra {
namespace {

RgbaImage grayFrame(uint8_t level)
{
    RgbaImage image(32, 24);
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 32; ++x) {
            uint8_t* p = image.pixel(x, y);
            p[0] = p[1] = p[2] = static_cast<uint8_t>(level + x);
            p[3] = 255;
        }
    return image;
}

/// A movie of `seconds` one-second Motion JPEG frames (every frame a key frame).
std::unique_ptr<Movie> movieOfSeconds(int seconds)
{
    auto movie = Movie::createInMemory();
    for (int i = 0; i < seconds; ++i)
        EXPECT_TRUE(movie->addImage(grayFrame(static_cast<uint8_t>(i * 20)), {600, 600, 0},
                                    AddImageAttributes{fourCharCode("mjpb"), 512}).ok());
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

TEST(MovieTrackHelpers, MediaTypeNamesMapToTheirCodes)
{
    const std::pair<const char*, const char*> table[] = {
        {kMediaTypeVideo, "vide"}, {kMediaTypeSound, "soun"}, {kMediaTypeText, "text"},
        {kMediaTypeBase, "gnrc"},  {kMediaTypeMPEG, "MPEG"},  {kMediaTypeMusic, "musi"},
        {kMediaTypeTimeCode, "tmcd"}, {kMediaTypeSprite, "sprt"}, {kMediaTypeFlash, "flsh"},
        {kMediaTypeMovie, "moov"}, {kMediaTypeTween, "twen"}, {kMediaType3D, "qd3d"},
        {kMediaTypeSkin, "skin"},
    };
    for (const auto& [name, code] : table)
        EXPECT_EQ(mediaCodeForMediaType(name), fourCharCode(code)) << name;
}

TEST(MovieTrackHelpers, OtherNamesUseTheirFirstFourMacRomanBytes)
{
    EXPECT_EQ(mediaCodeForMediaType("abcdef"), 0x61626364u);
    EXPECT_EQ(mediaCodeForMediaType("ab"), 0x61620000u);
    EXPECT_EQ(mediaCodeForMediaType(""), 0u);
    // "é" is 0x8E, "€" 0xDB and "π" 0xB9 in Mac OS Roman; "中" has no byte there.
    EXPECT_EQ(mediaCodeForMediaType("\xC3\xA9t\xE2\x82\xAC\xCF\x80x"), 0x8e74dbb9u);
    EXPECT_EQ(mediaCodeForMediaType("\xE4\xB8\xAD"), 0x3f000000u);
    EXPECT_EQ(mediaCodeForMediaType("\xFF" "abc"), 0x3f616263u);
}

TEST(MovieTrackHelpers, EditableOnlyWhenTheAttributeSaysSo)
{
    auto movie = Movie::createInMemory();
    EXPECT_FALSE(isEditable(*movie));
    movie->setEditable(false);
    EXPECT_FALSE(isEditable(*movie));
    movie->setEditable(true);
    EXPECT_TRUE(isEditable(*movie));
}

TEST(MovieTrackHelpers, AddingATrackToAMovieThatIsNotEditableFails)
{
    auto movie = Movie::createInMemory();
    const Exception exception = thrownBy([&] { addTrackOfMediaType(*movie, kMediaTypeVideo, {320, 240}, 0); });
    EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
    EXPECT_EQ(exception.reason(), "Can't add a track when the movie isn't editable");
    EXPECT_NE(exception.location().find("movie_track_helpers.cpp:"), std::string::npos);
    ASSERT_TRUE(exception.error());
    EXPECT_EQ(exception.error()->domain(), "NSOSStatusErrorDomain");
    EXPECT_EQ(movie->trackCount(), 0u);
}

TEST(MovieTrackHelpers, NewTrackIsTruncatedToWholePixelsAndSpansTheMovie)
{
    auto movie = Movie::createInMemory();
    movie->setEditable(true);
    movie->setDuration({1200, 600, 0});
    MovieTrack* track = addTrackOfMediaType(*movie, kMediaTypeVideo, {320.99f, 240.01f}, 256);
    ASSERT_TRUE(track);
    EXPECT_EQ(track->size().width, 320);
    EXPECT_EQ(track->size().height, 240);
    EXPECT_EQ(track->volume(), 256);
    EXPECT_EQ(track->mediaType(), fourCharCode("vide"));
    ASSERT_TRUE(track->media());
    EXPECT_EQ(track->media()->storage(), MediaStorage::Memory);
    EXPECT_EQ(track->media()->timeScale(), 600);
    EXPECT_EQ(track->media()->sampleCount(), 0u);
    EXPECT_EQ(track->range(), (MovieTimeRange{{0, 600, 0}, {1200, 600, 0}}));
    ASSERT_EQ(track->edits().size(), 1u);
    EXPECT_EQ(track->edits()[0].mediaDuration, 1200);
    EXPECT_EQ(track->edits()[0].rate, 1.0);

    MovieTrack* odd = addTrackOfMediaType(*movie, "zz", {-5, 1e9f}, 0);
    EXPECT_EQ(odd->mediaType(), 0x7a7a0000u);
    EXPECT_EQ(odd->size().width, 0);
    EXPECT_EQ(odd->size().height, 32767);
    EXPECT_EQ(movie->trackCount(), 2u);
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
    EXPECT_EQ(copy->media()->storage(), MediaStorage::Memory);
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
    EXPECT_EQ(target->trackCount(), 2u);
}

TEST(MovieTrackHelpers, EmptyCopyOfATrackWithoutMediaIsNull)
{
    auto source = Movie::createInMemory();
    MovieTrack* bare = source->newTrack({10, 10}, 0);
    auto target = Movie::createInMemory();
    EXPECT_EQ(addEmptyCopyOfTrack(*target, *bare), nullptr);
    EXPECT_EQ(addCopyOfTrack(*target, *bare), nullptr);
    EXPECT_EQ(target->trackCount(), 0u);
}

TEST(MovieTrackHelpers, EmptyCopyHasTheSourceShapeAndNoSamples)
{
    auto source = movieOfSeconds(2);
    auto target = Movie::createInMemory();
    MovieTrack* copy = addEmptyCopyOfTrack(*target, *source->lastVideoTrack());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->mediaType(), kVideoMediaType);
    EXPECT_EQ(copy->media()->codecName(), "mjpeg");
    EXPECT_EQ(copy->media()->sampleCount(), 0u);
    EXPECT_EQ(copy->range().duration.value, 0);
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
