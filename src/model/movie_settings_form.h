// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"
#include "platform/plist/property_list.h"

#include <optional>

namespace plyra {

/// The stored form of a document's movie settings: one dictionary under the key
/// "movieSettings" of the package's "info.plist", with one entry per setting ("frames",
/// "framesPerSecond", "sizeToWindow", "frameRatio", "frameWidth", "frameHeight",
/// "rangeLocation", "rangeLength", "reverse", "easing", "holdStart", "holdEnd",
/// "pingPong"). Readers that do not know the key ignore it; documents without it render
/// as they always did.
/// Threads: any thread (plain values).
class MovieSettingsForm {
public:
    static constexpr const char* kKey = "movieSettings";

    static PropertyList toPropertyList(const MovieSettings& settings);
    /// The settings of a stored dictionary: an entry that is missing, of another type or
    /// out of its range keeps its default. None when the value is no dictionary.
    static std::optional<MovieSettings> fromPropertyList(const PropertyList& value);

    /// The stored name of an easing ("linear", "ease-in", "ease-out", "ease-in-out"),
    /// which is also what plyra-render's --ease takes without the "ease-" prefix.
    static const char* easingName(Easing easing);
    static std::optional<Easing> easingFromName(const std::string& name);
};

} // namespace plyra
