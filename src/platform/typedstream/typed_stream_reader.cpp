// SPDX-License-Identifier: MIT
#include "platform/typedstream/typed_stream_reader_internal.h"

#include <bit>
#include <cstring>

namespace plyra::typedstream {

namespace {

bool isReservedTag(std::uint8_t byte)
{
    return byte >= 0x80 && byte <= 0x91;
}

std::string quotedText(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

} // namespace

TypedStreamReader::TypedStreamReader(const std::vector<std::uint8_t>& bytes)
    : m_bytes(bytes)
{
}

void TypedStreamReader::readHeader()
{
    if (m_bytes.empty() || m_bytes[0] != streamerVersion)
        throw TypedStreamError("not a typed stream (streamer version)");
    m_offset = 1;
    const std::size_t length = littleEndianSignature.size();
    if (m_bytes.size() < m_offset + 1 + length || m_bytes[m_offset] != length)
        throw TypedStreamError("bad signature");
    const std::string_view signature(reinterpret_cast<const char*>(m_bytes.data()) + m_offset + 1,
                                     length);
    if (signature == littleEndianSignature)
        m_bigEndian = false;
    else if (signature == bigEndianSignature)
        m_bigEndian = true;
    else
        throw TypedStreamError("bad signature");
    m_offset += 1 + length;
    m_systemVersion = readInteger();
}

void TypedStreamReader::require(std::size_t count) const
{
    if (m_bytes.size() - m_offset < count)
        throw TypedStreamError("truncated at byte " + std::to_string(m_bytes.size()));
}

std::uint8_t TypedStreamReader::readByte()
{
    require(1);
    return m_bytes[m_offset++];
}

bool TypedStreamReader::skipTag(std::uint8_t tag)
{
    require(1);
    if (m_bytes[m_offset] != tag)
        return false;
    ++m_offset;
    return true;
}

void TypedStreamReader::expectTag(std::uint8_t tag, const char* what)
{
    const std::size_t at = m_offset;
    if (!skipTag(tag))
        throw TypedStreamError(std::string("expected ") + what + " at byte " + std::to_string(at));
}

std::uint16_t TypedStreamReader::readUint16()
{
    require(2);
    const std::uint8_t* p = m_bytes.data() + m_offset;
    m_offset += 2;
    return m_bigEndian ? static_cast<std::uint16_t>(p[0] << 8 | p[1])
                       : static_cast<std::uint16_t>(p[1] << 8 | p[0]);
}

std::uint32_t TypedStreamReader::readUint32()
{
    require(4);
    const std::uint8_t* p = m_bytes.data() + m_offset;
    m_offset += 4;
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint8_t byte = m_bigEndian ? p[i] : p[3 - i];
        value = value << 8 | byte;
    }
    return value;
}

std::int32_t TypedStreamReader::readInteger()
{
    return readIntegerAfter(readByte());
}

std::int32_t TypedStreamReader::readIntegerAfter(std::uint8_t head)
{
    if (head == tagInteger2)
        return static_cast<std::int16_t>(readUint16());
    if (head == tagInteger4)
        return static_cast<std::int32_t>(readUint32());
    if (isReservedTag(head)) {
        throw TypedStreamError("unexpected tag " + std::to_string(head) + " at byte "
                               + std::to_string(m_offset - 1));
    }
    return static_cast<std::int8_t>(head);
}

float TypedStreamReader::readFloat()
{
    const std::uint8_t head = readByte();
    if (head == tagReal)
        return std::bit_cast<float>(readUint32());
    return static_cast<float>(readIntegerAfter(head));
}

std::string TypedStreamReader::readUnsharedString()
{
    const std::int32_t length = readInteger();
    if (length < 0)
        throw TypedStreamError("negative string length at byte " + std::to_string(m_offset));
    // Checked before allocating, so a damaged length never asks for more than the input.
    require(static_cast<std::size_t>(length));
    std::string text(reinterpret_cast<const char*>(m_bytes.data()) + m_offset,
                     static_cast<std::size_t>(length));
    m_offset += static_cast<std::size_t>(length);
    return text;
}

std::optional<std::string> TypedStreamReader::readSharedString()
{
    const std::uint8_t head = readByte();
    if (head == tagNil)
        return std::nullopt;
    if (head == tagNew) {
        m_sharedStrings.push_back(readUnsharedString());
        return m_sharedStrings.back();
    }
    return m_sharedStrings[readReferenceAfter(head, m_sharedStrings.size(), "shared string")];
}

void TypedStreamReader::expectTypes(std::string_view expected)
{
    const std::size_t at = m_offset;
    const std::optional<std::string> types = readSharedString();
    if (!types || *types != expected) {
        throw TypedStreamError("expected values of type " + quotedText(expected) + ", found "
                               + (types ? quotedText(*types) : std::string("nil")) + " at byte "
                               + std::to_string(at));
    }
}

std::size_t TypedStreamReader::readReferenceAfter(std::uint8_t head, std::size_t tableSize,
                                                  const char* what)
{
    const std::int64_t index = static_cast<std::int64_t>(readIntegerAfter(head))
        - firstReferenceNumber;
    if (index < 0 || static_cast<std::uint64_t>(index) >= tableSize) {
        throw TypedStreamError(std::string(what) + " reference out of range ("
                               + std::to_string(index) + " of " + std::to_string(tableSize)
                               + ")");
    }
    return static_cast<std::size_t>(index);
}

} // namespace plyra::typedstream
