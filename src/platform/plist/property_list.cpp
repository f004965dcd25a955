// SPDX-License-Identifier: MIT
#include "platform/plist/property_list.h"

#include "platform/number_text.h"

#include <cmath>
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
        std::string_view text = std::get<std::string>(m_value);
        while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n' || text.front() == '\r'))
            text.remove_prefix(1);
        double value = 0.0;
        return readLeadingNumber(text, value) > 0 ? value : 0.0;
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
