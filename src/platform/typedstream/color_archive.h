// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// The colour spaces a typed-stream colour archive can carry, numbered as in the archive.
enum class ColorSpaceKind : std::uint8_t {
    CalibratedRgb = 1,
    DeviceRgb = 2,
    CalibratedWhite = 3,
    DeviceWhite = 4,
    DeviceCmyk = 5,
    Named = 6,
};

/// Red, green, blue and alpha, each in 0..1. Threads: a plain value; any thread.
struct Rgba {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float alpha = 1.0f;

    friend bool operator==(const Rgba&, const Rgba&) = default;
};

/// A colour as a typed-stream archive holds it: its colour space and components, or, for a
/// named colour, its catalog, its name and the colour it falls back to.
/// Threads: a plain value; any thread (a fallback colour is shared and never changed).
struct ArchivedColor {
    /// Room for the largest layout: cyan, magenta, yellow, black and alpha.
    static constexpr std::size_t maxComponents = 5;

    ColorSpaceKind kind = ColorSpaceKind::CalibratedRgb;
    /// RGB kinds: red, green, blue, alpha. White kinds: white, alpha. CMYK: cyan, magenta,
    /// yellow, black, alpha. Named: unused. Components past componentCount() are 0.
    std::array<float, maxComponents> components {};
    /// Named colours only.
    std::string catalog;
    std::string name;
    /// Named colours only; null when the archive carried none.
    std::shared_ptr<const ArchivedColor> fallback;

    static ArchivedColor calibratedRgb(float red, float green, float blue, float alpha);
    static ArchivedColor deviceRgb(float red, float green, float blue, float alpha);
    static ArchivedColor calibratedWhite(float white, float alpha);
    static ArchivedColor deviceWhite(float white, float alpha);
    static ArchivedColor deviceCmyk(float cyan, float magenta, float yellow, float black,
                                    float alpha);
    static ArchivedColor named(std::string catalog, std::string name,
                               std::optional<ArchivedColor> fallback);

    /// Number of components the kind stores: 4, 2, 5, or 0 for a named colour.
    static std::size_t componentCount(ColorSpaceKind kind);
    std::size_t componentCount() const { return componentCount(kind); }

    /// The colour as RGBA in 0..1: white gives grey, CMYK the naive (1-c)(1-k) conversion,
    /// a named colour its fallback, or opaque black when it has none. Components out of
    /// range are clamped; NaN reads as 0.
    Rgba rgba() const;

    /// Same kind and components, and for named colours the same catalog, name and fallback.
    friend bool operator==(const ArchivedColor& a, const ArchivedColor& b);
};

/// Reads a colour archived as a typed stream (either byte order). Returns nothing and sets
/// *error (when given) to a short reason when the bytes are not such an archive, are
/// damaged, or hold something other than a colour of a known kind.
std::optional<ArchivedColor> readColorArchive(const std::vector<std::uint8_t>& bytes,
                                              std::string* error = nullptr);

/// Archives a colour as a little-endian typed stream. Calibrated RGB and calibrated white
/// are written as they are; every other kind as calibrated RGB of its rgba().
std::vector<std::uint8_t> writeColorArchive(const ArchivedColor& color);

} // namespace plyra
