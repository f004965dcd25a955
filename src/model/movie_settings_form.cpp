// SPDX-License-Identifier: MIT
#include "model/movie_settings_form.h"

#include <array>
#include <cmath>
#include <utility>

namespace plyra {
namespace {

constexpr const char* kFrames = "frames";
constexpr const char* kFramesPerSecond = "framesPerSecond";
constexpr const char* kSizeToWindow = "sizeToWindow";
constexpr const char* kFrameRatio = "frameRatio";
constexpr const char* kFrameWidth = "frameWidth";
constexpr const char* kFrameHeight = "frameHeight";
constexpr const char* kRangeLocation = "rangeLocation";
constexpr const char* kRangeLength = "rangeLength";
constexpr const char* kReverse = "reverse";
constexpr const char* kEasing = "easing";
constexpr const char* kHoldStart = "holdStart";
constexpr const char* kHoldEnd = "holdEnd";
constexpr const char* kPingPong = "pingPong";

// Limits of what a document may ask for: beyond them an entry keeps its default.
constexpr double kMaxFrames = 1000000;
constexpr double kMaxFramesPerSecond = 1000;
constexpr double kMaxFrameSide = 16384;
constexpr double kMaxHoldSeconds = 3600;

constexpr std::array<std::pair<Easing, const char*>, 4> kEasingNames{{
    {Easing::Linear, "linear"},
    {Easing::EaseIn, "ease-in"},
    {Easing::EaseOut, "ease-out"},
    {Easing::EaseInOut, "ease-in-out"},
}};

/// Reads the entries of one stored dictionary, each only when it is usable.
class EntryReader {
public:
    explicit EntryReader(const PropertyList& dictionary)
        : m_dictionary(dictionary)
    {
    }

    /// A number within [low, high]; none otherwise.
    std::optional<double> number(const char* key, double low, double high) const
    {
        const PropertyList* value = m_dictionary.find(key);
        if (!value || !value->isNumber())
            return std::nullopt;
        const double number = value->doubleValue();
        if (!std::isfinite(number) || number < low || number > high)
            return std::nullopt;
        return number;
    }

    void read(const char* key, float& target, double low, double high) const
    {
        if (const std::optional<double> value = number(key, low, high))
            target = static_cast<float>(*value);
    }

    void read(const char* key, double& target, double low, double high) const
    {
        if (const std::optional<double> value = number(key, low, high))
            target = *value;
    }

    void read(const char* key, bool& target) const
    {
        const PropertyList* value = m_dictionary.find(key);
        if (value && value->isBoolean())
            target = *value->boolValue();
    }

    const std::string* text(const char* key) const
    {
        const PropertyList* value = m_dictionary.find(key);
        return value ? value->string() : nullptr;
    }

private:
    const PropertyList& m_dictionary;
};

} // namespace

const char* MovieSettingsForm::easingName(Easing easing)
{
    for (const auto& [value, name] : kEasingNames)
        if (value == easing)
            return name;
    return kEasingNames[0].second;
}

std::optional<Easing> MovieSettingsForm::easingFromName(const std::string& name)
{
    for (const auto& [value, stored] : kEasingNames)
        if (name == stored)
            return value;
    return std::nullopt;
}

PropertyList MovieSettingsForm::toPropertyList(const MovieSettings& s)
{
    PropertyList::Dictionary d;
    d[kFrames] = static_cast<std::int64_t>(s.numberOfFrames);
    d[kFramesPerSecond] = static_cast<double>(s.framesPerSecond);
    d[kSizeToWindow] = s.sizeToView;
    d[kFrameRatio] = static_cast<std::int64_t>(s.frameRatioMode);
    d[kFrameWidth] = static_cast<double>(s.frameWidth);
    d[kFrameHeight] = static_cast<double>(s.frameHeight);
    d[kRangeLocation] = static_cast<double>(s.rangeLocation);
    d[kRangeLength] = static_cast<double>(s.rangeLength);
    d[kReverse] = s.reverse;
    d[kEasing] = easingName(s.timing.easing);
    d[kHoldStart] = s.timing.holdStart;
    d[kHoldEnd] = s.timing.holdEnd;
    d[kPingPong] = s.timing.pingPong;
    return PropertyList(std::move(d));
}

std::optional<MovieSettings> MovieSettingsForm::fromPropertyList(const PropertyList& value)
{
    if (!value.isDictionary())
        return std::nullopt;
    const EntryReader entries(value);
    MovieSettings s;
    if (const std::optional<double> frames = entries.number(kFrames, 1, kMaxFrames))
        s.numberOfFrames = static_cast<std::uint32_t>(*frames);
    entries.read(kFramesPerSecond, s.framesPerSecond, 1e-3, kMaxFramesPerSecond);
    entries.read(kSizeToWindow, s.sizeToView);
    if (const std::optional<double> mode = entries.number(kFrameRatio, 0, 2))
        s.frameRatioMode = static_cast<std::int32_t>(*mode);
    entries.read(kFrameWidth, s.frameWidth, 0, kMaxFrameSide);
    entries.read(kFrameHeight, s.frameHeight, 0, kMaxFrameSide);
    entries.read(kRangeLocation, s.rangeLocation, -1e6, 1e6);
    entries.read(kRangeLength, s.rangeLength, -1e6, 1e6);
    entries.read(kReverse, s.reverse);
    if (const std::string* easing = entries.text(kEasing))
        s.timing.easing = easingFromName(*easing).value_or(Easing::Linear);
    entries.read(kHoldStart, s.timing.holdStart, 0, kMaxHoldSeconds);
    entries.read(kHoldEnd, s.timing.holdEnd, 0, kMaxHoldSeconds);
    entries.read(kPingPong, s.timing.pingPong);
    return s;
}

} // namespace plyra
