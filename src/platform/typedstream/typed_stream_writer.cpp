// SPDX-License-Identifier: MIT
#include "platform/typedstream/typed_stream_writer_internal.h"

#include "platform/typedstream/typed_stream_reader_internal.h"

#include <bit>
#include <cmath>
#include <limits>

namespace plyra::typedstream {

namespace {

// The system version that the platform's archiver has written since Mac OS X 10.0.
constexpr std::int32_t systemVersion = 1000;

} // namespace

TypedStreamWriter::TypedStreamWriter()
{
    m_bytes.push_back(streamerVersion);
    m_bytes.push_back(static_cast<std::uint8_t>(littleEndianSignature.size()));
    m_bytes.insert(m_bytes.end(), littleEndianSignature.begin(), littleEndianSignature.end());
    writeInteger(systemVersion);
}

void TypedStreamWriter::writeUint16(std::uint16_t value)
{
    m_bytes.push_back(static_cast<std::uint8_t>(value));
    m_bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void TypedStreamWriter::writeUint32(std::uint32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        m_bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void TypedStreamWriter::writeInteger(std::int32_t value)
{
    // One byte holds any value above the tag range; wider values get a tag and 2 or 4 bytes.
    if (value >= firstReferenceNumber && value <= std::numeric_limits<std::int8_t>::max()) {
        m_bytes.push_back(static_cast<std::uint8_t>(value));
    } else if (value >= std::numeric_limits<std::int16_t>::min()
               && value <= std::numeric_limits<std::int16_t>::max()) {
        m_bytes.push_back(tagInteger2);
        writeUint16(static_cast<std::uint16_t>(value));
    } else {
        m_bytes.push_back(tagInteger4);
        writeUint32(static_cast<std::uint32_t>(value));
    }
}

void TypedStreamWriter::writeFloat(float value)
{
    // 2^31 is the first float past the int32 range; -0 stays a real to keep its sign.
    const bool negativeZero = value == 0.0f && std::signbit(value);
    const bool whole = std::isfinite(value) && std::trunc(value) == value
        && value >= -2147483648.0f && value < 2147483648.0f && !negativeZero;
    if (whole) {
        writeInteger(static_cast<std::int32_t>(value));
        return;
    }
    m_bytes.push_back(tagReal);
    writeUint32(std::bit_cast<std::uint32_t>(value));
}

void TypedStreamWriter::writeSharedString(std::string_view text)
{
    const auto found = m_sharedStrings.find(text);
    if (found != m_sharedStrings.end()) {
        writeInteger(firstReferenceNumber + found->second);
        return;
    }
    const auto index = static_cast<std::int32_t>(m_sharedStrings.size());
    m_sharedStrings.emplace(std::string(text), index);
    m_bytes.push_back(tagNew);
    writeInteger(static_cast<std::int32_t>(text.size()));
    m_bytes.insert(m_bytes.end(), text.begin(), text.end());
}

void TypedStreamWriter::writeNewObject()
{
    m_bytes.push_back(tagNew);
}

void TypedStreamWriter::writeNewClass(std::string_view name, std::int32_t version)
{
    m_bytes.push_back(tagNew);
    writeSharedString(name);
    writeInteger(version);
}

void TypedStreamWriter::writeNil()
{
    m_bytes.push_back(tagNil);
}

void TypedStreamWriter::writeEndOfObject()
{
    m_bytes.push_back(tagEndOfObject);
}

} // namespace plyra::typedstream
