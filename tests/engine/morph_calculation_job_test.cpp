// SPDX-License-Identifier: MIT
#include "engine/morph_calculation_job.h"

#include "engine/morph_test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace plyra {
namespace {

using namespace std::chrono_literals;

Image smallPicture(int width = 8, int height = 8)
{
    Bitmap pixels(width, height);
    pixels.fill({200, 100, 50, 255});
    return Image::fromBitmap(pixels);
}

Image floatPicture(int width, int height)
{
    return Image::fromFloatData(std::vector<float>(static_cast<std::size_t>(4 * width * height), 0.0f),
                                static_cast<std::size_t>(16 * width), width, height);
}

TEST(MorphCalculationJob, StartsRunningAndIsDoneFrom0999999On)
{
    const auto job = MorphCalculationJob::create(0.25f, {640.0f, 480.0f}, 7.0f);
    EXPECT_EQ(job->gridSize(), (GridSize{93, 70}));
    EXPECT_EQ(job->progress(), 0.0f);
    EXPECT_FALSE(job->isDone());
    EXPECT_FALSE(job->abort());
    EXPECT_TRUE(job->coords().empty());
    job->setProgress(0.9f);
    EXPECT_FALSE(job->isDone());
    EXPECT_EQ(job->progress(), 0.9f);
    job->setProgress(0.9999995f);
    EXPECT_TRUE(job->isDone());
    EXPECT_TRUE(job->isDone()); // asking does not change the answer
    job->setProgress(0.999998f);
    EXPECT_FALSE(job->isDone());
    job->setProgress(1.0f);
    EXPECT_TRUE(job->isDone());
    job->waitUntilDone(); // returns at once
}

TEST(MorphCalculationJob, WaitUntilDoneReturnsWithTheWorkersResults)
{
    const auto job = MorphCalculationJob::create(0.5f, {64.0f, 48.0f}, 8.0f);
    std::atomic<bool> finished{false};
    std::thread worker([&] {
        job->setProgress(0.0f);
        std::this_thread::sleep_for(30ms);
        job->setCoords(std::vector<float>(100, 1.5f));
        job->setMaxDisplacements({1, 2, 3, 4}, {5, 6, 7, 8});
        job->setProgress(0.9f);
        finished = true;
        job->setProgress(1.0f);
    });
    EXPECT_GE(job->progress(), 0.0f); // read without the lock while the worker writes
    job->waitUntilDone();
    EXPECT_TRUE(finished);
    EXPECT_EQ(job->coords(), std::vector<float>(100, 1.5f));
    EXPECT_EQ(job->maxDisplacement1(), (Rect{5, 6, 7, 8}));
    worker.join();
}

TEST(MorphCalculationJobOutput, NothingBeforeDoneOrWithoutAnyImageButOneImageIsEnough)
{
    const auto morpher = Morpher::create(Image(), Image(), {test::staticLine({0.1f, 0.1f}, {0.9f, 0.9f})});
    const auto job = MorphCalculationJob::create(0.5f, {100.0f, 50.0f}, 7.0f);
    job->setTrack0Image(smallPicture());
    EXPECT_TRUE(job->outputImage().isNull());
    job->setProgress(0.9f);
    EXPECT_TRUE(job->outputImage().isNull());

    const auto bare = MorphCalculationJob::create(0.5f, {100.0f, 50.0f}, 7.0f);
    morpher->processMorphCalculationJob(*bare);
    ASSERT_TRUE(bare->isDone());
    EXPECT_TRUE(bare->outputImage().isNull());
    EXPECT_FALSE(bare->coords().empty()); // nothing was taken

    const auto lastOnly = MorphCalculationJob::create(0.3f, {32.0f, 24.0f}, 4.0f);
    lastOnly->setTrack1Image(smallPicture());
    morpher->processMorphCalculationJob(*lastOnly);
    EXPECT_FALSE(lastOnly->outputImage().isNull());
}

TEST(MorphCalculationJobOutput, TheCoordinatesImageIsMadeOnceAndTheFieldFreed)
{
    const auto morpher = Morpher::create(Image(), Image(), {test::makeLine({0.1f, 0.1f}, {0.9f, 0.9f}, {0.2f, 0.1f}, {0.9f, 0.8f})});
    const auto job = MorphCalculationJob::create(0.5f, {100.0f, 50.0f}, 7.0f);
    job->setTrack0Image(smallPicture());
    job->setTrack1Image(smallPicture());
    morpher->processMorphCalculationJob(*job);
    const std::vector<float> field = job->coords();

    const Image first = job->outputImage();
    ASSERT_FALSE(first.isNull());
    EXPECT_TRUE(job->coords().empty());
    const Image coords = job->coordsImage();
    ASSERT_NE(coords.floatBitmap(), nullptr);
    const FloatBitmap& bitmap = *coords.floatBitmap();
    EXPECT_EQ(bitmap.width(), 16);
    EXPECT_EQ(bitmap.height(), 9);
    EXPECT_EQ(bitmap.bytesPerRow(), 256u);
    EXPECT_EQ(coords.extent(), (Rect{0, 0, 16, 9}));
    for (std::size_t k = 0; k < 16 * 9 * 4; ++k)
        ASSERT_EQ(bitmap.pixel(int(k / 4 % 16), int(k / 64))[k % 4], field[k]) << k;

    const Image second = job->outputImage();
    ASSERT_FALSE(second.isNull());
    EXPECT_FALSE(second == first); // a new filter each time
    EXPECT_TRUE(job->coordsImage() == coords);
    EXPECT_EQ(second.extent(), (Rect{0, 0, 100, 50}));
}

TEST(MorphCalculationJobOutput, TheOutputImageKeepsItsJobAlive)
{
    std::weak_ptr<MorphCalculationJob> weak;
    Image output;
    {
        const auto morpher = Morpher::create(Image(), Image(), {});
        const auto job = MorphCalculationJob::create(0.3f, {32.0f, 24.0f}, 4.0f);
        job->setTrack0Image(smallPicture());
        morpher->processMorphCalculationJob(*job);
        output = job->outputImage();
        weak = job;
    }
    ASSERT_FALSE(output.isNull());
    EXPECT_FALSE(weak.expired());
    output = Image();
    EXPECT_TRUE(weak.expired());
}

SampleCoords2Filter filterFor(const Image& first, const Image& last, const Image& coords, float resolution)
{
    SampleCoords2Filter filter;
    filter.setDefaults();
    filter.setValue(first, "inputImage1");
    filter.setValue(last, "inputImage2");
    filter.setValue(coords, "coordsImage");
    filter.setValue(resolution, "resolution");
    return filter;
}

TEST(MorphCalculationJobRegion, CoordinatesImageBlockAroundTheRect)
{
    const auto job = MorphCalculationJob::create(0.0f, {100.0f, 50.0f}, 7.0f);
    const Image coords = floatPicture(16, 9);
    const auto filter = filterFor(smallPicture(), smallPicture(), coords, 7.0f);
    EXPECT_EQ(job->regionOfInterest(coords, {0, 0, 100, 50}, filter), (Rect{0, 0, 16, 9}));
    EXPECT_EQ(job->regionOfInterest(coords, {10, 20, 30, 7}, filter), (Rect{1, 2, 6, 2}));
    EXPECT_EQ(job->regionOfInterest(coords, {14, 14, 0, 0}, filter), (Rect{2, 2, 1, 1}));
}

TEST(MorphCalculationJobRegion, TrackImagesAreBoundedByTheirDisplacements)
{
    const auto job = MorphCalculationJob::create(0.0f, {640.0f, 480.0f}, 7.0f);
    job->setMaxDisplacements({-10, -5, 30, 20}, {2, 3, 0, 0});
    const Image first = smallPicture(), last = smallPicture();
    const auto filter = filterFor(first, last, floatPicture(93, 70), 7.0f);
    EXPECT_EQ(job->regionOfInterest(first, {100, 100, 50, 50}, filter), (Rect{89, 94, 82, 72}));
    // Clamped to the frame's origin before it grows.
    EXPECT_EQ(job->regionOfInterest(first, {0, 0, 50, 50}, filter), (Rect{-1, -1, 82, 72}));
    // The last image by its own displacements.
    EXPECT_EQ(job->regionOfInterest(last, {100, 100, 50, 50}, filter), (Rect{101, 102, 52, 52}));
    // Width and height are clamped as sizes: never wider than the frame.
    job->setMaxDisplacements({-1000, 0, 2000, 0}, {0, 0, 0, 0});
    EXPECT_EQ(job->regionOfInterest(first, {0, 0, 640, 480}, filter), (Rect{-1, -1, 642, 482}));
    // One picture on both tracks is read through both fields.
    job->setMaxDisplacements({-10, 0, 0, 0}, {0, 0, 10, 0});
    const auto same = filterFor(first, first, floatPicture(93, 70), 7.0f);
    EXPECT_EQ(job->regionOfInterest(first, {100, 100, 50, 50}, same), (Rect{89, 99, 72, 52}));
}

} // namespace
} // namespace plyra
