// SPDX-License-Identifier: MIT
// Feeds arbitrary bytes to the colour archive reader. Whatever it accepts must archive
// again and read back to the same colour.
#include "platform/typedstream/color_archive.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(data, data + size);
    std::string error;
    const std::optional<plyra::ArchivedColor> color = plyra::readColorArchive(bytes, &error);
    if (!color) {
        if (error.empty())
            std::abort(); // every refusal must say why
        return 0;
    }
    const std::optional<plyra::ArchivedColor> again
        = plyra::readColorArchive(plyra::writeColorArchive(*color));
    if (!again)
        std::abort();
    const plyra::Rgba before = color->rgba();
    const plyra::Rgba after = again->rgba();
    if (!(before == after))
        std::abort();
    return 0;
}
