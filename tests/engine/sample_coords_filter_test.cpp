// SPDX-License-Identifier: MIT
#include "engine/sample_coords_filter.h"

#include "engine/sample_coords_kernels_internal.h"
#include "engine/sampling_test_support.h"
#include "platform/image/renderer.h"
#include "platform/log.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <random>
#include <vector>

namespace plyra {
namespace {

using test::identityCoords;
using test::makeCoords;
using test::NodeSample;

/// Records every question and answers with the whole plane.
class RecordingCalculator : public RegionOfInterestCalculator {
public:
    Rect regionOfInterest(const Image& image, const Rect& destRect, const SampleCoords2Filter& filter) const override
    {
        std::lock_guard guard(m_mutex);
        const char* which = image == filter.coordsImage() ? "coords"
            : image == filter.inputImage1()               ? "first"
            : image == filter.inputImage2()               ? "last"
                                                          : "other";
        m_calls.emplace_back(which, destRect);
        return Rect::infinite();
    }
    std::vector<std::pair<std::string, Rect>> calls() const
    {
        std::lock_guard guard(m_mutex);
        return m_calls;
    }

private:
    mutable std::mutex m_mutex;
    mutable std::vector<std::pair<std::string, Rect>> m_calls;
};

/// The calculation job's rule: nodes around destRect for the coordinates image; for the
/// track images, destRect moved by the displacement bounds, clamped, grown by a pixel.
class JobRuleCalculator : public RegionOfInterestCalculator {
public:
    JobRuleCalculator(Rect displacement0, Rect displacement1, Size frame)
        : m_d0(displacement0), m_d1(displacement1), m_frame(frame) {}

    Rect regionOfInterest(const Image& image, const Rect& r, const SampleCoords2Filter& filter) const override
    {
        const float res = filter.resolution();
        if (image == filter.coordsImage())
            return {std::floor(r.x / res), std::floor(r.y / res), std::ceil(r.width / res) + 1,
                    std::ceil(r.height / res) + 1};
        const Rect d = image == filter.inputImage1() ? m_d0 : m_d1;
        const Rect u = r.offsetBy(d.maxX(), d.maxY()).united(r.offsetBy(d.minX(), d.minY()));
        const Rect clamped{std::max(u.x, 0.0f), std::max(u.y, 0.0f), std::min(u.width, m_frame.width),
                           std::min(u.height, m_frame.height)};
        return clamped.insetBy(-1.0f, -1.0f);
    }

private:
    Rect m_d0;
    Rect m_d1;
    Size m_frame;
};

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

void expectNear(std::array<std::uint8_t, 4> actual, std::array<int, 4> expected, int tolerance, int x, int y)
{
    for (int c = 0; c < 4; ++c)
        ASSERT_NEAR(int(actual[c]), expected[c], tolerance) << "pixel " << x << "," << y << " channel " << c;
}

// ---- Fields, keys, attributes --------------------------------------------------------

TEST(SampleCoords2Filter, DefaultsKeysAndAttributes)
{
    SampleCoords2Filter filter;
    filter.setValue(9.0f, "resolution");
    filter.setExtent({1, 2, 3, 4});
    filter.setDefaults();
    EXPECT_EQ(filter.resolution(), 5.0f);
    EXPECT_EQ(filter.extent(), (Rect{0, 0, 1000, 1000}));
    EXPECT_EQ(SampleCoords2Filter::inputKeys(),
              (std::vector<std::string>{"coordsImage", "inputImage1", "inputImage2", "resolution", "extent",
                                        "roiCalculator"}));
    EXPECT_EQ(SampleCoords2Filter::outputKeys(), std::vector<std::string>{"outputImage"});

    const FilterAttributes a = SampleCoords2Filter::attributes();
    EXPECT_EQ(a.filterName, "sampleCoords");
    EXPECT_EQ(a.displayName, "Sample coords");
    EXPECT_EQ(a.categories, (std::vector<std::string>{kCICategoryStillImage, kCICategoryVideo,
                                                      kCICategoryCompositeOperation}));
    for (const char* key : {"inputImage1", "inputImage2", "outputImage"})
        EXPECT_EQ(a.classes.at(key), std::type_index(typeid(Image))) << key;
    const ScalarAttribute& r = a.scalars.at("resolution");
    EXPECT_EQ(r.min, 1.0f);
    EXPECT_EQ(r.sliderMin, 1.0f);
    EXPECT_EQ(r.sliderMax, 100.0f);
    EXPECT_EQ(r.defaultValue, 5.0f);
    EXPECT_EQ(r.identity, 1.0f);
    EXPECT_EQ(r.type, kCIAttributeTypeScalar);
}

TEST(SampleCoords2Filter, ExtentIsSetOnlyThroughSetExtentAndALogLineReportsTheValue)
{
    SampleCoords2Filter filter;
    filter.setDefaults();
    LogCapture log;
    filter.setValue(Rect{0, 0, 640, 480}, "extent");
    EXPECT_EQ(filter.extent(), (Rect{0, 0, 1000, 1000}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "[0 0 640 480]");
    filter.setValue(std::monostate{}, "extent");
    EXPECT_EQ(log.lines().size(), 1u);
    filter.setExtent({0, 0, 640, 480});
    EXPECT_EQ(filter.extent(), (Rect{0, 0, 640, 480}));
    EXPECT_EQ(std::get<Rect>(filter.value("extent")), (Rect{0, 0, 640, 480}));
}

TEST(SampleCoords2Filter, ValuesOfTheWrongTypeAreLoggedAndIgnored)
{
    SampleCoords2Filter filter;
    filter.setDefaults();
    LogCapture log;
    filter.setValue(Rect{}, "resolution");
    filter.setValue(3.0f, "noSuchKey");
    EXPECT_EQ(filter.resolution(), 5.0f);
    EXPECT_EQ(log.lines().size(), 2u);
    const Image image = Image::fromBitmap(test::textureBitmap(4, 4));
    filter.setValue(image, "inputImage2");
    EXPECT_TRUE(filter.inputImage2() == image);
    EXPECT_TRUE(std::get<Image>(filter.value("inputImage2")) == image);
    filter.setValue(std::monostate{}, "inputImage2");
    EXPECT_TRUE(filter.inputImage2().isNull());
}

// ---- Sampler matrices ------------------------------------------------------------------

TEST(SamplerMatrix, StretchesTheImageExtentOntoTheOutput)
{
    EXPECT_EQ(samplerMatrixFromRectToRect({0, 0, 2000, 1000}, {0, 0, 640, 480}).values(),
              (std::array<float, 6>{0.32f, 0, 0, 0.48f, 0, 0}));
    EXPECT_EQ(samplerMatrixFromRectToRect({10, 20, 100, 100}, {0, 0, 200, 100}).values(),
              (std::array<float, 6>{2, 0, 0, 1, -20, -20}));
    // It maps the image's corners onto the output's.
    const Matrix m = samplerMatrixFromRectToRect({10, 20, 100, 100}, {0, 0, 200, 100});
    EXPECT_EQ(m.mapX(110, 120), 200.0f);
    EXPECT_EQ(m.mapY(110, 120), 100.0f);
}

// ---- Region of interest ------------------------------------------------------------------

TEST(SampleCoords2Filter, RegionOfInterestIndexesWithBothImages)
{
    const Image first = Image::fromBitmap(test::textureBitmap(8, 8));
    const Image last = Image::fromBitmap(test::textureBitmap(8, 8));
    const Image coords = identityCoords(3, 3, 16, 16, 0);
    SampleCoords2Filter filter = makeFilter(first, last, coords, 8, {0, 0, 16, 16});
    auto calculator = std::make_shared<RecordingCalculator>();
    filter.setValue(calculator, "roiCalculator");
    const std::shared_ptr<void> info = calculator;
    for (int index = 0; index < 3; ++index)
        filter.regionOf(index, {1, 2, 3, 4}, info);
    const auto calls = calculator->calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].first, "first");
    EXPECT_EQ(calls[1].first, "last");
    EXPECT_EQ(calls[2].first, "coords");
    EXPECT_EQ(calls[0].second, (Rect{1, 2, 3, 4}));
}

TEST(SampleCoords2Filter, RegionOfInterestIndexesWithOnlyTheLastImage)
{
    const Image last = Image::fromBitmap(test::textureBitmap(8, 8));
    SampleCoords2Filter filter = makeFilter({}, last, identityCoords(3, 3, 16, 16, 0), 8, {0, 0, 16, 16});
    auto calculator = std::make_shared<RecordingCalculator>();
    filter.setRoiCalculator(calculator);
    filter.regionOf(0, {0, 0, 4, 4}, calculator);
    filter.regionOf(1, {0, 0, 4, 4}, calculator);
    const auto calls = calculator->calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].first, "last");
    EXPECT_EQ(calls[1].first, "coords");
}

TEST(SampleCoords2Filter, RegionOfInterestRejectsAnIndexBeyondTwo)
{
    SampleCoords2Filter filter = makeFilter(Image::fromBitmap(test::textureBitmap(4, 4)), {}, {}, 5, {0, 0, 4, 4});
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
    SampleCoords2Filter filter = makeFilter(Image::fromBitmap(test::textureBitmap(4, 4)), {},
                                            identityCoords(16, 9, 100, 50, 0), 7, {0, 0, 100, 50});
    auto job = std::make_shared<JobRuleCalculator>(Rect{}, Rect{}, Size{100, 50});
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
};

TEST_F(KernelSourceTest, SourcesComeFromTheKernelResources)
{
    const Image image = Image::fromBitmap(test::textureBitmap(4, 4));
    SampleCoords2Filter two = makeFilter(image, image, {}, 5, {0, 0, 4, 4});
    SampleCoords2Filter one = makeFilter(image, {}, {}, 5, {0, 0, 4, 4});
    EXPECT_EQ(two.kernelSource(), readFile("sampleCoords2"));
    EXPECT_EQ(one.kernelSource(), readFile("sampleCoords"));
    ASSERT_TRUE(two.kernel());
    ASSERT_TRUE(one.kernel());
    EXPECT_EQ(two.kernel()->name(), "sampleCoords2");
    EXPECT_EQ(one.kernel()->name(), "sampleCoords");
    // Compiled once for the program.
    EXPECT_EQ(two.kernel(), makeFilter(image, image, {}, 5, {}).kernel());
}

TEST_F(KernelSourceTest, ANewSourceRecompilesAndTheSameSourceDoesNot)
{
    const Image image = Image::fromBitmap(test::textureBitmap(4, 4));
    SampleCoords2Filter two = makeFilter(image, image, {}, 5, {0, 0, 4, 4});
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
    EXPECT_EQ(makeFilter(image, {}, {}, 5, {}).kernelSource(), readFile("sampleCoords"));
}

TEST_F(KernelSourceTest, ASourceThatDoesNotCompileGivesNoKernelAndNoImage)
{
    const Image image = Image::fromBitmap(test::textureBitmap(4, 4));
    SampleCoords2Filter one = makeFilter(image, {}, identityCoords(2, 2, 4, 4, 0), 5, {0, 0, 4, 4});
    // Both resources are read first; a cache still missing one would read them again
    // and replace the source set below.
    ASSERT_FALSE(one.kernelSource().empty());
    LogCapture log;
    SampleCoords2Filter::setKernelSourceForOneImage("kernel vec4 sampleCoords(sampler a, float r);");
    EXPECT_FALSE(one.kernel());
    EXPECT_TRUE(one.outputImage().isNull());
    EXPECT_TRUE(log.contains("sampleCoords"));
}

TEST_F(KernelSourceTest, SourcesAreReadOnceForTheProgram)
{
    // Once read, the sources stay: a directory without resources changes nothing.
    const Image image = Image::fromBitmap(test::textureBitmap(4, 4));
    ASSERT_EQ(makeFilter(image, image, {}, 5, {}).kernelSource(), readFile("sampleCoords2"));
    SampleCoords2Filter::setKernelDirectory("/nonexistent-kernel-dir");
    LogCapture log;
    EXPECT_EQ(makeFilter(image, image, {}, 5, {}).kernelSource(), readFile("sampleCoords2"));
    EXPECT_EQ(SampleCoords2Filter::kernelDirectory(), "/nonexistent-kernel-dir");
    SampleCoords2Filter::setKernelDirectory({});
    EXPECT_NE(SampleCoords2Filter::kernelDirectory(), "/nonexistent-kernel-dir");
}

// ---- Output image -----------------------------------------------------------------------------

TEST(SampleCoords2Filter, NoImageGivesNoOutput)
{
    SampleCoords2Filter filter = makeFilter({}, {}, identityCoords(2, 2, 4, 4, 0), 5, {0, 0, 4, 4});
    EXPECT_TRUE(filter.outputImage().isNull());
}

TEST(SampleCoords2Filter, OutputKeepsTheCalculatorAliveAndCoversTheExtent)
{
    const Image image = Image::fromBitmap(test::textureBitmap(8, 8));
    std::weak_ptr<RecordingCalculator> watch;
    Image output;
    {
        auto calculator = std::make_shared<RecordingCalculator>();
        watch = calculator;
        SampleCoords2Filter filter = makeFilter(image, image, identityCoords(3, 3, 8, 8, 0), 4, {0, 0, 8, 8});
        filter.setRoiCalculator(calculator);
        output = filter.outputImage();
    }
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(output.extent(), (Rect{0, 0, 8, 8}));
    render(output, output.extent());
    EXPECT_FALSE(watch.lock()->calls().empty());
    output = Image();
    EXPECT_TRUE(watch.expired());
}

TEST(SampleCoordsKernels, IdentityGridReproducesTheFirstImage)
{
    const Bitmap source = test::textureBitmap(64, 48);
    const Image first = Image::fromBitmap(source);
    const Image last = Image::fromBitmap(test::uniformBitmap(64, 48, {0, 0, 255, 255}));
    for (const Image& other : {last, Image()}) {
        const Image out = makeFilter(first, other, identityCoords(9, 7, 64, 48, 0), 8, {0, 0, 64, 48}).outputImage();
        EXPECT_TRUE(render(out, {0, 0, 64, 48}).samePixels(source));
    }
}

TEST(SampleCoordsKernels, IdentityGridReproducesTheLastImageWhenNodeRowsAreWholePixels)
{
    // The last image's rows are packed as whole pixels; with nodes 8 pixels apart no
    // position loses anything.
    const Bitmap source = test::textureBitmap(64, 48);
    const Image out = makeFilter(Image::fromBitmap(test::uniformBitmap(64, 48, {9, 9, 9, 255})),
                                 Image::fromBitmap(source), identityCoords(9, 7, 64, 48, 1), 8, {0, 0, 64, 48})
                          .outputImage();
    EXPECT_TRUE(render(out, {0, 0, 64, 48}).samePixels(source));
}

TEST(SampleCoordsKernels, LastImageRowsBetweenWholePixelsAreRoundedDown)
{
    // Node rows 6 + 4/7 pixels apart: a node at y = 13.71 keeps row 13, so the pixel
    // there reads up to a row lower, never more.
    const Bitmap source = test::patternBitmap(16, 48, [](int, int y) {
        return std::array<std::uint8_t, 4>{std::uint8_t(y * 5), 0, 0, 255};
    });
    const Image out = makeFilter({}, Image::fromBitmap(source), identityCoords(3, 8, 16, 48, 0), 7, {0, 0, 16, 48})
                          .outputImage();
    const Bitmap result = render(out, {0, 0, 16, 48});
    for (int y = 0; y < 48; ++y) {
        const int value = result.pixel(8, y)[0];
        EXPECT_LE(value, y * 5) << y;
        EXPECT_GE(value, std::max(y - 1, 0) * 5) << y;
    }
}

TEST(SampleCoordsKernels, ShiftedGridShiftsTheImage)
{
    const Bitmap source = test::textureBitmap(64, 48);
    const Image coords = makeCoords(9, 7, 64, 48, [](float x, float y) {
        return NodeSample{x + 3, y + 2, x, y, 0};
    });
    const Image out = makeFilter(Image::fromBitmap(source), {}, coords, 8, {0, 0, 64, 48}).outputImage();
    const Bitmap result = render(out, {0, 0, 64, 48});
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(result.pixel(x, y), source.pixel(std::min(x + 3, 63), std::min(y + 2, 47))) << x << "," << y;
}

TEST(SampleCoordsKernels, HalfDissolveBlendsHalfAndHalf)
{
    const Image a = Image::fromBitmap(test::uniformBitmap(32, 32, {200, 100, 0, 255}));
    const Image b = Image::fromBitmap(test::uniformBitmap(32, 32, {0, 50, 250, 255}));
    const Bitmap result = render(makeFilter(a, b, identityCoords(5, 5, 32, 32, 0.5f), 8, {0, 0, 32, 32}).outputImage(),
                                 {0, 0, 32, 32});
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            expectNear(result.pixel(x, y), {100, 75, 125, 255}, 1, x, y);
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

TEST(SampleCoordsKernels, PremultipliedAlphaBlends)
{
    const Image red = Image::fromBitmap(test::uniformBitmap(16, 16, {255, 0, 0, 255}));
    const Image clear = Image::fromBitmap(test::uniformBitmap(16, 16, {0, 0, 0, 0}));
    const Image halfGreen = Image::fromBitmap(test::uniformBitmap(16, 16, {0, 128, 0, 128}));
    const Bitmap toClear =
        render(makeFilter(red, clear, identityCoords(3, 3, 16, 16, 0.5f), 8, {0, 0, 16, 16}).outputImage(),
               {0, 0, 16, 16});
    expectNear(toClear.pixel(7, 7), {128, 0, 0, 128}, 1, 7, 7);
    const Bitmap toGreen =
        render(makeFilter(red, halfGreen, identityCoords(3, 3, 16, 16, 0.25f), 8, {0, 0, 16, 16}).outputImage(),
               {0, 0, 16, 16});
    expectNear(toGreen.pixel(7, 7), {191, 32, 0, 223}, 1, 7, 7);
}

TEST(SampleCoordsKernels, OnlyTheLastImageIsReadAtTheLastImagePositions)
{
    // The first-image positions point far away; the one-image path with only the last
    // image must ignore them and use floats 2 and 3.
    const Bitmap source = test::patternBitmap(64, 16, [](int x, int) {
        return std::array<std::uint8_t, 4>{std::uint8_t(x * 4), std::uint8_t(255 - x * 4), 7, 255};
    });
    const Image coords = makeCoords(9, 3, 64, 16, [](float x, float y) {
        return NodeSample{x + 40, y + 9, x + 5, y, 0.6f};
    });
    const Bitmap result =
        render(makeFilter({}, Image::fromBitmap(source), coords, 8, {0, 0, 64, 16}).outputImage(), {0, 0, 64, 16});
    for (int x = 0; x < 64; ++x)
        EXPECT_EQ(result.pixel(x, 5), source.pixel(std::min(x + 5, 63), 5)) << x;
}

TEST(SampleCoordsKernels, ImagesOfOtherSizesAreStretchedOverTheFrame)
{
    // A 32 × 24 image over a 64 × 48 frame: every image pixel covers 2 × 2 frame pixels.
    const Bitmap small = test::textureBitmap(32, 24);
    const Image out = makeFilter(Image::fromBitmap(small), {}, identityCoords(9, 7, 64, 48, 0), 8, {0, 0, 64, 48})
                          .outputImage();
    const Bitmap result = render(out, {0, 0, 64, 48});
    // Frame pixel (2k + 1) samples at 2k + 1.5, which is image texel coordinate k + 0.25:
    // three quarters of texel k and one of texel k + 1, in x and in y.
    for (int k = 1; k < 20; ++k) {
        const auto p00 = small.pixel(k, 10);
        const auto p10 = small.pixel(k + 1, 10);
        const auto p01 = small.pixel(k, 11);
        const auto p11 = small.pixel(k + 1, 11);
        const auto r = result.pixel(2 * k + 1, 21);
        for (int c = 0; c < 3; ++c) {
            const int expected = (9 * p00[c] + 3 * p10[c] + 3 * p01[c] + p11[c] + 8) / 16;
            EXPECT_NEAR(int(r[c]), expected, 1) << k;
        }
    }
}

TEST(SampleCoordsKernels, LargeImageShrunkToAPreviewDoesNotAlias)
{
    // A 4000-pixel checkerboard of 8-pixel squares shown 160 pixels wide: each output
    // pixel covers 25 source pixels, so it must come out a uniform grey.
    const int size = 4000;
    Bitmap board(size, size / 2);
    for (int y = 0; y < board.height(); ++y)
        for (int x = 0; x < size; ++x) {
            const std::uint8_t v = ((x / 8 + y / 8) % 2) ? 255 : 0;
            board.setPixel(x, y, {v, v, v, 255});
        }
    const Image out =
        makeFilter(Image::fromBitmap(std::move(board)), {}, identityCoords(21, 11, 160, 80, 0), 8, {0, 0, 160, 80})
            .outputImage();
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
    const int w = 100;
    const int h = 50;
    auto warp = [](float x, float y) {
        return NodeSample{x + 6 * std::sin(y * 0.2f), y - 4 * std::cos(x * 0.1f), x - 5 * std::cos(y * 0.3f),
                          y + 3 * std::sin(x * 0.15f), 0.5f + 0.5f * std::sin(x * 0.05f)};
    };
    const Image coords = makeCoords(16, 9, float(w), float(h), warp);
    const Bitmap a = test::textureBitmap(w, h);
    const Bitmap b = test::patternBitmap(w, h, [](int x, int y) {
        return std::array<std::uint8_t, 4>{std::uint8_t(x * 2), std::uint8_t(y * 5), std::uint8_t(x ^ y), 255};
    });
    const Rect d0{-6.1f, -4.1f, 12.2f, 8.2f};
    const Rect d1{-5.1f, -3.1f, 10.2f, 7.2f};
    const Rect part{40, 20, 30, 10};

    SampleCoords2Filter whole = makeFilter(Image::fromBitmap(a), Image::fromBitmap(b), coords, 7, {0, 0, 100, 50});
    const Bitmap expected = render(whole.outputImage(), part);

    auto poison = [&](const Bitmap& source, const Rect& d) {
        const Rect keep = part.offsetBy(d.minX(), d.minY()).united(part.offsetBy(d.maxX(), d.maxY())).insetBy(-2, -2);
        Bitmap poisoned = source;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (!keep.containsPoint(x + 0.5f, y + 0.5f))
                    poisoned.setPixel(x, y, {255, 0, 255, 255});
        return Image::fromBitmap(std::move(poisoned));
    };
    SampleCoords2Filter bounded = makeFilter(poison(a, d0), poison(b, d1), coords, 7, {0, 0, 100, 50});
    bounded.setRoiCalculator(std::make_shared<JobRuleCalculator>(d0, d1, Size{100, 50}));
    RenderOptions oneTile;
    oneTile.tileRows = 1000;
    EXPECT_TRUE(render(bounded.outputImage(), part, oneTile).samePixels(expected));
    RenderOptions rowTiles;
    rowTiles.tileRows = 1;
    EXPECT_TRUE(render(bounded.outputImage(), part, rowTiles).samePixels(expected));
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

Bitmap randomBitmap(std::mt19937& rng, int w, int h)
{
    Bitmap bitmap(w, h);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int alpha = byte(rng);
            auto channel = [&] { return std::uint8_t(byte(rng) * alpha / 255); };
            bitmap.setPixel(x, y, {channel(), channel(), channel(), std::uint8_t(alpha)});
        }
    return bitmap;
}

void expectSimdMatchesScalar(const char* target)
{
    std::mt19937 rng(1234);
    struct Case {
        int width;
        int height;
        float r;
        int imageWidth;
        int imageHeight;
        float reach;
    };
    // Widths that do and do not fill vectors; node spacings from 1 (gathered grid
    // values) to 13; images larger, smaller and equal to the frame; reads past the edges.
    const Case cases[] = {{97, 31, 7, 97, 31, 5},  {64, 48, 1, 64, 48, 3},    {1, 5, 2, 3, 3, 1},
                          {133, 17, 13, 400, 60, 30}, {50, 40, 3, 20, 90, 80}, {16, 16, 1.5f, 16, 16, 0}};
    for (const Case& c : cases) {
        const int nx = int(std::ceil(float(c.width) / c.r)) + 1;
        const int ny = int(std::ceil(float(c.height) / c.r)) + 1;
        const Image coords = randomWarp(rng, nx, ny, float(c.width), float(c.height), c.reach);
        const Image a = Image::fromBitmap(randomBitmap(rng, c.imageWidth, c.imageHeight));
        const Image b = Image::fromBitmap(randomBitmap(rng, c.imageHeight, c.imageWidth));
        const Rect extent{0, 0, float(c.width), float(c.height)};
        for (const auto& [first, last] : {std::pair{a, b}, std::pair{a, Image()}, std::pair{Image(), b}}) {
            const Image out = makeFilter(first, last, coords, c.r, extent).outputImage();
            const Bitmap fast = render(out, extent);
            SamplingPathGuard scalar(sampling::SamplingPath::Scalar);
            const Bitmap plain = render(out, extent);
            ASSERT_TRUE(fast.samePixels(plain)) << target << " " << c.width << "x" << c.height << " r " << c.r;
        }
    }
}

TEST(SampleCoordsKernels, SimdAndScalarGiveIdenticalBytes)
{
    expectSimdMatchesScalar("best target");
}

// Every instruction set the program carries code for, not only the best of this machine.
TEST(SampleCoordsKernels, EveryCompiledInstructionSetGivesTheScalarBytes)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        expectSimdMatchesScalar(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}

// Grid rows are interpolated in SIMD for both sampling paths, so the paths agreeing says
// nothing about them: each instruction set must give the plain expressions' floats.
TEST(SampleCoordsKernels, NodeRowsInterpolateAsThePlainExpressionsOnEveryInstructionSet)
{
    std::mt19937 rng(99);
    std::uniform_real_distribution<float> position(-3000.0f, 3000.0f);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (int count : {1, 2, 3, 15, 16, 17, 33, 70}) {
            std::vector<float> below(count), above(count), value(count, -1.0f), delta(count, -1.0f);
            for (int k = 0; k < count; ++k) {
                below[k] = position(rng);
                above[k] = position(rng);
            }
            const float fy = unit(rng);
            sampling::interpolateNodeRows(below.data(), above.data(), fy, count, value.data(), delta.data());
            for (int k = 0; k < count; ++k) {
                const float expected = below[k] + (above[k] - below[k]) * fy;
                ASSERT_EQ(value[k], expected) << hwy::TargetName(target) << " count " << count << " k " << k;
            }
            for (int k = 0; k + 1 < count; ++k)
                ASSERT_EQ(delta[k], value[k + 1] - value[k]) << hwy::TargetName(target) << " count " << count;
            EXPECT_EQ(delta[count - 1], -1.0f) << "the last column has no difference to write";
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

// The column table is shared by both sampling paths too; each instruction set must give
// cellOf's cells, for pixels before, inside and beyond the grid.
TEST(SampleCoordsKernels, PixelCellsAreCellOfsOnEveryInstructionSet)
{
    struct Grid {
        float origin;
        float nodesPerPixel;
        int nodes;
    };
    const Grid grids[] = {{0.0f, 1.0f / 7.0f, 276}, {-3.25f, 0.3f, 40}, {12.5f, 1.0f, 9}, {0.0f, 0.01f, 2}, {5.0f, 0.5f, 1}};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (const Grid& grid : grids)
            for (const int first : {-40, -1, 0, 3, 1900}) {
                const int count = 77;
                std::vector<int> node(count);
                std::vector<float> fraction(count);
                sampling::cellsOfPixels(first, count, grid.origin, grid.nodesPerPixel, grid.nodes, node.data(),
                                        fraction.data());
                for (int x = 0; x < count; ++x) {
                    int expectedNode = -1;
                    float expectedFraction = -1.0f;
                    sampling::cellOf(float(first + x) + 0.5f, grid.origin, grid.nodesPerPixel, grid.nodes, expectedNode,
                                     expectedFraction);
                    ASSERT_EQ(node[x], expectedNode) << hwy::TargetName(target) << " pixel " << first + x;
                    ASSERT_EQ(fraction[x], expectedFraction) << hwy::TargetName(target) << " pixel " << first + x;
                }
            }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(SampleCoordsKernels, TilesAndThreadsDoNotChangeThePixels)
{
    std::mt19937 rng(99);
    const Image coords = randomWarp(rng, 23, 14, 151, 87, 9);
    const Image out = makeFilter(Image::fromBitmap(randomBitmap(rng, 151, 87)),
                                 Image::fromBitmap(randomBitmap(rng, 90, 60)), coords, 7, {0, 0, 151, 87})
                          .outputImage();
    RenderOptions whole;
    whole.maxThreads = 1;
    whole.tileRows = 1000;
    const Bitmap reference = render(out, {0, 0, 151, 87}, whole);
    for (int rows : {1, 3, 16}) {
        for (int threads : {1, 0}) {
            RenderOptions options;
            options.tileRows = rows;
            options.maxThreads = threads;
            EXPECT_TRUE(render(out, {0, 0, 151, 87}, options).samePixels(reference)) << rows << " " << threads;
        }
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
    const Bitmap result =
        render(makeFilter(Image::fromBitmap(source), Image::fromBitmap(source), coords, 8, {0, 0, 32, 32}).outputImage(),
               {0, 0, 32, 32});
    EXPECT_EQ(result.pixel(5, 5), source.pixel(5, 5));
    EXPECT_EQ(result.pixel(16, 16), source.pixel(16, 16));
}

} // namespace
} // namespace plyra
