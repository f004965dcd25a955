// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// What plyra-render was asked to do.
enum class CliMode { Frame, Movie, Info, WarpField, NewDocument, Help };

/// The parsed command line of plyra-render. Options not given stay empty, so that the
/// document's own settings apply.
struct CliOptions {
    CliMode mode = CliMode::Frame;
    std::string documentPath;
    // --new FIRST LAST [--face-lines]
    std::string firstImagePath;
    std::string lastImagePath;
    bool faceLines = false;
    std::string outputPath;
    std::optional<float> time;
    std::optional<std::uint32_t> frames;
    std::optional<float> framesPerSecond;
    std::optional<float> rangeLocation;
    std::optional<float> rangeLength;
    bool reverse = false;
    std::optional<Easing> easing;
    std::optional<double> holdStart;
    std::optional<double> holdEnd;
    bool pingPong = false;
    std::optional<std::string> codec;
    std::optional<int> quality;
    std::optional<float> width;
    std::optional<float> height;
    std::optional<float> interval;
    bool quiet = false;
};

/// The outcome of parsing: the options, or a one-line message for a usage error.
struct CliParseResult {
    std::optional<CliOptions> options;
    std::string error;
};

CliParseResult parseCliOptions(const std::vector<std::string>& arguments);

/// The usage text printed with a usage error and for --help.
std::string cliUsage();

} // namespace plyra
