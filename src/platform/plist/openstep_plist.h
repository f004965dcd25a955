// SPDX-License-Identifier: MIT
#pragma once

#include "platform/plist/property_list.h"

#include <optional>
#include <string>
#include <string_view>

namespace plyra {

/// Parses the OpenStep (old-style) text form of a property list. Every leaf is a
/// string, except <hex> data. On failure returns nothing and, when error is given,
/// says what and where ("line 3: missing ';' after dictionary entry").
std::optional<PropertyList> parseOpenStepPropertyList(std::string_view text, std::string* error = nullptr);

/// Writes the OpenStep text form the way a dictionary's description prints it:
/// sorted keys, four-blank indents, strings quoted only when they need it.
/// Numbers and booleans are written as their text.
std::string writeOpenStepPropertyList(const PropertyList& value);

} // namespace plyra
