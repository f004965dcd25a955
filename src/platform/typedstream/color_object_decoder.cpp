// SPDX-License-Identifier: MIT
#include "platform/typedstream/color_object_decoder_internal.h"

#include <utility>

namespace plyra::typedstream {

namespace {

// A named colour carries a fallback colour, which could in turn be named; real archives
// nest once. The limit keeps damaged input from recursing without end.
constexpr int maxColorDepth = 8;
// NSColor : NSObject, NSMutableString : NSString : NSObject; anything far longer is damage.
constexpr int maxClassChain = 16;

const char* expectedName(bool color)
{
    return color ? "a colour" : "a string";
}

} // namespace

ColorObjectDecoder::ColorObjectDecoder(TypedStreamReader& reader)
    : m_reader(reader)
{
}

ArchivedColor ColorObjectDecoder::readRootColor()
{
    m_reader.expectTypes("@");
    std::optional<Entry> root = readObject(Expected::Color, 0);
    if (!root)
        throw TypedStreamError("root is not a colour (nil)");
    return std::get<ArchivedColor>(std::move(*root));
}

std::optional<ColorObjectDecoder::Entry> ColorObjectDecoder::readObject(Expected expected,
                                                                        int depth)
{
    const std::uint8_t head = m_reader.readByte();
    if (head == tagNil)
        return std::nullopt;
    if (head == tagNew)
        return readNewObject(expected, depth);
    return referencedObject(head, expected);
}

ColorObjectDecoder::Entry ColorObjectDecoder::readNewObject(Expected expected, int depth)
{
    if (depth > maxColorDepth)
        throw TypedStreamError("colours nested too deeply");
    const std::size_t index = m_objects.size();
    m_objects.emplace_back(Pending {});
    checkClass(readClass(), expected, depth);
    Entry value = expected == Expected::Color ? Entry(readColorBody(depth))
                                              : Entry(readStringBody());
    m_reader.expectTag(tagEndOfObject, "end of object");
    m_objects[index] = value;
    return value;
}

ColorObjectDecoder::Entry ColorObjectDecoder::referencedObject(std::uint8_t head,
                                                               Expected expected)
{
    const Entry& entry = m_objects[m_reader.readReferenceAfter(head, m_objects.size(), "object")];
    if (std::holds_alternative<Pending>(entry))
        throw TypedStreamError("reference to an object that is still being read");
    const bool isColor = std::holds_alternative<ArchivedColor>(entry);
    const bool isString = std::holds_alternative<std::string>(entry);
    if ((expected == Expected::Color && !isColor) || (expected == Expected::String && !isString)) {
        throw TypedStreamError(std::string("reference to an object that is not ")
                               + expectedName(expected == Expected::Color));
    }
    return entry;
}

void ColorObjectDecoder::checkClass(std::optional<std::size_t> classIndex, Expected expected,
                                    int depth) const
{
    if (!classIndex)
        throw TypedStreamError("object without a class");
    const bool color = expected == Expected::Color;
    if (classIsA(*classIndex, color ? "NSColor" : "NSString"))
        return;
    const std::string found = "object of class " + className(*classIndex);
    if (color && depth == 0)
        throw TypedStreamError("root is not a colour (" + found + ")");
    throw TypedStreamError(std::string("expected ") + expectedName(color) + ", found " + found);
}

std::optional<std::size_t> ColorObjectDecoder::readClass()
{
    std::optional<std::size_t> first;
    std::optional<std::size_t> previous;
    for (int count = 0;; ++count) {
        const std::uint8_t head = m_reader.readByte();
        std::optional<std::size_t> current;
        bool done = true;
        if (head == tagNew) {
            if (count >= maxClassChain)
                throw TypedStreamError("class chain too long");
            std::optional<std::string> name = m_reader.readSharedString();
            if (!name)
                throw TypedStreamError("class without a name");
            m_reader.readInteger(); // the class version; every version reads alike here
            current = m_objects.size();
            m_objects.emplace_back(ClassInfo { std::move(*name), std::nullopt });
            done = false;
        } else if (head != tagNil) {
            current = m_reader.readReferenceAfter(head, m_objects.size(), "object");
            if (!std::holds_alternative<ClassInfo>(m_objects[*current]))
                throw TypedStreamError("reference to an object where a class belongs");
        }
        if (previous)
            std::get<ClassInfo>(m_objects[*previous]).superclass = current;
        if (!first)
            first = current;
        if (done)
            return first;
        previous = current;
    }
}

bool ColorObjectDecoder::classIsA(std::size_t classIndex, const std::string& name) const
{
    // A damaged stream can make a class its own superclass; the walk stops all the same.
    std::optional<std::size_t> current = classIndex;
    for (std::size_t steps = 0; current && steps <= m_objects.size(); ++steps) {
        const ClassInfo& info = std::get<ClassInfo>(m_objects[*current]);
        if (info.name == name)
            return true;
        current = info.superclass;
    }
    return false;
}

std::string ColorObjectDecoder::className(std::size_t classIndex) const
{
    return std::get<ClassInfo>(m_objects[classIndex]).name;
}

ArchivedColor ColorObjectDecoder::readColorBody(int depth)
{
    m_reader.expectTypes("c");
    const std::int32_t kind = m_reader.readInteger();
    ArchivedColor color;
    if (kind >= 1 && kind <= 5) {
        color.kind = static_cast<ColorSpaceKind>(kind);
        readComponents(color);
    } else if (kind == static_cast<std::int32_t>(ColorSpaceKind::Named)) {
        color.kind = ColorSpaceKind::Named;
        readNamedBody(color, depth);
    } else {
        throw TypedStreamError("unsupported colour kind " + std::to_string(kind));
    }
    return color;
}

void ColorObjectDecoder::readComponents(ArchivedColor& color)
{
    const std::size_t count = color.componentCount();
    m_reader.expectTypes(std::string(count, 'f'));
    for (std::size_t i = 0; i < count; ++i)
        color.components[i] = m_reader.readFloat();
}

void ColorObjectDecoder::readNamedBody(ArchivedColor& color, int depth)
{
    m_reader.expectTypes("@@@");
    color.catalog = readString(depth + 1);
    color.name = readString(depth + 1);
    std::optional<ArchivedColor> fallback = readOptionalColor(depth + 1);
    if (fallback)
        color.fallback = std::make_shared<const ArchivedColor>(std::move(*fallback));
}

std::string ColorObjectDecoder::readStringBody()
{
    m_reader.expectTypes("+");
    return m_reader.readUnsharedString();
}

std::string ColorObjectDecoder::readString(int depth)
{
    std::optional<Entry> entry = readObject(Expected::String, depth);
    return entry ? std::get<std::string>(std::move(*entry)) : std::string();
}

std::optional<ArchivedColor> ColorObjectDecoder::readOptionalColor(int depth)
{
    std::optional<Entry> entry = readObject(Expected::Color, depth);
    if (!entry)
        return std::nullopt;
    return std::get<ArchivedColor>(std::move(*entry));
}

} // namespace plyra::typedstream
