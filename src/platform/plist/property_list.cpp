// SPDX-License-Identifier: MIT
#include "platform/plist/property_list.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace plyra {

const PropertyList* PropertyList::find(const std::string& key) const
{
    const Dictionary* dict = dictionary();
    if (!dict)
        return nullptr;
    auto it = dict->find(key);
    return it == dict->end() ? nullptr : &it->second;
}

double PropertyList::doubleValue() const
{
    switch (type()) {
    case Type::Integer:
        return static_cast<double>(std::get<std::int64_t>(m_value));
    case Type::Real:
        return std::get<double>(m_value);
    case Type::Boolean:
        return std::get<bool>(m_value) ? 1.0 : 0.0;
    case Type::String: {
        const std::string& s = std::get<std::string>(m_value);
        const char* begin = s.c_str();
        while (*begin == ' ' || *begin == '\t' || *begin == '\n' || *begin == '\r')
            ++begin;
        // Only decimal text counts: hexadecimal, "inf" and "nan" are not numbers here.
        if (!(*begin == '+' || *begin == '-' || *begin == '.' || (*begin >= '0' && *begin <= '9')))
            return 0.0;
        if ((begin[0] == '0' && (begin[1] == 'x' || begin[1] == 'X')))
            return 0.0;
        char* end = nullptr;
        const double value = std::strtod(begin, &end);
        if (end == begin || !std::isfinite(value))
            return end == begin ? 0.0 : value;
        return value;
    }
    default:
        return 0.0;
    }
}

float PropertyList::floatValue() const
{
    return static_cast<float>(doubleValue());
}

std::int64_t PropertyList::integerValue() const
{
    if (type() == Type::Integer)
        return std::get<std::int64_t>(m_value);
    const double value = doubleValue();
    if (!std::isfinite(value))
        return 0;
    if (value >= static_cast<double>(std::numeric_limits<std::int64_t>::max()))
        return std::numeric_limits<std::int64_t>::max();
    if (value <= static_cast<double>(std::numeric_limits<std::int64_t>::min()))
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

std::optional<bool> PropertyList::boolValue() const
{
    switch (type()) {
    case Type::Boolean:
        return std::get<bool>(m_value);
    case Type::Integer:
    case Type::Real:
        return doubleValue() != 0.0;
    case Type::String: {
        const std::string& s = std::get<std::string>(m_value);
        if (s == "YES" || s == "yes" || s == "true" || s == "1")
            return true;
        if (s == "NO" || s == "no" || s == "false" || s == "0")
            return false;
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace plyra
