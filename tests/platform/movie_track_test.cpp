// SPDX-License-Identifier: MIT
#include "movie_test_support.h"

#include "platform/movie/movie.h"
#include "platform/movie/movie_frame_decoder.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

/// An in-memory movie of `count` frames of `duration` 600ths with the codec.
std::unique_ptr<Movie> movieOf(int count, int64_t duration, const char* codec)
{
    auto movie = Movie::createInMemory();
    EXPECT_TRUE(test::appendTestFrames(*movie, count, duration, codec).ok());
    return movie;
}

TEST(MovieTrack, AppendedImagesExtendMediaAndRange)
{
    auto movie = movieOf(4, 30, "mp4v");
    const MovieTrack* track = movie->lastVideoTrack();
    ASSERT_TRUE(track);
    EXPECT_EQ(track->range(), (MovieTimeRange{{0, 600, 0}, {120, 600, 0}}));
    const MovieMedia& media = *track->media();
    ASSERT_EQ(media.sampleCount(), 4u);
    EXPECT_EQ(media.sample(2).time, 60);
    EXPECT_EQ(media.sample(2).duration, 30);
    EXPECT_TRUE(media.sample(0).sync);
    EXPECT_EQ(*media.sampleIndexAtTime(59), 1u);
    EXPECT_FALSE(media.sampleIndexAtTime(120));
    EXPECT_FALSE(media.sampleIndexAtTime(-1));
    EXPECT_EQ(media.sampleData(3).size(), static_cast<size_t>(media.sample(3).size));
    EXPECT_TRUE(media.sampleData(4).empty());
}

TEST(MovieTrack, SegmentOfAnIntraTrackIsCopiedAtTimeZero)
{
    auto source = movieOf(10, 600, "mjpb"); // one frame per second
    const MovieTrack& from = *source->lastVideoTrack();
    auto target = Movie::createInMemory();
    MovieTrack* copy = target->addEmptyTrackLike(from, MediaStorage::Memory);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->media()->sampleCount(), 0u);
    ASSERT_TRUE(copy->insertSegmentOfTrack(from, {{5 * 600, 600, 0}, {2 * 600, 600, 0}}, MovieTime::zero()).ok());
    ASSERT_EQ(copy->media()->sampleCount(), 2u);
    EXPECT_EQ(copy->media()->sample(1).time, 600);
    EXPECT_EQ(copy->range().end().value, 1200);
    EXPECT_EQ(copy->media()->sampleData(0), from.media()->sampleData(5));
    const std::optional<RgbaImage> frame = MovieFrameDecoder(*copy->media()).decode(1);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->width(), 64);
}

TEST(MovieTrack, SegmentStartingBetweenKeyFramesStartsAtTheKeyFrame)
{
    auto source = movieOf(6, 30, "mp4v");
    const MovieTrack& from = *source->lastVideoTrack();
    ASSERT_FALSE(from.media()->sample(3).sync);
    auto target = Movie::createInMemory();
    MovieTrack* copy = target->addEmptyTrackLike(from, MediaStorage::Memory);
    ASSERT_TRUE(copy->insertSegmentOfTrack(from, {{90, 600, 0}, {45, 600, 0}}, MovieTime::zero()).ok());
    // Frames 0 to 4 (frame 4 cut to the range's end at 135): decodable from the key frame.
    ASSERT_EQ(copy->media()->sampleCount(), 5u);
    EXPECT_EQ(copy->media()->sample(4).duration, 15);
    EXPECT_TRUE(MovieFrameDecoder(*copy->media()).decode(4));
}

TEST(MovieTrack, SegmentsAndImagesAreRefusedWhereTheyCannotGo)
{
    auto source = movieOf(3, 30, "mp4v");
    const MovieTrack& from = *source->lastVideoTrack();
    auto target = Movie::createInMemory();
    MovieTrack* copy = target->addEmptyTrackLike(from, MediaStorage::Memory);
    ASSERT_TRUE(copy->insertSegmentOfTrack(from, from.range(), MovieTime::zero()).ok());
    EXPECT_EQ(copy->insertSegmentOfTrack(from, from.range(), {30, 600, 0}).code, kMovieInvalidTime);
    auto other = movieOf(1, 30, "mjpb");
    EXPECT_EQ(copy->insertSegmentOfTrack(*other->lastVideoTrack(), other->lastVideoTrack()->range(), {90, 600, 0}).code,
              kMovieInvalidMedia);
    // A track filled by copying takes no images: its codec set-up is the source's.
    EXPECT_EQ(copy->addImage(test::movieTestFrame(0), {30, 600, 0}, std::nullopt).code, kMovieInvalidMedia);

    MovieTrack* bare = target->newTrack({10, 10}, 0);
    EXPECT_EQ(bare->insertSegmentOfTrack(from, from.range(), MovieTime::zero()).code, kMovieInvalidMedia);
    EXPECT_EQ(bare->addImage(test::movieTestFrame(0), {30, 600, 0}, std::nullopt).code, kMovieInvalidMedia);
    MovieStatus status;
    EXPECT_FALSE(target->addEmptyTrackLike(*bare, MediaStorage::Memory, &status));
    EXPECT_EQ(status.code, kMovieInvalidTrack);
    EXPECT_EQ(target->trackCount(), 2u);
}

TEST(MovieTrack, NewMediaAndInsertedMediaSpanTheTrack)
{
    auto movie = Movie::createInMemory();
    MovieTrack* track = movie->newTrack({320.9f, 240.2f}, 256);
    EXPECT_EQ(track->insertMedia(0, 0, 10, 1.0).code, kMovieInvalidMedia);
    const auto store = movie->sampleStore(MediaStorage::Memory);
    ASSERT_TRUE(track->newMedia(kSoundMediaType, 600, MediaStorage::Memory, store).ok());
    EXPECT_EQ(track->newMedia(kSoundMediaType, 600, MediaStorage::Memory, store).code, kMovieInvalidMedia);
    EXPECT_EQ(track->insertMedia(0, 0, -1, 1.0).code, kMovieParamError);
    ASSERT_TRUE(track->insertMedia(0, 0, 1200, 1.0).ok());
    EXPECT_EQ(track->range().end().value, 1200);
    ASSERT_TRUE(track->insertMedia(1200, 0, 600, 2.0).ok()); // twice the speed: 300 ticks
    EXPECT_EQ(track->range().end().value, 1500);
    EXPECT_EQ(track->edits().size(), 2u);
    EXPECT_EQ(movie->duration().value, 1500);
}

TEST(MovieTrack, ReadMovieTracksCanBeCopiedIntoANewMovie)
{
    test::ScratchFolder folder;
    ASSERT_TRUE(movieOf(5, 120, "rle ")->writeToFile(folder.file("source.mov")).ok());
    auto source = Movie::open(folder.file("source.mov"));
    ASSERT_TRUE(source);
    EXPECT_FALSE(*source->attributes().editable);
    EXPECT_EQ(source->lastVideoTrack()->media()->codecType(), fourCharCode("rle "));
    auto target = Movie::createInMemory();
    MovieTrack* copy = target->addEmptyTrackLike(*source->lastVideoTrack(), MediaStorage::Memory);
    ASSERT_TRUE(copy->insertSegmentOfTrack(*source->lastVideoTrack(), {{240, 600, 0}, {240, 600, 0}},
                                           MovieTime::zero()).ok());
    // Animation frames after the first depend on the one before; the copy starts at a key frame.
    ASSERT_TRUE(target->writeToFile(folder.file("copy.mov")).ok());
    const auto probe = test::probeVideo(folder.file("copy.mov"));
    EXPECT_EQ(probe.at("codec_name"), "qtrle");
    EXPECT_EQ(probe.at("nb_read_frames"), std::to_string(copy->media()->sampleCount()));
}

} // namespace
} // namespace plyra
