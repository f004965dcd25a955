// SPDX-License-Identifier: MIT
#include "platform/plist/binary_plist_internal.h"

#include "platform/log.h"
#include "platform/plist/utf8_internal.h"

#include <bit>
#include <vector>

namespace plyra {

namespace {

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr int maxDepth = 512;

/// Reader of one binary property list: a header, the objects, a table of their offsets
/// and a trailer that locates the table and the root object. Objects refer to each
/// other by index, so a damaged or hostile file can point anywhere, loop, or share one
/// container many times; every reference is checked, loops are refused, and the values
/// produced are charged against a budget so that sharing cannot blow up memory.
/// Threads: one read on one thread.
class BinaryPlistReader {
public:
    explicit BinaryPlistReader(std::string_view bytes) : m_bytes(bytes) { }

    std::optional<PropertyList> read(std::string* error);

private:
    bool readTrailer();
    bool readObject(std::uint64_t index, int depth, PropertyList& out);
    bool readScalar(std::size_t pos, unsigned type, unsigned info, PropertyList& out);
    bool readInteger(std::size_t pos, unsigned info, PropertyList& out);
    bool readReal(std::size_t pos, unsigned info, PropertyList& out);
    bool readBytes(std::size_t pos, unsigned info, PropertyList& out);
    bool readAsciiString(std::size_t pos, unsigned info, PropertyList& out);
    bool readUtf16String(std::size_t pos, unsigned info, PropertyList& out);
    bool readArray(std::size_t pos, unsigned info, int depth, PropertyList& out);
    bool readDictionary(std::size_t pos, unsigned info, int depth, PropertyList& out);
    bool readCount(std::size_t& pos, unsigned info, std::uint64_t& count);
    bool readReferences(std::size_t pos, std::uint64_t count, std::vector<std::uint64_t>& refs);
    bool objectOffset(std::uint64_t index, std::size_t& offset);
    bool available(std::size_t pos, std::uint64_t count, std::uint64_t size);
    bool charge(std::uint64_t amount);
    std::uint64_t bigEndian(std::size_t pos, std::size_t size) const;
    bool fail(std::string message);

    std::string_view m_bytes;
    std::size_t m_offsetSize = 0;
    std::size_t m_referenceSize = 0;
    std::uint64_t m_objectCount = 0;
    std::uint64_t m_rootObject = 0;
    std::size_t m_offsetTable = 0; // objects lie between the header and this offset
    std::vector<bool> m_onPath;
    std::uint64_t m_budget = 0;
    std::string m_error;
};

std::optional<PropertyList> BinaryPlistReader::read(std::string* error)
{
    PropertyList root;
    if (readTrailer() && readObject(m_rootObject, 0, root))
        return root;
    if (error)
        *error = m_error;
    return std::nullopt;
}

bool BinaryPlistReader::readTrailer()
{
    if (!m_bytes.starts_with(header.substr(0, 6)))
        return fail("not a binary property list");
    if (m_bytes.size() < header.size() + 1 + trailerSize)
        return fail("the binary property list is too short");
    if (!m_bytes.starts_with(header))
        return fail("unsupported binary property list version");
    const std::size_t trailer = m_bytes.size() - trailerSize;
    m_offsetSize = static_cast<unsigned char>(m_bytes[trailer + 6]);
    m_referenceSize = static_cast<unsigned char>(m_bytes[trailer + 7]);
    m_objectCount = bigEndian(trailer + 8, 8);
    m_rootObject = bigEndian(trailer + 16, 8);
    const std::uint64_t table = bigEndian(trailer + 24, 8);
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8)
        return fail("the binary property list's trailer is damaged");
    if (table <= header.size() || table >= trailer || m_objectCount == 0
        || m_objectCount > (trailer - table) / m_offsetSize || m_rootObject >= m_objectCount)
        return fail("the binary property list's offset table is damaged");
    m_offsetTable = static_cast<std::size_t>(table);
    m_onPath.assign(static_cast<std::size_t>(m_objectCount), false);
    // Shared values are legitimate (writers share equal strings and numbers), but each
    // use is a copy here; this bounds the copies by the size of the input.
    m_budget = 64 * static_cast<std::uint64_t>(m_bytes.size()) + (1u << 16);
    return true;
}

bool BinaryPlistReader::readObject(std::uint64_t index, int depth, PropertyList& out)
{
    std::size_t pos = 0;
    if (!objectOffset(index, pos) || !charge(1))
        return false;
    const auto marker = static_cast<unsigned char>(m_bytes[pos]);
    const unsigned type = marker >> 4;
    const unsigned info = marker & 0x0F;
    if (type != 0xA && type != 0xB && type != 0xC && type != 0xD)
        return readScalar(pos + 1, type, info, out);
    if (depth >= maxDepth)
        return fail(formatString("containers nested deeper than %d levels", maxDepth));
    const auto slot = static_cast<std::size_t>(index);
    if (m_onPath[slot])
        return fail("the binary property list contains itself");
    m_onPath[slot] = true;
    // Sets, ordered or not, have no property-list value of their own; they read as arrays.
    const bool ok = type == 0xD ? readDictionary(pos + 1, info, depth + 1, out) : readArray(pos + 1, info, depth + 1, out);
    m_onPath[slot] = false;
    return ok;
}

bool BinaryPlistReader::readScalar(std::size_t pos, unsigned type, unsigned info, PropertyList& out)
{
    switch (type) {
    case 0x0:
        if (info != 0x8 && info != 0x9)
            return fail(formatString("unsupported value (marker 0x%02X)", info));
        out = PropertyList(info == 0x9);
        return true;
    case 0x1:
        return readInteger(pos, info, out);
    case 0x2:
        return readReal(pos, info, out);
    case 0x3:
        // A date: seconds since 2001-01-01 00:00 UTC as a double.
        return info == 0x3 ? readReal(pos, info, out) : fail("damaged date in the binary property list");
    case 0x4:
        return readBytes(pos, info, out);
    case 0x5:
        return readAsciiString(pos, info, out);
    case 0x6:
        return readUtf16String(pos, info, out);
    case 0x8: {
        const std::size_t size = info + 1;
        if (size > 8 || !available(pos, size, 1))
            return fail("damaged UID in the binary property list");
        out = PropertyList(static_cast<std::int64_t>(bigEndian(pos, size)));
        return true;
    }
    default:
        return fail(formatString("unsupported value (marker 0x%02X)", (type << 4) | info));
    }
}

bool BinaryPlistReader::readInteger(std::size_t pos, unsigned info, PropertyList& out)
{
    if (info > 4)
        return fail("damaged integer in the binary property list");
    const std::size_t size = std::size_t { 1 } << info;
    if (!available(pos, size, 1))
        return false;
    // One to four bytes are unsigned, eight are signed; sixteen hold a 128-bit value whose
    // low half is all that a 64-bit integer can keep.
    const std::uint64_t value = size == 16 ? bigEndian(pos + 8, 8) : bigEndian(pos, size);
    out = PropertyList(static_cast<std::int64_t>(value));
    return true;
}

bool BinaryPlistReader::readReal(std::size_t pos, unsigned info, PropertyList& out)
{
    if ((info != 2 && info != 3) || !available(pos, std::size_t { 1 } << info, 1))
        return fail("damaged real number in the binary property list");
    if (info == 2)
        out = PropertyList(static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(pos, 4)))));
    else
        out = PropertyList(std::bit_cast<double>(bigEndian(pos, 8)));
    return true;
}

bool BinaryPlistReader::readBytes(std::size_t pos, unsigned info, PropertyList& out)
{
    std::uint64_t length = 0;
    if (!readCount(pos, info, length) || !available(pos, length, 1) || !charge(length))
        return false;
    const auto* begin = reinterpret_cast<const std::uint8_t*>(m_bytes.data() + pos);
    out = PropertyList(PropertyList::Data(begin, begin + length));
    return true;
}

bool BinaryPlistReader::readAsciiString(std::size_t pos, unsigned info, PropertyList& out)
{
    std::uint64_t length = 0;
    if (!readCount(pos, info, length) || !available(pos, length, 1) || !charge(length))
        return false;
    std::string text;
    text.reserve(static_cast<std::size_t>(length));
    // Bytes past ASCII are read as Latin-1, so the text is always UTF-8.
    for (const char c : m_bytes.substr(pos, static_cast<std::size_t>(length)))
        utf8::append(text, static_cast<unsigned char>(c));
    out = PropertyList(std::move(text));
    return true;
}

bool BinaryPlistReader::readUtf16String(std::size_t pos, unsigned info, PropertyList& out)
{
    std::uint64_t length = 0;
    if (!readCount(pos, info, length) || !available(pos, length, 2) || !charge(2 * length))
        return false;
    std::string text;
    for (std::uint64_t i = 0; i < length; ++i) {
        char32_t unit = static_cast<char32_t>(bigEndian(pos + 2 * i, 2));
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < length) {
            const auto low = static_cast<char32_t>(bigEndian(pos + 2 * (i + 1), 2));
            if (low >= 0xDC00 && low <= 0xDFFF) {
                unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        utf8::append(text, unit); // a lone surrogate becomes U+FFFD
    }
    out = PropertyList(std::move(text));
    return true;
}

bool BinaryPlistReader::readArray(std::size_t pos, unsigned info, int depth, PropertyList& out)
{
    std::uint64_t count = 0;
    std::vector<std::uint64_t> refs;
    if (!readCount(pos, info, count) || !readReferences(pos, count, refs))
        return false;
    PropertyList::Array array;
    array.reserve(refs.size());
    for (const std::uint64_t ref : refs) {
        PropertyList element;
        if (!readObject(ref, depth, element))
            return false;
        array.push_back(std::move(element));
    }
    out = PropertyList(std::move(array));
    return true;
}

bool BinaryPlistReader::readDictionary(std::size_t pos, unsigned info, int depth, PropertyList& out)
{
    std::uint64_t count = 0;
    std::vector<std::uint64_t> refs;
    // The keys' references come first, then the values' in the same order.
    if (!readCount(pos, info, count) || count > m_bytes.size() || !readReferences(pos, 2 * count, refs))
        return false;
    PropertyList::Dictionary dict;
    for (std::size_t i = 0; i < count; ++i) {
        PropertyList key;
        PropertyList value;
        if (!readObject(refs[i], depth, key) || !readObject(refs[count + i], depth, value))
            return false;
        if (!key.isString())
            return fail("a dictionary key in the binary property list is not a string");
        dict.insert_or_assign(std::move(*key.string()), std::move(value));
    }
    out = PropertyList(std::move(dict));
    return true;
}

bool BinaryPlistReader::readCount(std::size_t& pos, unsigned info, std::uint64_t& count)
{
    if (info != 0x0F) {
        count = info;
        return true;
    }
    // Counts of fifteen and more follow the marker as an integer object.
    if (!available(pos, 1, 1))
        return fail("damaged length in the binary property list");
    const auto marker = static_cast<unsigned char>(m_bytes[pos]);
    const std::size_t size = std::size_t { 1 } << (marker & 0x0F);
    if ((marker >> 4) != 0x1 || size > 8 || !available(pos + 1, size, 1))
        return fail("damaged length in the binary property list");
    count = bigEndian(pos + 1, size);
    pos += 1 + size;
    return true;
}

bool BinaryPlistReader::readReferences(std::size_t pos, std::uint64_t count, std::vector<std::uint64_t>& refs)
{
    if (!available(pos, count, m_referenceSize))
        return false;
    refs.resize(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < refs.size(); ++i)
        refs[i] = bigEndian(pos + i * m_referenceSize, m_referenceSize);
    return true;
}

bool BinaryPlistReader::objectOffset(std::uint64_t index, std::size_t& offset)
{
    if (index >= m_objectCount)
        return fail("an object reference in the binary property list points past its objects");
    const std::uint64_t value = bigEndian(m_offsetTable + static_cast<std::size_t>(index) * m_offsetSize, m_offsetSize);
    if (value < header.size() || value >= m_offsetTable)
        return fail("an object offset in the binary property list points outside its objects");
    offset = static_cast<std::size_t>(value);
    return true;
}

bool BinaryPlistReader::available(std::size_t pos, std::uint64_t count, std::uint64_t size)
{
    if (pos > m_offsetTable || count > (m_offsetTable - pos) / size)
        return fail("an object in the binary property list runs past the end of the objects");
    return true;
}

bool BinaryPlistReader::charge(std::uint64_t amount)
{
    if (amount > m_budget)
        return fail("the binary property list shares its values too often to be expanded");
    m_budget -= amount;
    return true;
}

std::uint64_t BinaryPlistReader::bigEndian(std::size_t pos, std::size_t size) const
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = (value << 8) | static_cast<unsigned char>(m_bytes[pos + i]);
    return value;
}

bool BinaryPlistReader::fail(std::string message)
{
    m_error = std::move(message);
    return false;
}

} // namespace

std::optional<PropertyList> parseBinaryPropertyList(std::string_view bytes, std::string* error)
{
    return BinaryPlistReader(bytes).read(error);
}

} // namespace plyra
