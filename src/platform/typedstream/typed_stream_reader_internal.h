// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace plyra::typedstream {

// Tag bytes. A literal integer is one signed byte outside the tag range 0x80..0x91;
// references count up from 0x92, which stands for index 0.
inline constexpr std::uint8_t tagInteger2 = 0x81;
inline constexpr std::uint8_t tagInteger4 = 0x82;
inline constexpr std::uint8_t tagReal = 0x83;
inline constexpr std::uint8_t tagNew = 0x84;
inline constexpr std::uint8_t tagNil = 0x85;
inline constexpr std::uint8_t tagEndOfObject = 0x86;
inline constexpr std::int32_t firstReferenceNumber = -110;
inline constexpr std::uint8_t streamerVersion = 4;
inline constexpr std::string_view littleEndianSignature = "streamtyped";
inline constexpr std::string_view bigEndianSignature = "typedstream";

/// Damaged or foreign input; the message says what was wrong. Threads: any thread.
class TypedStreamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the primitives of a typed stream from a byte buffer: the header, integers, reals,
/// unshared strings and shared strings (with their table). Every read is bounds-checked
/// and throws TypedStreamError on damage. Threads: one thread per reader.
class TypedStreamReader {
public:
    /// The bytes must outlive the reader.
    explicit TypedStreamReader(const std::vector<std::uint8_t>& bytes);

    /// Streamer version, signature (which fixes the byte order) and system version.
    void readHeader();
    bool isBigEndian() const { return m_bigEndian; }
    std::int32_t systemVersion() const { return m_systemVersion; }

    std::size_t offset() const { return m_offset; }
    std::uint8_t readByte();
    /// Consumes the next byte when it is tag; false (nothing consumed) otherwise.
    bool skipTag(std::uint8_t tag);
    void expectTag(std::uint8_t tag, const char* what);

    /// An integer of any width ('c', 'i', ...).
    std::int32_t readInteger();
    /// The rest of an integer whose first byte (head) was already read.
    std::int32_t readIntegerAfter(std::uint8_t head);
    /// A value of type 'f': a real, or an integer that stands for a whole number.
    float readFloat();
    /// A length followed by that many bytes ('+').
    std::string readUnsharedString();
    /// A new string (entered in the table), a reference to an earlier one, or nil.
    std::optional<std::string> readSharedString();
    /// The type string that opens a group of values; it must equal expected.
    void expectTypes(std::string_view expected);

    /// Index given by a reference whose first byte (head) was already read, checked
    /// against a table of tableSize entries; what names the table in the error.
    std::size_t readReferenceAfter(std::uint8_t head, std::size_t tableSize, const char* what);

private:
    void require(std::size_t count) const;
    std::uint16_t readUint16();
    std::uint32_t readUint32();

    const std::vector<std::uint8_t>& m_bytes;
    std::size_t m_offset = 0;
    bool m_bigEndian = false;
    std::int32_t m_systemVersion = 0;
    std::vector<std::string> m_sharedStrings;
};

} // namespace plyra::typedstream
