// SPDX-License-Identifier: MIT
#include "inspector/timing_snapshot.h"

#include <unordered_set>

namespace plyra {
namespace {

using Getter = float (MorphLine::*)() const;
using Setter = void (MorphLine::*)(float, UndoManager*);

// Sets a begin/stop pair in the order in which neither setter pushes the other time:
// the stop first when the begin must go above the present stop, else the begin first.
void restorePair(MorphLine& line, float begin, float stop, Getter currentStop, Setter setBegin, Setter setStop)
{
    if (begin > (line.*currentStop)()) {
        (line.*setStop)(stop, nullptr);
        (line.*setBegin)(begin, nullptr);
    } else {
        (line.*setBegin)(begin, nullptr);
        (line.*setStop)(stop, nullptr);
    }
}

} // namespace

TimingSnapshot TimingSnapshot::ofChains(const std::vector<MorphLine::Ptr>& lines)
{
    TimingSnapshot snapshot;
    std::unordered_set<const MorphLine*> seen;
    auto take = [&](const MorphLine::Ptr& line) {
        if (!seen.insert(line.get()).second)
            return false;
        snapshot.m_entries.push_back({line, {line->startPointBeginMoveTime(), line->startPointStopMoveTime(),
            line->endPointBeginMoveTime(), line->endPointStopMoveTime(), line->dissolveStartTime(), line->dissolveEndTime()}});
        return true;
    };
    for (const MorphLine::Ptr& line : lines) {
        if (!take(line))
            continue;
        for (MorphLine::Ptr next = line->attachedLineAtEnd(); next && take(next); next = next->attachedLineAtEnd()) { }
        for (MorphLine::Ptr previous = line->attachedLineAtStart(); previous && take(previous);
             previous = previous->attachedLineAtStart()) { }
    }
    return snapshot;
}

void TimingSnapshot::restore() const
{
    // Joined ends share their times in the snapshot, so what a setter passes on to the
    // joined line is the value that line gets back anyway.
    for (const Entry& e : m_entries) {
        MorphLine& line = *e.line;
        restorePair(line, e.times[0], e.times[1], &MorphLine::startPointStopMoveTime,
            &MorphLine::setStartPointBeginMoveTime, &MorphLine::setStartPointStopMoveTime);
        restorePair(line, e.times[2], e.times[3], &MorphLine::endPointStopMoveTime,
            &MorphLine::setEndPointBeginMoveTime, &MorphLine::setEndPointStopMoveTime);
        restorePair(line, e.times[4], e.times[5], &MorphLine::dissolveEndTime,
            &MorphLine::setDissolveStartTime, &MorphLine::setDissolveEndTime);
    }
}

} // namespace plyra
