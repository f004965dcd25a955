// SPDX-License-Identifier: MIT
#pragma once

#include "platform/plist/property_list.h"

#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// Reads an XML or binary property list (through libplist).
std::optional<PropertyList> parsePropertyListData(const std::vector<std::uint8_t>& bytes, std::string* error = nullptr);
std::optional<PropertyList> readPropertyListFile(const std::string& path, std::string* error = nullptr);

/// Writes the XML property-list form.
std::string writeXmlPropertyList(const PropertyList& value);
bool writeXmlPropertyListFile(const PropertyList& value, const std::string& path, std::string* error = nullptr);

} // namespace plyra
