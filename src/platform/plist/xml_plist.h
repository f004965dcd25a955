// SPDX-License-Identifier: MIT
#pragma once

#include "platform/plist/property_list.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// The largest property-list file read: documents with thousands of lines take a few
/// megabytes, so a file beyond this is damaged or hostile, not a document.
inline constexpr std::uint64_t kMaxPropertyListFileBytes = std::uint64_t{16} << 20;

/// Reads a property list in any of its forms: binary ("bplist00"), XML (through libplist)
/// or, for anything else, the OpenStep text form. The root may be of any type; the caller
/// decides what it accepts. Missing, empty, damaged or truncated input gives nothing and,
/// when error is given, the reason (prefixed with the path for files). Only regular
/// files of at most kMaxPropertyListFileBytes are read (see RegularFile). Dates read as reals
/// (seconds since 2001-01-01 00:00 UTC), UIDs as integers.
std::optional<PropertyList> parsePropertyListData(const std::vector<std::uint8_t>& bytes, std::string* error = nullptr);
std::optional<PropertyList> readPropertyListFile(const std::string& path, std::string* error = nullptr);

/// Writes the XML property-list form. The file is written beside its destination and
/// renamed over it when complete, so a failed write leaves any earlier file intact.
/// Threads: all four functions may run on any thread.
std::string writeXmlPropertyList(const PropertyList& value);
bool writeXmlPropertyListFile(const PropertyList& value, const std::string& path, std::string* error = nullptr);

} // namespace plyra
