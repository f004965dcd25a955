// SPDX-License-Identifier: MIT
#include "editor/line_damage.h"

#include "editor/editor_painter.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace plyra {
namespace {

// Every pixel a line can touch: its box grown by the reach of the outline and knobs.
QRect areaOf(const ViewMapping& mapping, const LineEnds& ends)
{
    return grownWidgetRect(mapping.toWidget(boxOf(ends.start, ends.end)), EditorPainter::kDrawingReach + 1.0);
}

// Many small rectangles cost more to unite and clip than one box around them.
QRegion regionOf(const std::vector<QRect>& rects)
{
    constexpr std::size_t kMostRects = 24;
    QRegion region;
    if (rects.size() > kMostRects) {
        QRect bounds;
        for (const QRect& rect : rects)
            bounds |= rect;
        return bounds;
    }
    for (const QRect& rect : rects)
        region += rect;
    return region;
}

} // namespace

bool LineDamage::Drawn::sameAs(const Drawn& other) const
{
    return line == other.line && ends.start == other.ends.start && ends.end == other.ends.end
        && selected == other.selected;
}

QRegion LineDamage::update(const std::vector<MorphLine::Ptr>& lines, const std::vector<MorphLine::Ptr>& selectedLines,
    unsigned track, const ViewMapping& mapping)
{
    std::unordered_set<const MorphLine*> selected;
    for (const MorphLine::Ptr& line : selectedLines)
        selected.insert(line.get());
    std::vector<Drawn> now;
    now.reserve(lines.size());
    for (const MorphLine::Ptr& line : lines)
        now.push_back({line.get(), mapping.lineEnds(*line, track), selected.count(line.get()) > 0});

    std::vector<QRect> changed;
    if (now.size() == m_drawn.size()
        && std::equal(now.begin(), now.end(), m_drawn.begin(), [](const Drawn& a, const Drawn& b) { return a.line == b.line; })) {
        // The common case: the same lines in the same order.
        for (std::size_t i = 0; i < now.size(); ++i) {
            if (!now[i].sameAs(m_drawn[i])) {
                changed.push_back(areaOf(mapping, m_drawn[i].ends));
                changed.push_back(areaOf(mapping, now[i].ends));
            }
        }
    } else {
        // Lines came or went. The others keep their order among themselves (a line
        // only ever comes back as a new entry), so only the changed ones are redrawn.
        std::unordered_map<const MorphLine*, std::size_t> before;
        for (std::size_t i = 0; i < m_drawn.size(); ++i)
            before.emplace(m_drawn[i].line, i);
        for (const Drawn& line : now) {
            const auto it = before.find(line.line);
            if (it == before.end()) {
                changed.push_back(areaOf(mapping, line.ends));
                continue;
            }
            if (!line.sameAs(m_drawn[it->second])) {
                changed.push_back(areaOf(mapping, line.ends));
                changed.push_back(areaOf(mapping, m_drawn[it->second].ends));
            }
            before.erase(it);
        }
        for (const auto& [line, index] : before)
            changed.push_back(areaOf(mapping, m_drawn[index].ends));
    }
    m_drawn = std::move(now);
    return regionOf(changed);
}

} // namespace plyra
