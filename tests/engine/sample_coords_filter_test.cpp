// SPDX-License-Identifier: MIT
#include "engine/sample_coords_filter.h"

#include "engine/morph_calculation_job.h"
#include "engine/sample_coords_kernels_internal.h"
#include "engine/sampling_test_support.h"
#include "platform/image/renderer.h"
#include "platform/log.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>
#include <vector>

namespace plyra {
namespace {

using test::identityCoords;
using test::makeCoords;
using test::NodeSample;
using Pixel = std::array<std::uint8_t, 4>;

/// Records which image each question is about and answers with the whole plane.
/// Threads: asked on the test's thread only.
struct RecordingCalculator : RegionOfInterestCalculator {
    Rect regionOfInterest(const Image& image, const Rect& destRect, const SampleCoords2Filter& filter) const override
    {
        calls.emplace_back(image == filter.coordsImage() ? "coords" : image == filter.inputImage1() ? "first" : "last",
                           destRect);
        return Rect::infinite();
    }
    mutable std::vector<std::pair<std::string, Rect>> calls;
};

/// The calculation job as the regions' calculator, bounding reads by its displacements.
std::shared_ptr<MorphCalculationJob> jobCalculator(Rect displacement0, Rect displacement1)
{
    auto job = MorphCalculationJob::create(0.0f, {100, 50}, 7.0f);
    job->setMaxDisplacements(displacement0, displacement1);
    return job;
}

SampleCoords2Filter makeFilter(const Image& first, const Image& last, const Image& coords, float resolution,
                               Rect extent)
{
    SampleCoords2Filter filter;
    filter.setDefaults();
    filter.setValue(first, "inputImage1");
    filter.setValue(last, "inputImage2");
    filter.setValue(coords, "coordsImage");
    filter.setValue(resolution, "resolution");
    filter.setExtent(extent);
    return filter;
}

Image textureImage(int width, int height) { return Image::fromBitmap(test::textureBitmap(width, height)); }

/// The filter's output over a w × h frame, rendered.
Bitmap sampled(const Image& first, const Image& last, const Image& coords, float r, int w, int h)
{
    const Rect frame{0, 0, float(w), float(h)};
    return renderToBitmap(makeFilter(first, last, coords, r, frame).outputImage(), frame);
}

void expectEvery(const Bitmap& bitmap, std::array<int, 4> expected, int tolerance)
{
    for (int y = 0; y < bitmap.height(); ++y)
        for (int x = 0; x < bitmap.width(); ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(int(bitmap.pixel(x, y)[c]), expected[c], tolerance) << x << "," << y << " channel " << c;
}

TEST(SampleCoords2Filter, SetValueTakesOnlyValuesOfTheRightTypeAndNeverTheExtent)
{
    SampleCoords2Filter filter;
    filter.setExtent({1, 2, 3, 4});
    filter.setDefaults();
    EXPECT_EQ(filter.extent(), (Rect{0, 0, 1000, 1000}));
    LogCapture log;
    filter.setValue(Rect{0, 0, 640, 480}, "extent"); // reported in a log line, not taken
    EXPECT_EQ(filter.extent(), (Rect{0, 0, 1000, 1000}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "[0 0 640 480]");

    filter.setValue(Rect{}, "resolution");
    filter.setValue(3.0f, "noSuchKey");
    EXPECT_EQ(filter.resolution(), 5.0f);
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST(SamplerMatrix, StretchesTheImageExtentOntoTheOutput)
{
    using Values = std::array<float, 6>;
    const Matrix shrink = samplerMatrixFromRectToRect({0, 0, 2000, 1000}, {0, 0, 640, 480});
    EXPECT_EQ(shrink.values(), (Values{0.32f, 0, 0, 0.48f, 0, 0}));
    const Matrix m = samplerMatrixFromRectToRect({10, 20, 100, 100}, {0, 0, 200, 100});
    EXPECT_EQ(m.values(), (Values{2, 0, 0, 1, -20, -20}));
    EXPECT_EQ(std::pair(m.mapX(110, 120), m.mapY(110, 120)), std::pair(200.0f, 100.0f));
}

TEST(SampleCoords2Filter, RegionOfInterestIndexesNameTheImagesInUseAndStopAtTwo)
{
    const struct {
        Image first;
        std::vector<std::string> order;
    } cases[] = {{textureImage(8, 8), {"first", "last", "coords"}}, {Image(), {"last", "coords"}}};
    for (const auto& c : cases) {
        SampleCoords2Filter filter = makeFilter(c.first, textureImage(8, 8), identityCoords(3, 3, 16, 16, 0), 8,
                                                {0, 0, 16, 16});
        auto calculator = std::make_shared<RecordingCalculator>();
        filter.setValue(calculator, "roiCalculator");
        for (int index = 0; index < int(c.order.size()); ++index)
            filter.regionOf(index, {1, 2, 3, 4}, calculator);
        const auto& calls = calculator->calls;
        ASSERT_EQ(calls.size(), c.order.size());
        for (std::size_t k = 0; k < calls.size(); ++k)
            EXPECT_EQ(calls[k].first, c.order[k]) << k;
        EXPECT_EQ(calls[0].second, (Rect{1, 2, 3, 4}));
    }
    SampleCoords2Filter filter = makeFilter(textureImage(4, 4), {}, {}, 5, {0, 0, 4, 4});
    try {
        filter.regionOf(3, {0, 0, 1, 1}, nullptr);
        FAIL() << "no exception";
    } catch (const InvalidArgumentException& e) {
        EXPECT_STREQ(e.name(), "NSInvalidArgumentException");
        EXPECT_EQ(std::string(e.what()),
                  "[" + filter.description() + " regionOf:3 destRect:userInfo:] called with samplerindex != 0..2");
    }
    EXPECT_THROW(filter.regionOf(-1, {0, 0, 1, 1}, nullptr), InvalidArgumentException);

    // 100 wide at r = 7: 16 nodes, 100/15 ≈ 6.67 pixels apart, so the node block that
    // assumes 7 falls one node short at the right; the filter widens it.
    filter = makeFilter(textureImage(4, 4), {}, identityCoords(16, 9, 100, 50, 0), 7, {0, 0, 100, 50});
    const auto job = jobCalculator({}, {});
    const Rect region = filter.regionOf(1, {0, 0, 97, 50}, job);
    EXPECT_GE(region.maxX(), 16.0f);
    EXPECT_EQ(region.x, 0.0f);
    EXPECT_EQ(filter.regionOf(1, {0, 0, 100, 50}, job), (Rect{0, 0, 16, 9}));
}

class KernelSourceTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        SampleCoords2Filter::setKernelDirectory({});
        SampleCoords2Filter::setKernelSourceForOneImage(readFile("sampleCoords"));
        SampleCoords2Filter::setKernelSourceForTwoImages(readFile("sampleCoords2"));
    }
    static std::string readFile(const char* name)
    {
        std::ifstream file(std::string(PLYRA_TEST_DATA) + "/../../resources/kernels/" + name + ".cikernel");
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    const Image m_image = textureImage(4, 4);
};

TEST_F(KernelSourceTest, SourcesAreReadOnceRecompiledOnlyWhenTheyChangeAndMayFail)
{
    SampleCoords2Filter two = makeFilter(m_image, m_image, {}, 5, {0, 0, 4, 4});
    SampleCoords2Filter one = makeFilter(m_image, {}, identityCoords(2, 2, 4, 4, 0), 5, {0, 0, 4, 4});
    EXPECT_EQ(two.kernelSource(), readFile("sampleCoords2"));
    EXPECT_EQ(one.kernelSource(), readFile("sampleCoords"));
    ASSERT_TRUE(two.kernel() && one.kernel());
    EXPECT_EQ(two.kernel()->name(), "sampleCoords2");
    EXPECT_EQ(one.kernel()->name(), "sampleCoords");
    EXPECT_EQ(two.kernel(), makeFilter(m_image, m_image, {}, 5, {}).kernel()); // compiled once
    // Once read, the sources stay: a directory without resources changes nothing.
    SampleCoords2Filter::setKernelDirectory("/nonexistent-kernel-dir");
    LogCapture log;
    EXPECT_EQ(makeFilter(m_image, m_image, {}, 5, {}).kernelSource(), readFile("sampleCoords2"));
    EXPECT_EQ(SampleCoords2Filter::kernelDirectory(), "/nonexistent-kernel-dir");

    // The same source keeps the kernel; a new one recompiles and leaves the other alone.
    const std::shared_ptr<const Kernel> before = two.kernel();
    SampleCoords2Filter::setKernelSourceForTwoImages(two.kernelSource());
    EXPECT_EQ(two.kernel(), before);
    const std::string changed = "// two kernels; the last one counts\n"
                                "kernel vec4 sampleCoords(sampler a, sampler b, float r, float last);\n"
                                "kernel vec4 sampleCoords2(sampler a, sampler b, sampler c, float r);\n";
    two.setKernelSource(changed);
    EXPECT_EQ(two.kernelSource(), changed);
    const std::shared_ptr<const Kernel> after = two.kernel();
    ASSERT_TRUE(after);
    EXPECT_NE(after, before);
    EXPECT_EQ(after->name(), "sampleCoords2");
    EXPECT_EQ(one.kernelSource(), readFile("sampleCoords"));

    // A source that does not compile gives no kernel and no image.
    SampleCoords2Filter::setKernelSourceForOneImage("kernel vec4 sampleCoords(sampler a, float r);");
    EXPECT_FALSE(one.kernel());
    EXPECT_TRUE(one.outputImage().isNull());
    EXPECT_TRUE(log.contains("sampleCoords"));
}

TEST(SampleCoordsKernels, IdentityGridReproducesTheImageItShowsAndNonFiniteNodesStay)
{
    // Last-image rows are packed as whole pixels; at 8 pixels apart no position loses anything.
    const Bitmap source = test::textureBitmap(64, 48);
    const Image image = Image::fromBitmap(source);
    const struct { Image first, last; float dissolve; } cases[] = {
        {image, Image::fromBitmap(test::uniformBitmap(64, 48, {0, 0, 255, 255})), 0},
        {image, Image(), 0},
        {Image::fromBitmap(test::uniformBitmap(64, 48, {9, 9, 9, 255})), image, 1}};
    EXPECT_TRUE(makeFilter({}, {}, identityCoords(9, 7, 64, 48, 0), 8, {0, 0, 64, 48}).outputImage().isNull());
    for (const auto& c : cases)
        EXPECT_TRUE(sampled(c.first, c.last, identityCoords(9, 7, 64, 48, c.dissolve), 8, 64, 48).samePixels(source));
    // Non-finite or far-off nodes stay at their own position.
    const float nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    const Bitmap small = test::textureBitmap(32, 32);
    const Image coords = makeCoords(5, 5, 32, 32, [&](float x, float y) {
        return NodeSample{x == 16 ? nan : x, y == 16 ? inf : y, 1e30f, -1e30f, 0};
    });
    const Bitmap result = sampled(Image::fromBitmap(small), Image::fromBitmap(small), coords, 8, 32, 32);
    EXPECT_EQ(result.pixel(5, 5), small.pixel(5, 5));
    EXPECT_EQ(result.pixel(16, 16), small.pixel(16, 16));
}

TEST(SampleCoordsKernels, LastImageRowsComeFromTheFifthChannelElseTheWholeRow)
{
    // Node rows 6 + 4/7 apart. With the unrounded rows in the fifth channel every pixel reads
    // its own row, alone or blended; from the packed float alone a node at y = 13.71 keeps
    // row 13, so reads are up to a row lower.
    const Bitmap source = test::patternBitmap(16, 48, [](int, int y) { return Pixel{std::uint8_t(y * 5), 0, 0, 255}; });
    const Image last = Image::fromBitmap(source);
    const Image black = Image::fromBitmap(test::uniformBitmap(16, 48, {0, 0, 0, 255}));
    const Bitmap lastAlone = sampled({}, last, identityCoords(3, 8, 16, 48, 0, true), 7, 16, 48);
    const Bitmap blended = sampled(black, last, identityCoords(3, 8, 16, 48, 1, true), 7, 16, 48);
    const Bitmap rounded = sampled({}, last, identityCoords(3, 8, 16, 48, 0), 7, 16, 48);
    for (int y = 0; y < 48; ++y) {
        EXPECT_EQ(lastAlone.pixel(8, y)[0], y * 5) << y;
        EXPECT_EQ(blended.pixel(8, y)[0], y * 5) << y;
        EXPECT_LE(rounded.pixel(8, y)[0], y * 5) << y;
        EXPECT_GE(rounded.pixel(8, y)[0], std::max(y - 1, 0) * 5) << y;
    }
}

TEST(SampleCoordsKernels, DissolveBlendsPremultipliedPixelsAndVariesBetweenNodes)
{
    const struct { Pixel a, b; float f; std::array<int, 4> expected; } cases[] = {
        {{200, 100, 0, 255}, {0, 50, 250, 255}, 0.5f, {100, 75, 125, 255}},
        {{255, 0, 0, 255}, {0, 0, 0, 0}, 0.5f, {128, 0, 0, 128}},
        {{255, 0, 0, 255}, {0, 128, 0, 128}, 0.25f, {191, 32, 0, 223}}};
    for (const auto& c : cases)
        expectEvery(sampled(Image::fromBitmap(test::uniformBitmap(32, 32, c.a)),
                            Image::fromBitmap(test::uniformBitmap(32, 32, c.b)), identityCoords(5, 5, 32, 32, c.f), 8,
                            32, 32),
                    c.expected, 1);
    // f = 0 at the left edge, 1 at the right: the blend follows linearly.
    const Image coords = makeCoords(9, 2, 64, 8, [](float x, float y) { return NodeSample{x, y, x, y, x / 64}; });
    const Bitmap ramp = sampled(Image::fromBitmap(test::uniformBitmap(64, 8, {0, 0, 0, 255})),
                                Image::fromBitmap(test::uniformBitmap(64, 8, {255, 255, 255, 255})), coords, 8, 64, 8);
    for (int x = 0; x < 64; ++x) {
        const int v = int((x + 0.5f) / 64 * 255 + 0.5f);
        for (int c = 0; c < 4; ++c)
            ASSERT_NEAR(int(ramp.pixel(x, 3)[c]), c < 3 ? v : 255, 1) << x << " channel " << c;
    }
}

TEST(SampleCoordsKernels, ShiftedGridsShiftTheImageTheyRead)
{
    // With only the last image, the first-image positions (far away) must be ignored.
    const Bitmap source = test::textureBitmap(64, 48);
    const Image image = Image::fromBitmap(source);
    // Each shift is added to the node's own position.
    const struct { bool onlyLast; NodeSample shift; int dx, dy; } cases[] = {{false, {3, 2, 0, 0, 0}, 3, 2},
                                                                             {true, {40, 9, 5, 0, 0.6f}, 5, 0}};
    for (const auto& c : cases) {
        const Image coords = makeCoords(9, 7, 64, 48, [&](float x, float y) {
            return NodeSample{x + c.shift.firstX, y + c.shift.firstY, x + c.shift.lastX, y, c.shift.dissolve};
        });
        const Bitmap result = sampled(c.onlyLast ? Image() : image, c.onlyLast ? image : Image(), coords, 8, 64, 48);
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 64; ++x)
                ASSERT_EQ(result.pixel(x, y), source.pixel(std::min(x + c.dx, 63), std::min(y + c.dy, 47)))
                    << c.onlyLast << " " << x << "," << y;
    }
}

TEST(SampleCoordsKernels, ImagesOfOtherSizesAreStretchedOverTheFrame)
{
    // 32 × 24 over 64 × 48: frame pixel 2k + 1 reads texel k + 0.25, in x and y.
    const Bitmap small = test::textureBitmap(32, 24);
    const Bitmap result = sampled(Image::fromBitmap(small), {}, identityCoords(9, 7, 64, 48, 0), 8, 64, 48);
    for (int k = 1; k < 20; ++k) {
        const Pixel p00 = small.pixel(k, 10), p10 = small.pixel(k + 1, 10);
        const Pixel p01 = small.pixel(k, 11), p11 = small.pixel(k + 1, 11);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(int(result.pixel(2 * k + 1, 21)[c]),
                        (9 * p00[c] + 3 * p10[c] + 3 * p01[c] + p11[c] + 8) / 16, 1) << k;
    }
}

TEST(SampleCoordsKernels, LargeImageShrunkToAPreviewDoesNotAlias)
{
    // 8-pixel squares shown 25 times smaller must come out a uniform grey.
    const Bitmap board = test::patternBitmap(4000, 2000, [](int x, int y) {
        const std::uint8_t v = ((x / 8 + y / 8) % 2) ? 255 : 0;
        return Pixel{v, v, v, 255};
    });
    expectEvery(sampled(Image::fromBitmap(board), {}, identityCoords(21, 11, 160, 80, 0), 8, 160, 80),
                {128, 128, 128, 255}, 2);
}

TEST(SampleCoordsKernels, JobRegionsOfInterestGiveTheSamePixelsAsWholeImages)
{
    // Displacements of up to ±6 pixels: the job's regions must hold all the kernel reads,
    // and the block of nodes read must bring its part of the fifth channel along.
    const Image coords = makeCoords(16, 9, 100, 50, [](float x, float y) {
        return NodeSample{x + 6 * std::sin(y * 0.2f), y - 4 * std::cos(x * 0.1f), x - 5 * std::cos(y * 0.3f),
                          y + 3 * std::sin(x * 0.15f), 0.5f + 0.5f * std::sin(x * 0.05f)};
    }, true);
    const Bitmap a = test::textureBitmap(100, 50);
    const Bitmap b = test::patternBitmap(
        100, 50, [](int x, int y) { return Pixel{std::uint8_t(x * 2), std::uint8_t(y * 5), std::uint8_t(x ^ y), 255}; });
    const Rect d0{-6.1f, -4.1f, 12.2f, 8.2f}, d1{-5.1f, -3.1f, 10.2f, 7.2f}, part{40, 20, 30, 10};
    const Bitmap expected = renderToBitmap(
        makeFilter(Image::fromBitmap(a), Image::fromBitmap(b), coords, 7, {0, 0, 100, 50}).outputImage(), part);
    auto poison = [&](const Bitmap& source, const Rect& d) {
        const Rect keep = part.offsetBy(d.minX(), d.minY()).united(part.offsetBy(d.maxX(), d.maxY())).insetBy(-2, -2);
        return Image::fromBitmap(test::patternBitmap(100, 50, [&](int x, int y) {
            return keep.containsPoint(x + 0.5f, y + 0.5f) ? source.pixel(x, y) : Pixel{255, 0, 255, 255};
        }));
    };
    SampleCoords2Filter bounded = makeFilter(poison(a, d0), poison(b, d1), coords, 7, {0, 0, 100, 50});
    bounded.setRoiCalculator(jobCalculator(d0, d1));
    for (int rows : {1000, 1})
        EXPECT_TRUE(renderToBitmap(bounded.outputImage(), part, {.tileRows = rows}).samePixels(expected)) << rows;
}

Image randomWarp(std::mt19937& rng, int nx, int ny, float w, float h, float reach)
{
    std::uniform_real_distribution<float> offset(-reach, reach), unit(0.0f, 1.0f);
    return makeCoords(nx, ny, w, h, [&](float x, float y) {
        return NodeSample{x + offset(rng), y + offset(rng), x + offset(rng), y + offset(rng), unit(rng)};
    }, true);
}

Image randomImage(std::mt19937& rng, int w, int h)
{
    std::uniform_int_distribution<int> byte(0, 255);
    return Image::fromBitmap(test::patternBitmap(w, h, [&](int, int) {
        const int a = byte(rng); // premultiplied: no channel above alpha
        return Pixel{std::uint8_t(byte(rng) * a / 255), std::uint8_t(byte(rng) * a / 255),
                     std::uint8_t(byte(rng) * a / 255), std::uint8_t(a)};
    }));
}

TEST(SampleCoordsKernels, EveryCompiledInstructionSetGivesTheScalarBytes)
{
    // Widths that do and do not fill vectors, spacings 1 to 13, images of other sizes, reads
    // past the edges. Node rows and pixel cells are SIMD in both paths: force every target.
    const struct {
        int width, height;
        float r;
        int imageWidth, imageHeight;
        float reach;
    } cases[] = {{97, 31, 7, 97, 31, 5},      {64, 48, 1, 64, 48, 3},  {1, 5, 2, 3, 3, 1},
                 {133, 17, 13, 400, 60, 30}, {50, 40, 3, 20, 90, 80}, {16, 16, 1.5f, 16, 16, 0}};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        std::mt19937 rng(1234);
        for (const auto& c : cases) {
            const float w = float(c.width), h = float(c.height);
            const Image coords =
                randomWarp(rng, int(std::ceil(w / c.r)) + 1, int(std::ceil(h / c.r)) + 1, w, h, c.reach);
            const Image a = randomImage(rng, c.imageWidth, c.imageHeight);
            const Image b = randomImage(rng, c.imageHeight, c.imageWidth);
            const Rect extent{0, 0, w, h};
            for (const auto& [first, last] : {std::pair{a, b}, std::pair{a, Image()}, std::pair{Image(), b}}) {
                const Image out = makeFilter(first, last, coords, c.r, extent).outputImage();
                const Bitmap fast = renderToBitmap(out, extent);
                sampling::setSamplingPath(sampling::SamplingPath::Scalar);
                EXPECT_TRUE(fast.samePixels(renderToBitmap(out, extent)))
                    << hwy::TargetName(target) << " " << c.width << "x" << c.height;
                sampling::setSamplingPath(sampling::SamplingPath::Fastest);
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(SampleCoordsKernels, TilesAndThreadsDoNotChangeThePixels)
{
    std::mt19937 rng(99);
    const Image coords = randomWarp(rng, 23, 14, 151, 87, 9);
    const Image out =
        makeFilter(randomImage(rng, 151, 87), randomImage(rng, 90, 60), coords, 7, {0, 0, 151, 87}).outputImage();
    const Bitmap reference = renderToBitmap(out, {0, 0, 151, 87}, {.maxThreads = 1, .tileRows = 1000});
    for (int rows : {1, 3, 16})
        for (int threads : {1, 0})
            EXPECT_TRUE(renderToBitmap(out, {0, 0, 151, 87}, {.maxThreads = threads, .tileRows = rows})
                            .samePixels(reference))
                << rows << " " << threads;
    // A part rendered alone matches the same part of the whole.
    const Bitmap part = renderToBitmap(out, {30, 20, 50, 40});
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 50; ++x)
            ASSERT_EQ(part.pixel(x, y), reference.pixel(x + 30, y + 20));
}

} // namespace
} // namespace plyra
