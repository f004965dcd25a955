// SPDX-License-Identifier: MIT
// The undoable setters of a line and the joining and cutting of chains.
#include "model/morph_line.h"

#include "platform/undo_manager.h"

#include <cmath>

namespace plyra {
namespace {

constexpr double kTimeThreshold = 0.0001;
constexpr double kMoveThreshold = 0.0000001;
constexpr const char* kMoveLine = "Move Line";
constexpr const char* kChangeSettings = "Change settings";
constexpr const char* kConnectLine = "Connect line";
constexpr const char* kDisconnectLine = "Disconnect line";

} // namespace

void MorphLine::registerUndo(UndoManager* undo, std::function<void(MorphLine&)> action, const char* name)
{
    if (!undo)
        return;
    // The step keeps the line alive, so that undoing a deletion can bring it back.
    Ptr self = shared_from_this();
    undo->registerUndo(this, [self, action = std::move(action)] { action(*self); });
    if (name)
        undo->setActionName(name);
}

// ---- points ------------------------------------------------------------------------

bool MorphLine::isPointMove(Point from, Point to)
{
    const float dx = from.x - to.x;
    const float dy = from.y - to.y;
    return static_cast<double>(dx * dx + dy * dy) > kMoveThreshold;
}

void MorphLine::setStartPoint(Point p, unsigned track, UndoManager* undo)
{
    const Point old = m_startPoints[entry(track)];
    m_startPoints[entry(track)] = p;
    if (!isPointMove(old, p))
        return;
    // The joined end follows; its own call comes back here and stops, the point being
    // in place already.
    if (Ptr previous = attachedLineAtStart())
        previous->setEndPoint(p, track, undo);
    if (!undo)
        return;
    registerUndo(undo, [old, track, undo](MorphLine& line) { line.setStartPoint(old, track, undo); }, kMoveLine);
    notify();
}

void MorphLine::setEndPoint(Point p, unsigned track, UndoManager* undo)
{
    const Point old = m_endPoints[entry(track)];
    m_endPoints[entry(track)] = p;
    if (!isPointMove(old, p))
        return;
    if (Ptr next = m_attachedLineAtEnd)
        next->setStartPoint(p, track, undo);
    if (!undo)
        return;
    registerUndo(undo, [old, track, undo](MorphLine& line) { line.setEndPoint(old, track, undo); }, kMoveLine);
    notify();
}

// ---- times -------------------------------------------------------------------------

bool MorphLine::storeTime(float& field, float value, UndoManager* undo, TimeSetter setter)
{
    if (std::fabs(static_cast<double>(value) - static_cast<double>(field)) <= kTimeThreshold)
        return false;
    const float old = field;
    registerUndo(undo, [setter, old, undo](MorphLine& line) { (line.*setter)(old, undo); }, kChangeSettings);
    field = value;
    return true;
}

void MorphLine::setStartPointBeginMoveTime(float value, UndoManager* undo)
{
    if (!storeTime(m_startPointBeginMoveTime, value, undo, &MorphLine::setStartPointBeginMoveTime))
        return;
    if (m_startPointBeginMoveTime > m_startPointStopMoveTime)
        setStartPointStopMoveTime(m_startPointBeginMoveTime, undo);
    if (Ptr previous = attachedLineAtStart())
        previous->setEndPointBeginMoveTime(m_startPointBeginMoveTime, undo);
    notify();
}

void MorphLine::setStartPointStopMoveTime(float value, UndoManager* undo)
{
    if (!storeTime(m_startPointStopMoveTime, value, undo, &MorphLine::setStartPointStopMoveTime))
        return;
    if (m_startPointBeginMoveTime > m_startPointStopMoveTime)
        setStartPointBeginMoveTime(m_startPointStopMoveTime, undo);
    if (Ptr previous = attachedLineAtStart())
        previous->setEndPointStopMoveTime(m_startPointStopMoveTime, undo);
    notify();
}

void MorphLine::setEndPointBeginMoveTime(float value, UndoManager* undo)
{
    if (!storeTime(m_endPointBeginMoveTime, value, undo, &MorphLine::setEndPointBeginMoveTime))
        return;
    if (m_endPointBeginMoveTime > m_endPointStopMoveTime)
        setEndPointStopMoveTime(m_endPointBeginMoveTime, undo);
    if (Ptr next = m_attachedLineAtEnd)
        next->setStartPointBeginMoveTime(m_endPointBeginMoveTime, undo);
    notify();
}

void MorphLine::setEndPointStopMoveTime(float value, UndoManager* undo)
{
    if (!storeTime(m_endPointStopMoveTime, value, undo, &MorphLine::setEndPointStopMoveTime))
        return;
    if (m_endPointBeginMoveTime > m_endPointStopMoveTime)
        setEndPointBeginMoveTime(m_endPointStopMoveTime, undo);
    if (Ptr next = m_attachedLineAtEnd)
        next->setStartPointStopMoveTime(m_endPointStopMoveTime, undo);
    notify();
}

void MorphLine::setDissolveStartTime(float value, UndoManager* undo)
{
    if (!storeTime(m_dissolveStartTime, value, undo, &MorphLine::setDissolveStartTime))
        return;
    if (m_dissolveStartTime > m_dissolveEndTime)
        setDissolveEndTime(m_dissolveStartTime, undo);
    notify();
}

void MorphLine::setDissolveEndTime(float value, UndoManager* undo)
{
    if (!storeTime(m_dissolveEndTime, value, undo, &MorphLine::setDissolveEndTime))
        return;
    if (m_dissolveStartTime > m_dissolveEndTime)
        setDissolveStartTime(m_dissolveEndTime, undo);
    notify();
}

// ---- joining and cutting -----------------------------------------------------------

void MorphLine::attachLineAtStart(const Ptr& line, UndoManager* undo)
{
    if (line == attachedLineAtStart())
        return;
    // A cut below may drop the last owning reference to this line or to the old
    // neighbour; both stay alive until the join is complete.
    const Ptr self = shared_from_this();
    const Ptr previous = attachedLineAtStart();
    if (previous)
        previous->disconnectLineAtEnd(undo);
    disconnectLineAtStart(undo);
    m_attachedLineAtStart = line;
    if (line)
        line->attachLineAtEnd(self, undo);
    if (previous)
        previous->attachLineAtEnd(line, undo);
    if (Ptr now = attachedLineAtStart()) {
        now->setEndPointBeginMoveTime(m_startPointBeginMoveTime, undo);
        now->setEndPointStopMoveTime(m_startPointStopMoveTime, undo);
    }
    registerUndo(undo, [undo](MorphLine& s) { s.disconnectLineAtStart(undo); }, nullptr);
    if (previous)
        registerUndo(undo, [previous, undo](MorphLine& s) { s.attachLineAtStart(previous, undo); }, nullptr);
    if (undo)
        undo->setActionName(kConnectLine);
}

void MorphLine::attachLineAtEnd(const Ptr& line, UndoManager* undo)
{
    if (line == m_attachedLineAtEnd)
        return;
    const Ptr self = shared_from_this();
    const Ptr next = m_attachedLineAtEnd;
    if (next)
        next->disconnectLineAtStart(undo);
    disconnectLineAtEnd(undo);
    m_attachedLineAtEnd = line;
    if (line)
        line->attachLineAtStart(self, undo);
    if (next)
        next->attachLineAtStart(line, undo);
    if (Ptr now = m_attachedLineAtEnd) {
        now->setStartPointBeginMoveTime(m_endPointBeginMoveTime, undo);
        now->setStartPointStopMoveTime(m_endPointStopMoveTime, undo);
    }
    registerUndo(undo, [undo](MorphLine& s) { s.disconnectLineAtEnd(undo); }, nullptr);
    if (next)
        registerUndo(undo, [next, undo](MorphLine& s) { s.attachLineAtEnd(next, undo); }, nullptr);
    if (undo)
        undo->setActionName(kConnectLine);
}

void MorphLine::disconnectLineAtEnd(UndoManager* undo)
{
    const Ptr next = m_attachedLineAtEnd;
    if (!next)
        return;
    const Ptr self = shared_from_this();
    // Clearing our side first is what ends the mutual recursion.
    m_attachedLineAtEnd.reset();
    next->disconnectLineAtStart(undo);
    registerUndo(undo, [next, undo](MorphLine& s) { s.attachLineAtEnd(next, undo); }, kDisconnectLine);
}

void MorphLine::disconnectLineAtStart(UndoManager* undo)
{
    const Ptr previous = attachedLineAtStart();
    m_attachedLineAtStart.reset();
    if (!previous)
        return;
    const Ptr self = shared_from_this();
    previous->disconnectLineAtEnd(undo);
    registerUndo(undo, [previous, undo](MorphLine& s) { s.attachLineAtStart(previous, undo); }, kDisconnectLine);
}

// ---- chain queries -----------------------------------------------------------------

bool MorphLine::isLineAttachedAscending(const MorphLine* line) const
{
    for (const MorphLine* next = m_attachedLineAtEnd.get(); next; next = next->m_attachedLineAtEnd.get()) {
        if (next == line)
            return true;
        if (next == this)
            return false; // a ring; the joining rules never make one
    }
    return false;
}

bool MorphLine::isLineAttachedDescending(const MorphLine* line) const
{
    for (Ptr previous = attachedLineAtStart(); previous; previous = previous->attachedLineAtStart()) {
        if (previous.get() == line)
            return true;
        if (previous.get() == this)
            return false;
    }
    return false;
}

} // namespace plyra
