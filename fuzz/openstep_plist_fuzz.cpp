// SPDX-License-Identifier: MIT
// Feeds arbitrary text to the OpenStep property-list reader. Whatever it accepts must
// survive the writer: the written text has to parse back to the same value.
#include "platform/plist/openstep_plist.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto value = plyra::parseOpenStepPropertyList(text, &error);
    if (!value) {
        if (error.empty())
            std::abort(); // a rejection must say why
        return 0;
    }
    const std::string written = plyra::writeOpenStepPropertyList(*value);
    const auto back = plyra::parseOpenStepPropertyList(written, &error);
    if (!back || !(*back == *value))
        std::abort();
    return 0;
}
