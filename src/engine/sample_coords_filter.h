// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/geometry.h"
#include "platform/image/image.h"
#include "platform/image/kernel.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeindex>
#include <variant>
#include <vector>

namespace plyra {

class SampleCoords2Filter;

/// Answers which part of an input image the filter needs to produce a piece of its
/// output. The calculation job implements it; the filter holds it and hands it to the
/// kernel application as user information, which keeps it alive while the output image
/// exists.
/// Threads: called on the thread that renders the output image.
class RegionOfInterestCalculator {
public:
    virtual ~RegionOfInterestCalculator() = default;
    /// The region of `image` (one of the filter's inputImage1, inputImage2 or coordsImage,
    /// compare with ==) needed for the output rectangle destRect, in output pixels for the
    /// two track images and in grid nodes (coordinates-image pixels) for coordsImage.
    virtual Rect regionOfInterest(const Image& image, const Rect& destRect,
                                  const SampleCoords2Filter& filter) const = 0;
};

/// The exception raised for an argument a method cannot accept: a fault of the caller.
/// name() is "NSInvalidArgumentException".
/// Threads: a value.
class InvalidArgumentException : public std::invalid_argument {
public:
    static constexpr const char* kName = "NSInvalidArgumentException";
    explicit InvalidArgumentException(const std::string& message) : std::invalid_argument(message) {}
    const char* name() const { return kName; }
};

/// A value the filter's setValue / value take: nothing, an image, a number, a rectangle
/// or a region-of-interest calculator.
using FilterValue =
    std::variant<std::monostate, Image, float, Rect, std::shared_ptr<RegionOfInterestCalculator>>;

/// "CIAttributeTypeScalar" and friends: the description of a numeric input.
struct ScalarAttribute {
    float min = 0.0f;
    float sliderMin = 0.0f;
    float sliderMax = 0.0f;
    float defaultValue = 0.0f;
    float identity = 0.0f;
    std::string type;
};

/// The filter's attributes: its name, display name and categories, the class of each
/// image input and output, and the description of each numeric input.
struct FilterAttributes {
    std::string filterName;
    std::string displayName;
    std::vector<std::string> categories;
    std::map<std::string, std::type_index> classes;
    std::map<std::string, ScalarAttribute> scalars;
};

inline constexpr const char* kCICategoryStillImage = "CICategoryStillImage";
inline constexpr const char* kCICategoryVideo = "CICategoryVideo";
inline constexpr const char* kCICategoryCompositeOperation = "CICategoryCompositeOperation";
inline constexpr const char* kCIAttributeTypeScalar = "CIAttributeTypeScalar";

/// Samples the first and the last image through the warp field of a calculation job (the
/// coordinates image: one float RGBA pixel per grid node) and blends them by the
/// dissolve factor; with one image only, warps that image. Its output image is a kernel
/// image over `extent`, computed only when rendered.
///
/// The two kernels come from the resources "sampleCoords" (one image) and
/// "sampleCoords2" (two images), files sampleCoords.cikernel and sampleCoords2.cikernel
/// in the kernel directory. Their source and compiled kernels are cached for the whole
/// program; setting a different source drops the compiled kernel so it is compiled again
/// on next use.
/// Threads: a filter is used on one thread; the class-wide cache is guarded, so filters
/// may be made on several threads. Output images render on any thread.
class SampleCoords2Filter {
public:
    SampleCoords2Filter() = default;

    static FilterAttributes attributes();
    /// "coordsImage", "inputImage1", "inputImage2", "resolution", "extent", "roiCalculator".
    static const std::vector<std::string>& inputKeys();
    /// "outputImage".
    static const std::vector<std::string>& outputKeys();

    /// "resolution" 5, extent (0, 0, 1000, 1000).
    void setDefaults();
    /// Stores an input by key. "extent" is not stored this way (use setExtent); a value
    /// given for it is only written to the log. A value of the wrong type for a key, or
    /// an unknown key, is logged and ignored.
    void setValue(const FilterValue& value, std::string_view key);
    /// The input of that key, "outputImage" for the output, nothing for an unknown key.
    FilterValue value(std::string_view key) const;

    const Rect& extent() const { return m_extent; }
    void setExtent(const Rect& extent) { m_extent = extent; }
    const Image& inputImage1() const { return m_inputImage1; }
    const Image& inputImage2() const { return m_inputImage2; }
    const Image& coordsImage() const { return m_coordsImage; }
    float resolution() const { return m_resolution; }
    const std::shared_ptr<RegionOfInterestCalculator>& roiCalculator() const { return m_roiCalculator; }
    void setRoiCalculator(std::shared_ptr<RegionOfInterestCalculator> calculator);

    /// The source text of the kernel for this filter's images (two-images kernel when
    /// both are set), loading both resources on first use; empty when it cannot be read.
    std::string kernelSource() const;
    /// Sets the cached source of the kernel this filter's images use.
    void setKernelSource(const std::string& source) const;
    static void setKernelSourceForOneImage(const std::string& source);
    static void setKernelSourceForTwoImages(const std::string& source);

    /// Where kernel resources are read from: the directory set here, else the
    /// environment variable PLYRA_KERNEL_DIR, else the directory built in. An empty path
    /// goes back to the default. Cached sources stay until they are set again.
    static void setKernelDirectory(const std::filesystem::path& directory);
    static std::filesystem::path kernelDirectory();

    /// The compiled kernel for this filter's images, compiled on first use; null (and a
    /// log line) when the source cannot be read or compiled.
    std::shared_ptr<const Kernel> kernel() const;

    /// The kernel's region-of-interest callback: which image sampler number samplerIndex
    /// reads (0: inputImage1, or inputImage2 when it is the only one; 1: inputImage2 with
    /// both images, else coordsImage; 2: coordsImage), and the calculator's answer for it.
    /// Throws InvalidArgumentException for any other index.
    Rect regionOf(int samplerIndex, const Rect& destRect, const std::shared_ptr<void>& userInfo) const;

    /// The morphed frame over `extent`; a null image without any input image.
    Image outputImage() const;

    /// "<SampleCoords2Filter: 0x…>".
    std::string description() const;

private:
    Image m_inputImage1;
    Image m_inputImage2;
    Image m_coordsImage;
    float m_resolution = 5.0f;
    Rect m_extent{0.0f, 0.0f, 1000.0f, 1000.0f};
    std::shared_ptr<RegionOfInterestCalculator> m_roiCalculator;

    bool hasBothImages() const { return !m_inputImage1.isNull() && !m_inputImage2.isNull(); }
};

/// The affine matrix that maps `from` onto `to`, stretched independently in x and y:
/// [sx, 0, 0, sy, sx·(to.x − from.x), sy·(to.y − from.y)] with sx = to.width / from.width,
/// sy = to.height / from.height. As a sampler matrix it maps image space to output space.
Matrix samplerMatrixFromRectToRect(const Rect& from, const Rect& to);

} // namespace plyra
