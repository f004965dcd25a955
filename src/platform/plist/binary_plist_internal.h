// SPDX-License-Identifier: MIT
#pragma once

#include "platform/plist/property_list.h"

#include <optional>
#include <string>
#include <string_view>

namespace plyra {

/// Reads the binary property-list form ("bplist00"). Dates become reals (seconds since
/// 2001-01-01), UIDs integers, sets arrays. Damaged offsets, cycles, nesting past 512
/// levels and shared containers that would expand past a budget proportional to the
/// input are rejected with a message.
std::optional<PropertyList> parseBinaryPropertyList(std::string_view bytes, std::string* error);

} // namespace plyra
