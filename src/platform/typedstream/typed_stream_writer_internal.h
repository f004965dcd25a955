// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace plyra::typedstream {

/// Writes the primitives of a little-endian typed stream: the header, integers in their
/// shortest form, 'f' values, shared strings with back references, and the object tags.
/// Threads: one thread per writer.
class TypedStreamWriter {
public:
    /// Starts the stream with its header (streamer version, signature, system version).
    TypedStreamWriter();

    void writeInteger(std::int32_t value);
    /// Whole numbers go out as integers, as the platform's archiver writes them; the rest
    /// as four-byte reals.
    void writeFloat(float value);
    /// A new string, or a reference when the same string was written before.
    void writeSharedString(std::string_view text);
    void writeNewObject();
    /// A class not written before, by name and version; its superclass follows.
    void writeNewClass(std::string_view name, std::int32_t version);
    void writeNil();
    void writeEndOfObject();

    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

private:
    void writeUint16(std::uint16_t value);
    void writeUint32(std::uint32_t value);

    std::vector<std::uint8_t> m_bytes;
    std::map<std::string, std::int32_t, std::less<>> m_sharedStrings;
};

} // namespace plyra::typedstream
