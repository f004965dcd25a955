// SPDX-License-Identifier: MIT
// Feeds arbitrary bytes to the property-list reader (binary, XML and OpenStep text).
// Whatever it accepts must be writable as XML, and that XML must read back and write
// out again unchanged.
#include "platform/plist/xml_plist.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string error;
    const auto value = plyra::parsePropertyListData(std::vector<std::uint8_t>(data, data + size), &error);
    if (!value) {
        if (error.empty())
            std::abort(); // a rejection must say why
        return 0;
    }
    const std::string xml = plyra::writeXmlPropertyList(*value);
    const auto back = plyra::parsePropertyListData(std::vector<std::uint8_t>(xml.begin(), xml.end()), &error);
    if (!back || plyra::writeXmlPropertyList(*back) != xml)
        std::abort();
    return 0;
}
