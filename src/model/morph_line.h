// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"
#include "platform/plist/property_list.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace plyra {

class UndoManager;

/// The name of the notification posted when lines, images or codec settings change.
inline constexpr const char* kObjectsUpdatedNotification = "objectsUpdated";

/// One pair of corresponding segments, on the first image (track 0) and on the last
/// image (track 1), with the times at which each end moves and the picture around it
/// dissolves. Lines join end to start into chains: a line owns the line joined at its
/// end and only refers to the line joined at its start.
/// Threads: lines of a document are used on the main thread only; copies handed to the
/// engine are read from any thread and never changed.
class MorphLine : public std::enable_shared_from_this<MorphLine> {
public:
    using Ptr = std::shared_ptr<MorphLine>;

    static Ptr create();
    /// Builds a line from its property-list form: a dictionary, or a string holding one
    /// in the OpenStep text form. Null when the value is neither (or the text does not
    /// parse to a dictionary); missing or unreadable entries keep their defaults.
    static Ptr fromValues(const PropertyList& dictionaryOrString);

    /// What a line stores, as a plain value: taken on the main thread, it may be turned
    /// into its property-list form on another.
    struct Values {
        std::vector<Point> startPoints;
        std::vector<Point> endPoints;
        float startPointBeginMoveTime = 0.0f;
        float startPointStopMoveTime = 1.0f;
        float endPointBeginMoveTime = 0.0f;
        float endPointStopMoveTime = 1.0f;
        float dissolveStartTime = 0.0f;
        float dissolveEndTime = 1.0f;

        PropertyList pList() const;
    };

    /// Same points and times, no connections.
    Ptr copy() const;
    Values values() const;
    PropertyList pList() const { return values().pList(); }
    /// The OpenStep text form of pList().
    std::string description() const;

    Point startPointAtTime(float t) const;
    Point endPointAtTime(float t) const;
    /// The map that carries the line's position at t2 onto its position at t1.
    AffineTransform transformFromTime(float t1, float t2) const;

    /// Posts "objectsUpdated" about the line's document (coalesced per pass) unless the
    /// line is being built.
    void notify();
    /// The document the line belongs to, which its notifications carry; the document sets
    /// it when the line enters it. Copies and new lines belong to none.
    void setDocument(const void* document) { m_document = document; }

    std::uint32_t nPoints() const { return static_cast<std::uint32_t>(m_startPoints.size()); }
    const std::vector<Point>& startPoints() const { return m_startPoints; }
    const std::vector<Point>& endPoints() const { return m_endPoints; }
    /// Entry 0 for track 0, entry 1 for any other track.
    Point startPoint(unsigned track) const { return m_startPoints[entry(track)]; }
    Point endPoint(unsigned track) const { return m_endPoints[entry(track)]; }

    float startPointBeginMoveTime() const { return m_startPointBeginMoveTime; }
    float startPointStopMoveTime() const { return m_startPointStopMoveTime; }
    float endPointBeginMoveTime() const { return m_endPointBeginMoveTime; }
    float endPointStopMoveTime() const { return m_endPointStopMoveTime; }
    float dissolveStartTime() const { return m_dissolveStartTime; }
    float dissolveEndTime() const { return m_dissolveEndTime; }
    bool shouldNotify() const { return m_shouldNotify; }

    Ptr attachedLineAtStart() const { return m_attachedLineAtStart.lock(); }
    Ptr attachedLineAtEnd() const { return m_attachedLineAtEnd; }

    /// Whether moving a point from one place to the other is a change to the setters:
    /// they store a smaller move but neither pass it on to a joined line nor record it.
    static bool isPointMove(Point from, Point to);

    // Undoable edits. With no undo manager nothing is registered.
    void setStartPoint(Point p, unsigned track, UndoManager* undo);
    void setEndPoint(Point p, unsigned track, UndoManager* undo);
    void setStartPointBeginMoveTime(float value, UndoManager* undo);
    void setStartPointStopMoveTime(float value, UndoManager* undo);
    void setEndPointBeginMoveTime(float value, UndoManager* undo);
    void setEndPointStopMoveTime(float value, UndoManager* undo);
    void setDissolveStartTime(float value, UndoManager* undo);
    void setDissolveEndTime(float value, UndoManager* undo);

    void attachLineAtStart(const Ptr& line, UndoManager* undo);
    void attachLineAtEnd(const Ptr& line, UndoManager* undo);
    void disconnectLineAtStart(UndoManager* undo);
    void disconnectLineAtEnd(UndoManager* undo);

    /// Whether line is reached by following the links at the end (ascending) or at the
    /// start (descending); this line itself counts only if the chain comes back to it.
    bool isLineAttachedAscending(const MorphLine* line) const;
    bool isLineAttachedDescending(const MorphLine* line) const;

    ~MorphLine();

private:
    struct Token { };

public:
    explicit MorphLine(Token);

private:
    using TimeSetter = void (MorphLine::*)(float, UndoManager*);

    static std::size_t entry(unsigned track) { return track == 0 ? 0 : 1; }
    static Point pointAtTime(float t, float begin, float stop, Point p0, Point p1);
    void readValues(const PropertyList::Dictionary& values);
    bool storeTime(float& field, float value, UndoManager* undo, TimeSetter setter);
    void registerUndo(UndoManager* undo, std::function<void(MorphLine&)> action, const char* name);

    std::vector<Point> m_startPoints;
    std::vector<Point> m_endPoints;
    float m_startPointBeginMoveTime = 0.0f;
    float m_startPointStopMoveTime = 1.0f;
    float m_endPointBeginMoveTime = 0.0f;
    float m_endPointStopMoveTime = 1.0f;
    float m_dissolveStartTime = 0.0f;
    float m_dissolveEndTime = 1.0f;
    bool m_shouldNotify = true;
    // Only compared, never followed: a line may outlive its document in an undo step.
    const void* m_document = nullptr;
    std::weak_ptr<MorphLine> m_attachedLineAtStart;
    Ptr m_attachedLineAtEnd;
};

/// Point text: "{x, y}". Reading takes the first number found as x and the second as y;
/// a missing number reads as 0.
std::string pointToString(Point p);
Point pointFromString(const std::string& text);
/// Time text: the float's decimal text with seven significant digits ("0.5", "1").
std::string timeToString(float t);

} // namespace plyra
