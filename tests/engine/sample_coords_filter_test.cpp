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

Bitmap render(const Image& image, const Rect& rect, RenderOptions options = {})
{
    return renderToBitmap(image, rect, options);
}

Image textureImage(int width, int height)
{
    return Image::fromBitmap(test::textureBitmap(width, height));
}

void expectNear(Pixel actual, std::array<int, 4> expected, int tolerance, int x, int y)
{
    for (int c = 0; c < 4; ++c)
        ASSERT_NEAR(int(actual[c]), expected[c], tolerance) << "pixel " << x << "," << y << " channel " << c;
}

/// Runs `check` once on every instruction set the program carries code for, not only the
/// best of this machine.
template <typename Check>
void onEveryTarget(Check check)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        check(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}

// ---- Values ----------------------------------------------------------------------------

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
    filter.setValue(std::monostate{}, "extent");
    EXPECT_EQ(log.lines().size(), 1u);
    filter.setExtent({0, 0, 640, 480});
    EXPECT_EQ(std::get<Rect>(filter.value("extent")), (Rect{0, 0, 640, 480}));

    filter.setValue(Rect{}, "resolution");
    filter.setValue(3.0f, "noSuchKey");
    EXPECT_EQ(filter.resolution(), 5.0f);
    EXPECT_EQ(log.lines().size(), 3u);
    const Image image = textureImage(4, 4);
    filter.setValue(image, "inputImage2");
    EXPECT_TRUE(std::get<Image>(filter.value("inputImage2")) == image);
    filter.setValue(std::monostate{}, "inputImage2");
    EXPECT_TRUE(filter.inputImage2().isNull());
}

TEST(SamplerMatrix, StretchesTheImageExtentOntoTheOutput)
{
    EXPECT_EQ(samplerMatrixFromRectToRect({0, 0, 2000, 1000}, {0, 0, 640, 480}).values(),
              (std::array<float, 6>{0.32f, 0, 0, 0.48f, 0, 0}));
    const Matrix m = samplerMatrixFromRectToRect({10, 20, 100, 100}, {0, 0, 200, 100});
    EXPECT_EQ(m.values(), (std::array<float, 6>{2, 0, 0, 1, -20, -20}));
    EXPECT_EQ(m.mapX(110, 120), 200.0f);
    EXPECT_EQ(m.mapY(110, 120), 100.0f);
}

// ---- Region of interest ------------------------------------------------------------------

TEST(SampleCoords2Filter, RegionOfInterestIndexesNameTheImagesInUse)
{
    // With both images: first, last, coordinates; with only the last: last, coordinates.
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
}

TEST(SampleCoords2Filter, RegionOfInterestRejectsAnIndexBeyondTwo)
{
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
}

TEST(SampleCoords2Filter, CoordinatesRegionCoversTheNodesTheKernelReads)
{
    // 100 wide at r = 7: 16 nodes, 100/15 ≈ 6.67 pixels apart, so the node block that
    // assumes 7 falls one node short at the right; the filter widens it.
    SampleCoords2Filter filter =
        makeFilter(textureImage(4, 4), {}, identityCoords(16, 9, 100, 50, 0), 7, {0, 0, 100, 50});
    const auto job = jobCalculator({}, {});
    const Rect region = filter.regionOf(1, {0, 0, 97, 50}, job);
    EXPECT_GE(region.maxX(), 16.0f);
    EXPECT_EQ(region.x, 0.0f);
    EXPECT_EQ(filter.regionOf(1, {0, 0, 100, 50}, job), (Rect{0, 0, 16, 9}));
}

// ---- Kernel source cache --------------------------------------------------------------------

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

TEST_F(KernelSourceTest, SourcesAreReadOnceFromTheKernelResources)
{
    SampleCoords2Filter two = makeFilter(m_image, m_image, {}, 5, {0, 0, 4, 4});
    SampleCoords2Filter one = makeFilter(m_image, {}, {}, 5, {0, 0, 4, 4});
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
}

TEST_F(KernelSourceTest, ANewSourceRecompilesAndTheSameSourceDoesNot)
{
    SampleCoords2Filter two = makeFilter(m_image, m_image, {}, 5, {0, 0, 4, 4});
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
    // The one-image kernel was left alone.
    EXPECT_EQ(makeFilter(m_image, {}, {}, 5, {}).kernelSource(), readFile("sampleCoords"));
}

TEST_F(KernelSourceTest, ASourceThatDoesNotCompileGivesNoKernelAndNoImage)
{
    SampleCoords2Filter one = makeFilter(m_image, {}, identityCoords(2, 2, 4, 4, 0), 5, {0, 0, 4, 4});
    // Both resources are read first; a cache still missing one would read them again
    // and replace the source set below.
    ASSERT_FALSE(one.kernelSource().empty());
    LogCapture log;
    SampleCoords2Filter::setKernelSourceForOneImage("kernel vec4 sampleCoords(sampler a, float r);");
    EXPECT_FALSE(one.kernel());
    EXPECT_TRUE(one.outputImage().isNull());
    EXPECT_TRUE(log.contains("sampleCoords"));
}

// ---- Output pixels -----------------------------------------------------------------------------

TEST(SampleCoordsKernels, IdentityGridReproducesTheImageItShows)
{
    // The last image's rows are packed as whole pixels; with nodes 8 pixels apart no
    // position loses anything.
    const Bitmap source = test::textureBitmap(64, 48);
    const Image image = Image::fromBitmap(source);
    const Image blue = Image::fromBitmap(test::uniformBitmap(64, 48, {0, 0, 255, 255}));
    const Image grey = Image::fromBitmap(test::uniformBitmap(64, 48, {9, 9, 9, 255}));
    const struct {
        Image first;
        Image last;
        float dissolve;
    } cases[] = {{image, blue, 0}, {image, Image(), 0}, {grey, image, 1}};
    EXPECT_TRUE(makeFilter({}, {}, identityCoords(9, 7, 64, 48, 0), 8, {0, 0, 64, 48}).outputImage().isNull());
    for (const auto& c : cases) {
        const Image out = makeFilter(c.first, c.last, identityCoords(9, 7, 64, 48, c.dissolve), 8, {0, 0, 64, 48})
                              .outputImage();
        EXPECT_TRUE(render(out, {0, 0, 64, 48}).samePixels(source)) << c.dissolve;
    }
}

TEST(SampleCoordsKernels, LastImageRowsBetweenWholePixelsAreRoundedDown)
{
    // Node rows 6 + 4/7 pixels apart: a node at y = 13.71 keeps row 13, so the pixel
    // there reads up to a row lower, never more.
    const Bitmap source = test::patternBitmap(16, 48, [](int, int y) { return Pixel{std::uint8_t(y * 5), 0, 0, 255}; });
    const Image out = makeFilter({}, Image::fromBitmap(source), identityCoords(3, 8, 16, 48, 0), 7, {0, 0, 16, 48})
                          .outputImage();
    const Bitmap result = render(out, {0, 0, 16, 48});
    for (int y = 0; y < 48; ++y) {
        const int value = result.pixel(8, y)[0];
        EXPECT_LE(value, y * 5) << y;
        EXPECT_GE(value, std::max(y - 1, 0) * 5) << y;
    }
}

TEST(SampleCoordsKernels, DissolveBlendsPremultipliedPixels)
{
    const struct {
        Pixel a;
        Pixel b;
        float f;
        std::array<int, 4> expected;
    } cases[] = {{{200, 100, 0, 255}, {0, 50, 250, 255}, 0.5f, {100, 75, 125, 255}},
                 {{255, 0, 0, 255}, {0, 0, 0, 0}, 0.5f, {128, 0, 0, 128}},
                 {{255, 0, 0, 255}, {0, 128, 0, 128}, 0.25f, {191, 32, 0, 223}}};
    for (const auto& c : cases) {
        const Image a = Image::fromBitmap(test::uniformBitmap(32, 32, c.a));
        const Image b = Image::fromBitmap(test::uniformBitmap(32, 32, c.b));
        const Bitmap result =
            render(makeFilter(a, b, identityCoords(5, 5, 32, 32, c.f), 8, {0, 0, 32, 32}).outputImage(), {0, 0, 32, 32});
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                expectNear(result.pixel(x, y), c.expected, 1, x, y);
    }
}

TEST(SampleCoordsKernels, DissolveVariesBetweenNodes)
{
    // f = 0 at the left edge, 1 at the right: the blend follows linearly.
    const Image a = Image::fromBitmap(test::uniformBitmap(64, 8, {0, 0, 0, 255}));
    const Image b = Image::fromBitmap(test::uniformBitmap(64, 8, {255, 255, 255, 255}));
    const Image coords = makeCoords(9, 2, 64, 8, [](float x, float y) { return NodeSample{x, y, x, y, x / 64}; });
    const Bitmap result = render(makeFilter(a, b, coords, 8, {0, 0, 64, 8}).outputImage(), {0, 0, 64, 8});
    for (int x = 0; x < 64; ++x) {
        const int v = int((x + 0.5f) / 64 * 255 + 0.5f);
        expectNear(result.pixel(x, 3), {v, v, v, 255}, 1, x, 3);
    }
}

TEST(SampleCoordsKernels, ShiftedGridsShiftTheImageTheyRead)
{
    // With only the last image, the first-image positions point far away and must be
    // ignored for floats 2 and 3.
    const Bitmap source = test::textureBitmap(64, 48);
    const Image image = Image::fromBitmap(source);
    const struct {
        bool onlyLast;
        NodeSample shift; // added to each node's own position
        int dx, dy;
    } cases[] = {{false, {3, 2, 0, 0, 0}, 3, 2}, {true, {40, 9, 5, 0, 0.6f}, 5, 0}};
    for (const auto& c : cases) {
        const Image coords = makeCoords(9, 7, 64, 48, [&](float x, float y) {
            return NodeSample{x + c.shift.firstX, y + c.shift.firstY, x + c.shift.lastX, y, c.shift.dissolve};
        });
        const Image out = makeFilter(c.onlyLast ? Image() : image, c.onlyLast ? image : Image(), coords, 8,
                                     {0, 0, 64, 48}).outputImage();
        const Bitmap result = render(out, {0, 0, 64, 48});
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 64; ++x)
                ASSERT_EQ(result.pixel(x, y), source.pixel(std::min(x + c.dx, 63), std::min(y + c.dy, 47)))
                    << c.onlyLast << " " << x << "," << y;
    }
}

TEST(SampleCoordsKernels, ImagesOfOtherSizesAreStretchedOverTheFrame)
{
    // A 32 × 24 image over a 64 × 48 frame: frame pixel (2k + 1) samples at 2k + 1.5, which
    // is texel coordinate k + 0.25: three quarters of texel k and one of k + 1, in x and y.
    const Bitmap small = test::textureBitmap(32, 24);
    const Image out =
        makeFilter(Image::fromBitmap(small), {}, identityCoords(9, 7, 64, 48, 0), 8, {0, 0, 64, 48}).outputImage();
    const Bitmap result = render(out, {0, 0, 64, 48});
    for (int k = 1; k < 20; ++k) {
        const Pixel p00 = small.pixel(k, 10), p10 = small.pixel(k + 1, 10);
        const Pixel p01 = small.pixel(k, 11), p11 = small.pixel(k + 1, 11);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(int(result.pixel(2 * k + 1, 21)[c]),
                        (9 * p00[c] + 3 * p10[c] + 3 * p01[c] + p11[c] + 8) / 16, 1)
                << k;
    }
}

TEST(SampleCoordsKernels, LargeImageShrunkToAPreviewDoesNotAlias)
{
    // A 4000-pixel checkerboard of 8-pixel squares shown 160 pixels wide: each output
    // pixel covers 25 source pixels, so it must come out a uniform grey.
    const Bitmap board = test::patternBitmap(4000, 2000, [](int x, int y) {
        const std::uint8_t v = ((x / 8 + y / 8) % 2) ? 255 : 0;
        return Pixel{v, v, v, 255};
    });
    const Image out =
        makeFilter(Image::fromBitmap(board), {}, identityCoords(21, 11, 160, 80, 0), 8, {0, 0, 160, 80}).outputImage();
    const Bitmap result = render(out, {0, 0, 160, 80});
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 160; ++x)
            expectNear(result.pixel(x, y), {128, 128, 128, 255}, 2, x, y);
}

TEST(SampleCoordsKernels, JobRegionsOfInterestGiveTheSamePixelsAsWholeImages)
{
    // A warp with displacements of up to ±6 pixels; the job's regions, bounded by those
    // displacements, must hold everything the kernel reads, and the pixels outside them
    // (poisoned here) must not matter.
    const Image coords = makeCoords(16, 9, 100, 50, [](float x, float y) {
        return NodeSample{x + 6 * std::sin(y * 0.2f), y - 4 * std::cos(x * 0.1f), x - 5 * std::cos(y * 0.3f),
                          y + 3 * std::sin(x * 0.15f), 0.5f + 0.5f * std::sin(x * 0.05f)};
    });
    const Bitmap a = test::textureBitmap(100, 50);
    const Bitmap b = test::patternBitmap(
        100, 50, [](int x, int y) { return Pixel{std::uint8_t(x * 2), std::uint8_t(y * 5), std::uint8_t(x ^ y), 255}; });
    const Rect d0{-6.1f, -4.1f, 12.2f, 8.2f};
    const Rect d1{-5.1f, -3.1f, 10.2f, 7.2f};
    const Rect part{40, 20, 30, 10};
    const Bitmap expected =
        render(makeFilter(Image::fromBitmap(a), Image::fromBitmap(b), coords, 7, {0, 0, 100, 50}).outputImage(), part);

    auto poison = [&](const Bitmap& source, const Rect& d) {
        const Rect keep = part.offsetBy(d.minX(), d.minY()).united(part.offsetBy(d.maxX(), d.maxY())).insetBy(-2, -2);
        return Image::fromBitmap(test::patternBitmap(100, 50, [&](int x, int y) {
            return keep.containsPoint(x + 0.5f, y + 0.5f) ? source.pixel(x, y) : Pixel{255, 0, 255, 255};
        }));
    };
    SampleCoords2Filter bounded = makeFilter(poison(a, d0), poison(b, d1), coords, 7, {0, 0, 100, 50});
    bounded.setRoiCalculator(jobCalculator(d0, d1));
    for (int rows : {1000, 1}) {
        RenderOptions options;
        options.tileRows = rows;
        EXPECT_TRUE(render(bounded.outputImage(), part, options).samePixels(expected)) << rows;
    }
}

// ---- Differential: SIMD against scalar, tiles, threads ------------------------------------

class SamplingPathGuard {
public:
    explicit SamplingPathGuard(sampling::SamplingPath path) { sampling::setSamplingPath(path); }
    ~SamplingPathGuard() { sampling::setSamplingPath(sampling::SamplingPath::Fastest); }
};

Image randomWarp(std::mt19937& rng, int nx, int ny, float w, float h, float reach)
{
    std::uniform_real_distribution<float> offset(-reach, reach);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    return makeCoords(nx, ny, w, h, [&](float x, float y) {
        return NodeSample{x + offset(rng), y + offset(rng), x + offset(rng), y + offset(rng), unit(rng)};
    });
}

Image randomImage(std::mt19937& rng, int w, int h)
{
    std::uniform_int_distribution<int> byte(0, 255);
    return Image::fromBitmap(test::patternBitmap(w, h, [&](int, int) {
        const int alpha = byte(rng);
        auto channel = [&] { return std::uint8_t(byte(rng) * alpha / 255); };
        return Pixel{channel(), channel(), channel(), std::uint8_t(alpha)};
    }));
}

TEST(SampleCoordsKernels, EveryCompiledInstructionSetGivesTheScalarBytes)
{
    // Widths that do and do not fill vectors; node spacings from 1 (gathered grid
    // values) to 13; images larger, smaller and equal to the frame; reads past the edges.
    const struct {
        int width, height;
        float r;
        int imageWidth, imageHeight;
        float reach;
    } cases[] = {{97, 31, 7, 97, 31, 5},      {64, 48, 1, 64, 48, 3},  {1, 5, 2, 3, 3, 1},
                 {133, 17, 13, 400, 60, 30}, {50, 40, 3, 20, 90, 80}, {16, 16, 1.5f, 16, 16, 0}};
    onEveryTarget([&](const char* target) {
        std::mt19937 rng(1234);
        for (const auto& c : cases) {
            const int nx = int(std::ceil(float(c.width) / c.r)) + 1;
            const int ny = int(std::ceil(float(c.height) / c.r)) + 1;
            const Image coords = randomWarp(rng, nx, ny, float(c.width), float(c.height), c.reach);
            const Image a = randomImage(rng, c.imageWidth, c.imageHeight);
            const Image b = randomImage(rng, c.imageHeight, c.imageWidth);
            const Rect extent{0, 0, float(c.width), float(c.height)};
            for (const auto& [first, last] : {std::pair{a, b}, std::pair{a, Image()}, std::pair{Image(), b}}) {
                const Image out = makeFilter(first, last, coords, c.r, extent).outputImage();
                const Bitmap fast = render(out, extent);
                SamplingPathGuard scalar(sampling::SamplingPath::Scalar);
                ASSERT_TRUE(fast.samePixels(render(out, extent))) << target << " " << c.width << "x" << c.height;
            }
        }
    });
}

// Grid rows are interpolated in SIMD for both sampling paths, so the paths agreeing says
// nothing about them: each instruction set must give the plain expressions' floats.
TEST(SampleCoordsKernels, NodeRowsInterpolateAsThePlainExpressionsOnEveryInstructionSet)
{
    std::mt19937 rng(99);
    std::uniform_real_distribution<float> position(-3000.0f, 3000.0f);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    onEveryTarget([&](const char* target) {
        for (int count : {1, 2, 3, 15, 16, 17, 33, 70}) {
            std::vector<float> below(count), above(count), value(count, -1.0f), delta(count, -1.0f);
            for (int k = 0; k < count; ++k) {
                below[k] = position(rng);
                above[k] = position(rng);
            }
            const float fy = unit(rng);
            sampling::interpolateNodeRows(below.data(), above.data(), fy, count, value.data(), delta.data());
            for (int k = 0; k < count; ++k)
                ASSERT_EQ(value[k], below[k] + (above[k] - below[k]) * fy) << target << " count " << count << " k " << k;
            for (int k = 0; k + 1 < count; ++k)
                ASSERT_EQ(delta[k], value[k + 1] - value[k]) << target << " count " << count;
            EXPECT_EQ(delta[count - 1], -1.0f) << "the last column has no difference to write";
        }
    });
}

// The column table is shared by both sampling paths too; each instruction set must give
// cellOf's cells, for pixels before, inside and beyond the grid.
TEST(SampleCoordsKernels, PixelCellsAreCellOfsOnEveryInstructionSet)
{
    const struct {
        float origin;
        float nodesPerPixel;
        int nodes;
    } grids[] = {{0.0f, 1.0f / 7.0f, 276}, {-3.25f, 0.3f, 40}, {12.5f, 1.0f, 9}, {0.0f, 0.01f, 2}, {5.0f, 0.5f, 1}};
    onEveryTarget([&](const char* target) {
        for (const auto& grid : grids)
            for (const int first : {-40, -1, 0, 3, 1900}) {
                const int count = 77;
                std::vector<int> node(count);
                std::vector<float> fraction(count);
                sampling::cellsOfPixels(first, count, grid.origin, grid.nodesPerPixel, grid.nodes, node.data(),
                                        fraction.data());
                for (int x = 0; x < count; ++x) {
                    int expectedNode = -1;
                    float expectedFraction = -1.0f;
                    sampling::cellOf(float(first + x) + 0.5f, grid.origin, grid.nodesPerPixel, grid.nodes,
                                     expectedNode, expectedFraction);
                    ASSERT_EQ(node[x], expectedNode) << target << " pixel " << first + x;
                    ASSERT_EQ(fraction[x], expectedFraction) << target << " pixel " << first + x;
                }
            }
    });
}

TEST(SampleCoordsKernels, TilesAndThreadsDoNotChangeThePixels)
{
    std::mt19937 rng(99);
    const Image coords = randomWarp(rng, 23, 14, 151, 87, 9);
    const Image out =
        makeFilter(randomImage(rng, 151, 87), randomImage(rng, 90, 60), coords, 7, {0, 0, 151, 87}).outputImage();
    RenderOptions whole;
    whole.maxThreads = 1;
    whole.tileRows = 1000;
    const Bitmap reference = render(out, {0, 0, 151, 87}, whole);
    for (int rows : {1, 3, 16})
        for (int threads : {1, 0}) {
            RenderOptions options;
            options.tileRows = rows;
            options.maxThreads = threads;
            EXPECT_TRUE(render(out, {0, 0, 151, 87}, options).samePixels(reference)) << rows << " " << threads;
        }
    // A part rendered alone matches the same part of the whole.
    const Bitmap part = render(out, {30, 20, 50, 40});
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 50; ++x)
            ASSERT_EQ(part.pixel(x, y), reference.pixel(x + 30, y + 20));
}

TEST(SampleCoordsKernels, NonFiniteNodesStayAtTheirOwnPosition)
{
    const Bitmap source = test::textureBitmap(32, 32);
    const float nan = std::nanf("");
    const float inf = std::numeric_limits<float>::infinity();
    const Image coords = makeCoords(5, 5, 32, 32, [&](float x, float y) {
        return NodeSample{x == 16 ? nan : x, y == 16 ? inf : y, 1e30f, -1e30f, 0};
    });
    const Image image = Image::fromBitmap(source);
    const Bitmap result = render(makeFilter(image, image, coords, 8, {0, 0, 32, 32}).outputImage(), {0, 0, 32, 32});
    EXPECT_EQ(result.pixel(5, 5), source.pixel(5, 5));
    EXPECT_EQ(result.pixel(16, 16), source.pixel(16, 16));
}

} // namespace
} // namespace plyra
