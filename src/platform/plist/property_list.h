// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace plyra {

/// A property-list value: string, integer, real, boolean, data, array or dictionary.
/// Dictionaries keep their keys sorted. Threads: a plain value; any thread.
class PropertyList {
public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;
    using Data = std::vector<std::uint8_t>;
    enum class Type { String, Integer, Real, Boolean, Data, Array, Dictionary };

    PropertyList() : m_value(std::string()) { }
    PropertyList(std::string s) : m_value(std::move(s)) { }
    PropertyList(const char* s) : m_value(std::string(s)) { }
    PropertyList(std::int64_t i) : m_value(i) { }
    PropertyList(int i) : m_value(static_cast<std::int64_t>(i)) { }
    PropertyList(double d) : m_value(d) { }
    PropertyList(bool b) : m_value(b) { }
    PropertyList(Data d) : m_value(std::move(d)) { }
    PropertyList(Array a) : m_value(std::move(a)) { }
    PropertyList(Dictionary d) : m_value(std::move(d)) { }

    Type type() const { return static_cast<Type>(m_value.index()); }
    bool isString() const { return type() == Type::String; }
    bool isNumber() const { return type() == Type::Integer || type() == Type::Real; }
    bool isBoolean() const { return type() == Type::Boolean; }
    bool isData() const { return type() == Type::Data; }
    bool isArray() const { return type() == Type::Array; }
    bool isDictionary() const { return type() == Type::Dictionary; }

    /// Typed access; null when the value is of another type.
    const std::string* string() const { return std::get_if<std::string>(&m_value); }
    const Data* data() const { return std::get_if<Data>(&m_value); }
    const Array* array() const { return std::get_if<Array>(&m_value); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&m_value); }
    Array* array() { return std::get_if<Array>(&m_value); }
    Dictionary* dictionary() { return std::get_if<Dictionary>(&m_value); }

    /// The entry of a dictionary under key; null when absent or when this is no dictionary.
    const PropertyList* find(const std::string& key) const;

    /// Numeric readings with the leniency of text-based property lists: a number gives
    /// its value, a boolean 1 or 0, a string the number it begins with (after leading
    /// blanks) or 0, anything else 0.
    float floatValue() const;
    double doubleValue() const;
    /// Integer part (truncated toward zero) of the numeric reading.
    std::int64_t integerValue() const;
    std::optional<bool> boolValue() const;

    bool operator==(const PropertyList& other) const = default;

private:
    std::variant<std::string, std::int64_t, double, bool, Data, Array, Dictionary> m_value;
};

} // namespace plyra
