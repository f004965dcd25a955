// SPDX-License-Identifier: MIT
#include "model/morph_line.h"

#include "platform/notification_center.h"
#include "platform/number_text.h"
#include "platform/plist/openstep_plist.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace plyra {

MorphLine::MorphLine(Token)
    : m_startPoints(2)
    , m_endPoints(2)
{
}

MorphLine::~MorphLine() = default;

MorphLine::Ptr MorphLine::create()
{
    return std::make_shared<MorphLine>(Token{});
}

// ---- geometry ----------------------------------------------------------------------

Point MorphLine::pointAtTime(float t, float begin, float stop, Point p0, Point p1)
{
    const float span = stop - begin;
    if (static_cast<double>(span) >= 0.0001) {
        if (t <= begin)
            return p0;
        if (t >= stop)
            return p1;
        const float f = (t - begin) / (stop - begin);
        return {p0.x + (p1.x - p0.x) * f, p0.y + (p1.y - p0.y) * f};
    }
    // An instant: before it the first position, after it the last one; on the instant
    // itself the nearer end of the morph decides, so that times 0 and 1 always show the
    // track-0 and track-1 positions.
    if (t < begin)
        return p0;
    if (t > stop || static_cast<double>(stop) > 0.9999)
        return p1;
    return static_cast<double>(t) < 0.5 ? p0 : p1;
}

Point MorphLine::startPointAtTime(float t) const
{
    return pointAtTime(t, m_startPointBeginMoveTime, m_startPointStopMoveTime, m_startPoints[0], m_startPoints[1]);
}

Point MorphLine::endPointAtTime(float t) const
{
    return pointAtTime(t, m_endPointBeginMoveTime, m_endPointStopMoveTime, m_endPoints[0], m_endPoints[1]);
}

AffineTransform MorphLine::transformFromTime(float t1, float t2) const
{
    const Point s1 = startPointAtTime(t1);
    const Point e1 = endPointAtTime(t1);
    const Point s2 = startPointAtTime(t2);
    const Point e2 = endPointAtTime(t2);
    const Point d1{e1.x - s1.x, e1.y - s1.y};
    const Point d2{e2.x - s2.x, e2.y - s2.y};
    const float len1 = std::sqrt(d1.x * d1.x + d1.y * d1.y);
    const float len2 = std::sqrt(d2.x * d2.x + d2.y * d2.y);

    // A line without length at t2 has no direction to carry; it yields the translation
    // that moves its start at t2 onto its start at t1, which keeps every result finite.
    if (!(len2 > 0.0f))
        return {1.0f, 0.0f, 0.0f, 1.0f, s1.x - s2.x, s1.y - s2.y};

    const float k = len1 / len2;
    const float a1 = static_cast<float>(std::atan2(static_cast<double>(d1.y), static_cast<double>(d1.x)));
    const float a2 = static_cast<float>(std::atan2(static_cast<double>(d2.y), static_cast<double>(d2.x)));
    const double c1 = std::cos(static_cast<double>(a1));
    const double sn1 = std::sin(static_cast<double>(a1));
    const double c2 = std::cos(static_cast<double>(a2));
    const double sn2 = std::sin(static_cast<double>(a2));
    const double kd = k;

    // M = R(a1) · diag(k, 1) · R(−a2), as rows (M11, M12) and (M21, M22).
    const double M11 = kd * c1 * c2 + sn1 * sn2;
    const double M12 = kd * c1 * sn2 - sn1 * c2;
    const double M21 = kd * sn1 * c2 - c1 * sn2;
    const double M22 = kd * sn1 * sn2 + c1 * c2;
    AffineTransform m;
    m.m11 = static_cast<float>(M11);
    m.m12 = static_cast<float>(M21);
    m.m21 = static_cast<float>(M12);
    m.m22 = static_cast<float>(M22);
    m.tX = static_cast<float>(static_cast<double>(s1.x) - (M11 * s2.x + M12 * s2.y));
    m.tY = static_cast<float>(static_cast<double>(s1.y) - (M21 * s2.x + M22 * s2.y));
    return m;
}

// ---- stored form -------------------------------------------------------------------

std::string pointToString(Point p)
{
    // The shortest text that brings the float back exactly.
    return "{" + shortestFloatText(p.x) + ", " + shortestFloatText(p.y) + "}";
}

namespace {

// Finds the next decimal number in text from pos on; false when there is none.
bool nextNumber(const std::string& text, std::size_t& pos, float& value)
{
    while (pos < text.size()) {
        const char c = text[pos];
        const bool digit = c >= '0' && c <= '9';
        const bool startsNumber = digit
            || ((c == '-' || c == '+' || c == '.') && pos + 1 < text.size()
                && ((text[pos + 1] >= '0' && text[pos + 1] <= '9') || text[pos + 1] == '.'));
        if (startsNumber) {
            double d = 0.0;
            if (const std::size_t read = readLeadingNumber(std::string_view(text).substr(pos), d)) {
                value = static_cast<float>(d);
                pos += read;
                return true;
            }
        }
        ++pos;
    }
    return false;
}

} // namespace

Point pointFromString(const std::string& text)
{
    Point p;
    std::size_t pos = 0;
    if (nextNumber(text, pos, p.x))
        nextNumber(text, pos, p.y);
    return p;
}

std::string timeToString(float t)
{
    return numberToText(t, 7);
}

MorphLine::Values MorphLine::values() const
{
    return {m_startPoints, m_endPoints, m_startPointBeginMoveTime, m_startPointStopMoveTime, m_endPointBeginMoveTime,
        m_endPointStopMoveTime, m_dissolveStartTime, m_dissolveEndTime};
}

PropertyList MorphLine::Values::pList() const
{
    PropertyList::Array starts;
    PropertyList::Array ends;
    for (const Point& p : startPoints)
        starts.emplace_back(pointToString(p));
    for (const Point& p : endPoints)
        ends.emplace_back(pointToString(p));
    PropertyList::Dictionary dict;
    dict["startPoints"] = std::move(starts);
    dict["endPoints"] = std::move(ends);
    dict["startPointBeginMoveTime"] = timeToString(startPointBeginMoveTime);
    dict["startPointStopMoveTime"] = timeToString(startPointStopMoveTime);
    dict["endPointBeginMoveTime"] = timeToString(endPointBeginMoveTime);
    dict["endPointStopMoveTime"] = timeToString(endPointStopMoveTime);
    dict["dissolveStartTime"] = timeToString(dissolveStartTime);
    dict["dissolveEndTime"] = timeToString(dissolveEndTime);
    return dict;
}

std::string MorphLine::description() const
{
    return writeOpenStepPropertyList(pList());
}

MorphLine::Ptr MorphLine::fromValues(const PropertyList& dictionaryOrString)
{
    const PropertyList* values = &dictionaryOrString;
    std::optional<PropertyList> parsed;
    if (const std::string* text = dictionaryOrString.string()) {
        parsed = parseOpenStepPropertyList(*text);
        if (!parsed)
            return nullptr;
        values = &*parsed;
    }
    const PropertyList::Dictionary* dict = values->dictionary();
    if (!dict)
        return nullptr;
    Ptr line = create();
    line->m_shouldNotify = false;
    line->readValues(*dict);
    line->m_shouldNotify = true;
    return line;
}

void MorphLine::readValues(const PropertyList::Dictionary& values)
{
    auto find = [&](const char* key) -> const PropertyList* {
        auto it = values.find(key);
        return it == values.end() ? nullptr : &it->second;
    };
    const PropertyList* starts = find("startPoints");
    const PropertyList* ends = find("endPoints");
    if (starts && ends && starts->array() && ends->array() && starts->array()->size() >= 2
        && ends->array()->size() >= 2) {
        const std::size_t n = std::min(starts->array()->size(), ends->array()->size());
        m_startPoints.assign(n, Point{});
        m_endPoints.assign(n, Point{});
        for (std::size_t k = 0; k < n; ++k) {
            if (const std::string* s = (*starts->array())[k].string())
                m_startPoints[k] = pointFromString(*s);
            if (const std::string* s = (*ends->array())[k].string())
                m_endPoints[k] = pointFromString(*s);
        }
    }

    // Through the setters, so that the ordering rules hold; the older keys come last
    // and win over the newer ones.
    const std::pair<const char*, TimeSetter> timeKeys[] = {
        {"startPointBeginMoveTime", &MorphLine::setStartPointBeginMoveTime},
        {"startPointStopMoveTime", &MorphLine::setStartPointStopMoveTime},
        {"endPointBeginMoveTime", &MorphLine::setEndPointBeginMoveTime},
        {"endPointStopMoveTime", &MorphLine::setEndPointStopMoveTime},
        {"dissolveStartTime", &MorphLine::setDissolveStartTime},
        {"dissolveEndTime", &MorphLine::setDissolveEndTime},
        {"moveStartTime", &MorphLine::setStartPointBeginMoveTime},
        {"moveStartTime", &MorphLine::setEndPointBeginMoveTime},
        {"moveEndTime", &MorphLine::setStartPointStopMoveTime},
        {"moveEndTime", &MorphLine::setEndPointStopMoveTime},
    };
    for (const auto& [key, setter] : timeKeys)
        if (const PropertyList* value = find(key))
            (this->*setter)(value->floatValue(), nullptr);
}

MorphLine::Ptr MorphLine::copy() const
{
    return fromValues(pList());
}

// ---- notification ------------------------------------------------------------------

void MorphLine::notify()
{
    if (!m_shouldNotify)
        return;
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kObjectsUpdatedNotification, m_document});
}

} // namespace plyra
