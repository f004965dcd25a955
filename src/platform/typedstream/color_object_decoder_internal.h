// SPDX-License-Identifier: MIT
#pragma once

#include "platform/typedstream/color_archive.h"
#include "platform/typedstream/typed_stream_reader_internal.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace plyra::typedstream {

/// Decodes the objects of a colour archive: the root colour, the strings and fallback
/// colour of a named colour, their classes and the back references between them.
/// Threads: one thread per decoder.
class ColorObjectDecoder {
public:
    explicit ColorObjectDecoder(TypedStreamReader& reader);

    /// The "@" group that holds the root object, which must be a colour.
    ArchivedColor readRootColor();

private:
    enum class Expected { Color, String };
    struct ClassInfo {
        std::string name;
        std::optional<std::size_t> superclass;
    };
    // An object is entered before its contents are read, so that a reference to an
    // object still being read (a cycle) can be told apart and refused.
    struct Pending { };
    using Entry = std::variant<Pending, ClassInfo, std::string, ArchivedColor>;

    /// Nothing for nil.
    std::optional<Entry> readObject(Expected expected, int depth);
    Entry readNewObject(Expected expected, int depth);
    Entry referencedObject(std::uint8_t head, Expected expected);
    void checkClass(std::optional<std::size_t> classIndex, Expected expected, int depth) const;
    std::optional<std::size_t> readClass();
    bool classIsA(std::size_t classIndex, const std::string& name) const;
    std::string className(std::size_t classIndex) const;

    ArchivedColor readColorBody(int depth);
    void readComponents(ArchivedColor& color);
    void readNamedBody(ArchivedColor& color, int depth);
    std::string readStringBody();
    std::string readString(int depth);
    std::optional<ArchivedColor> readOptionalColor(int depth);

    TypedStreamReader& m_reader;
    std::vector<Entry> m_objects;
};

} // namespace plyra::typedstream
