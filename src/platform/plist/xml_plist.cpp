// SPDX-License-Identifier: MIT
#include "platform/plist/xml_plist.h"

#include "platform/atomic_file_writer.h"
#include "platform/log.h"
#include "platform/plist/binary_plist_internal.h"
#include "platform/plist/openstep_plist.h"
#include "platform/regular_file.h"

#include <plist/plist.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include <sys/stat.h>
#include <unistd.h>

namespace plyra {

namespace {

// The same limit as the text reader: deep enough for any document, far from the stack's end.
constexpr int maxDepth = 512;

struct PlistDeleter {
    void operator()(void* node) const { plist_free(static_cast<plist_t>(node)); }
};
using PlistPointer = std::unique_ptr<void, PlistDeleter>;

struct MallocDeleter {
    void operator()(void* p) const { std::free(p); }
};
template<typename T>
using MallocPointer = std::unique_ptr<T, MallocDeleter>;

/// Turns a libplist tree into a PropertyList.
/// Threads: one conversion per thread.
class PlistImporter {
public:
    std::optional<PropertyList> import(plist_t root, std::string* error);

private:
    bool convert(plist_t node, int depth, PropertyList& out);
    bool convertArray(plist_t node, int depth, PropertyList& out);
    bool convertDictionary(plist_t node, int depth, PropertyList& out);
    static PropertyList convertLeaf(plist_t node);
    static PropertyList dateValue(plist_t node);
    static PropertyList dataValue(plist_t node);
    static PropertyList stringValue(plist_t node);
    bool fail(std::string message);

    std::string m_error;
};

std::optional<PropertyList> PlistImporter::import(plist_t root, std::string* error)
{
    PropertyList result;
    if (convert(root, 0, result))
        return result;
    if (error)
        *error = m_error;
    return std::nullopt;
}

bool PlistImporter::convert(plist_t node, int depth, PropertyList& out)
{
    switch (plist_get_node_type(node)) {
    case PLIST_ARRAY:
    case PLIST_DICT:
        if (depth >= maxDepth)
            return fail(formatString("containers nested deeper than %d levels", maxDepth));
        return plist_get_node_type(node) == PLIST_ARRAY ? convertArray(node, depth + 1, out)
                                                         : convertDictionary(node, depth + 1, out);
    case PLIST_BOOLEAN:
    case PLIST_UINT:
    case PLIST_REAL:
    case PLIST_STRING:
    case PLIST_DATA:
    case PLIST_DATE:
    case PLIST_UID:
        out = convertLeaf(node);
        return true;
    default:
        return fail("the property list holds a value of an unknown type");
    }
}

bool PlistImporter::convertArray(plist_t node, int depth, PropertyList& out)
{
    PropertyList::Array array;
    array.reserve(plist_array_get_size(node));
    plist_array_iter rawIter = nullptr;
    plist_array_new_iter(node, &rawIter);
    const MallocPointer<void> iter(rawIter);
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(node, rawIter, &item);
        if (!item)
            break;
        PropertyList element;
        if (!convert(item, depth, element))
            return false;
        array.push_back(std::move(element));
    }
    out = PropertyList(std::move(array));
    return true;
}

bool PlistImporter::convertDictionary(plist_t node, int depth, PropertyList& out)
{
    PropertyList::Dictionary dict;
    plist_dict_iter rawIter = nullptr;
    plist_dict_new_iter(node, &rawIter);
    const MallocPointer<void> iter(rawIter);
    for (;;) {
        char* rawKey = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, rawIter, &rawKey, &item);
        const MallocPointer<char> key(rawKey);
        if (!item)
            break;
        PropertyList value;
        if (!convert(item, depth, value))
            return false;
        dict.insert_or_assign(std::string(key ? key.get() : ""), std::move(value));
    }
    out = PropertyList(std::move(dict));
    return true;
}

PropertyList PlistImporter::convertLeaf(plist_t node)
{
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return PropertyList(value != 0);
    }
    case PLIST_UINT: {
        // libplist keeps signed and unsigned integers in 64 bits; read them as signed.
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return PropertyList(static_cast<std::int64_t>(value));
    }
    case PLIST_UID: {
        std::uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return PropertyList(static_cast<std::int64_t>(value));
    }
    case PLIST_REAL: {
        double value = 0.0;
        plist_get_real_val(node, &value);
        return PropertyList(value);
    }
    case PLIST_DATE:
        return dateValue(node);
    case PLIST_DATA:
        return dataValue(node);
    default:
        return stringValue(node);
    }
}

PropertyList PlistImporter::dateValue(plist_t node)
{
    // Seconds since 2001-01-01 00:00 UTC, the reference date of property lists.
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return PropertyList(static_cast<double>(seconds) + static_cast<double>(microseconds) / 1e6);
}

PropertyList PlistImporter::dataValue(plist_t node)
{
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(node, &length);
    const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes);
    return PropertyList(bytes ? PropertyList::Data(begin, begin + length) : PropertyList::Data());
}

PropertyList PlistImporter::stringValue(plist_t node)
{
    // The pointer form, because the copying one asserts on an embedded NUL.
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return PropertyList(text ? std::string(text, static_cast<std::size_t>(length)) : std::string());
}

bool PlistImporter::fail(std::string message)
{
    m_error = std::move(message);
    return false;
}

plist_t exportValue(const PropertyList& value)
{
    switch (value.type()) {
    case PropertyList::Type::String:
        return plist_new_string(value.string()->c_str());
    case PropertyList::Type::Integer:
        return plist_new_uint(static_cast<std::uint64_t>(value.integerValue()));
    case PropertyList::Type::Real:
        return plist_new_real(value.doubleValue());
    case PropertyList::Type::Boolean:
        return plist_new_bool(*value.boolValue() ? 1 : 0);
    case PropertyList::Type::Data: {
        const PropertyList::Data& data = *value.data();
        return plist_new_data(reinterpret_cast<const char*>(data.data()), data.size());
    }
    case PropertyList::Type::Array: {
        plist_t array = plist_new_array();
        for (const PropertyList& element : *value.array())
            plist_array_append_item(array, exportValue(element));
        return array;
    }
    case PropertyList::Type::Dictionary: {
        plist_t dict = plist_new_dict();
        for (const auto& [key, element] : *value.dictionary())
            plist_dict_set_item(dict, key.c_str(), exportValue(element));
        return dict;
    }
    }
    return plist_new_string("");
}

enum class Form { Binary, Xml, Text };

Form detectForm(std::string_view bytes)
{
    if (bytes.starts_with("bplist"))
        return Form::Binary;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    const std::size_t first = bytes.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return Form::Text;
    bytes.remove_prefix(first);
    if (bytes.starts_with("<?xml") || bytes.starts_with("<!DOCTYPE") || bytes.starts_with("<plist"))
        return Form::Xml;
    return Form::Text;
}

bool setError(std::string* error, std::string message)
{
    if (error)
        *error = std::move(message);
    return false;
}

// libplist's XML reader recurses once per level and its strings end at a NUL byte (its
// accessors assert when they do not), so both are refused before it sees the text. The
// count is rough (a tag inside a comment counts too), which can only refuse texts that
// hide hundreds of container tags in comments.
int nestingChange(std::string_view tag)
{
    const bool closing = tag.starts_with("</");
    tag.remove_prefix(closing ? 2 : 1);
    const std::size_t nameLength = tag.starts_with("array") ? 5 : tag.starts_with("dict") ? 4 : 0;
    if (nameLength == 0 || tag.size() == nameLength || std::isalnum(static_cast<unsigned char>(tag[nameLength])))
        return 0;
    if (closing)
        return -1;
    const std::size_t end = tag.find('>');
    const bool empty = end != std::string_view::npos && end > 0 && tag[end - 1] == '/';
    return empty ? 0 : 1;
}

bool checkXmlBeforeParsing(std::string_view xml, std::string* error)
{
    if (xml.find('\0') != std::string_view::npos)
        return setError(error, "the XML property list contains a NUL byte");
    int depth = 0;
    for (std::size_t pos = xml.find('<'); pos != std::string_view::npos; pos = xml.find('<', pos + 1)) {
        depth += nestingChange(xml.substr(pos));
        if (depth > maxDepth)
            return setError(error, formatString("containers nested deeper than %d levels", maxDepth));
    }
    return true;
}

std::optional<PropertyList> parseXml(std::string_view xml, std::string* error)
{
    if (!checkXmlBeforeParsing(xml, error))
        return std::nullopt;
    plist_t raw = nullptr;
    plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &raw);
    const PlistPointer root(raw);
    if (!root) {
        setError(error, "the XML property list is damaged or incomplete");
        return std::nullopt;
    }
    return PlistImporter().import(raw, error);
}

} // namespace

std::optional<PropertyList> parsePropertyListData(const std::vector<std::uint8_t>& bytes, std::string* error)
{
    const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (view.empty()) {
        setError(error, "the property list is empty");
        return std::nullopt;
    }
    if (view.size() > std::numeric_limits<std::uint32_t>::max()) {
        setError(error, "the property list is too large");
        return std::nullopt;
    }
    try {
        switch (detectForm(view)) {
        case Form::Binary:
            return parseBinaryPropertyList(view, error);
        case Form::Xml:
            return parseXml(view, error);
        case Form::Text:
            break;
        }
        return parseOpenStepPropertyList(view, error);
    } catch (const std::bad_alloc&) {
        setError(error, "there is not enough memory to read the property list");
        return std::nullopt;
    }
}

std::optional<PropertyList> readPropertyListFile(const std::string& path, std::string* error)
{
    FileReadError failure;
    const auto bytes = RegularFile::read(path, kMaxPropertyListFileBytes, &failure);
    if (!bytes) {
        setError(error, "cannot read " + path + ": " + failure.reason);
        return std::nullopt;
    }
    std::string reason;
    auto value = parsePropertyListData(*bytes, &reason);
    if (!value)
        setError(error, path + ": " + reason);
    return value;
}

std::string writeXmlPropertyList(const PropertyList& value)
{
    const PlistPointer root(exportValue(value));
    char* raw = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(static_cast<plist_t>(root.get()), &raw, &length);
    std::string xml(raw ? raw : "", raw ? length : 0);
    plist_to_xml_free(raw);
    return xml;
}

bool writeXmlPropertyListFile(const PropertyList& value, const std::string& path, std::string* error)
{
    const std::string xml = writeXmlPropertyList(value);
    if (xml.empty())
        return setError(error, "cannot write " + path + ": the value has no XML form");
    std::string reason;
    if (!AtomicFileWriter::write(path, xml.data(), xml.size(), &reason))
        return setError(error, "cannot write " + path + ": " + reason);
    return true;
}

} // namespace plyra
