// SPDX-License-Identifier: MIT
#include "inspector/morph_line_inspector.h"

#include "inspector/inspectable_window.h"
#include "inspector/inspector_selection.h"
#include "inspector/line_chain.h"
#include "inspector/line_timing_view.h"
#include "inspector/time_field.h"
#include "inspector/timing_timeline.h"
#include "platform/undo_manager.h"

#include <QToolButton>
#include <QCoreApplication>

#include <algorithm>

namespace plyra {
namespace {

MorphLineInspector* g_sharedInspector = nullptr;

bool contains(const std::vector<MorphLine::Ptr>& lines, const MorphLine::Ptr& line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// Calls the one setter that the edited cell stands for.
void applyCell(MorphLine& line, TimingCell cell, const MoveTimes& times, const TimingValues& cells, UndoManager* undo)
{
    switch (cell) {
    case TimingCell::StartBegin:
        line.setStartPointBeginMoveTime(times.startBegin, undo);
        break;
    case TimingCell::StartStop:
        line.setStartPointStopMoveTime(times.startStop, undo);
        break;
    case TimingCell::EndBegin:
        line.setEndPointBeginMoveTime(times.endBegin, undo);
        break;
    case TimingCell::EndStop:
        line.setEndPointStopMoveTime(times.endStop, undo);
        break;
    case TimingCell::DissolveStart:
        line.setDissolveStartTime(cells[cellIndex(TimingCell::DissolveStart)], undo);
        break;
    case TimingCell::DissolveEnd:
        line.setDissolveEndTime(cells[cellIndex(TimingCell::DissolveEnd)], undo);
        break;
    }
}

} // namespace

MorphLineInspector::MorphLineInspector(QObject* parent)
    : Inspector(parent)
{
}

MorphLineInspector::~MorphLineInspector()
{
    if (g_sharedInspector == this)
        g_sharedInspector = nullptr;
}

MorphLineInspector* MorphLineInspector::sharedInspector()
{
    if (!g_sharedInspector) {
        g_sharedInspector = new MorphLineInspector;
        auto* inspector = g_sharedInspector;
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, inspector, [inspector] { delete inspector; });
    }
    return g_sharedInspector;
}

bool MorphLineInspector::isValidInspectorForTargets(const QVariantList& targets) const
{
    return selectionHoldsOnlyLines(targets);
}

LineTimingView* MorphLineInspector::timingView()
{
    return static_cast<LineTimingView*>(view());
}

QWidget* MorphLineInspector::createView()
{
    auto* view = new LineTimingView;
    for (TimingCell cell : kTimingCells) {
        TimeField* field = view->field(cell);
        connect(field, &TimeField::valueCommitted, this, [this, field] { commitField(field); });
    }
    connect(view->timeline(), &TimingTimeline::dragStarted, this, &MorphLineInspector::beginDrag);
    connect(view->timeline(), &TimingTimeline::handleDragged, this, &MorphLineInspector::dragCell);
    connect(view->timeline(), &TimingTimeline::dragFinished, this, &MorphLineInspector::endDrag);
    connect(view->helpButton(), &QAbstractButton::clicked, this, &MorphLineInspector::showHelp);
    return view;
}

std::vector<MorphLine::Ptr> MorphLineInspector::targetLines() const
{
    return linesInSelection(targets());
}

UndoManager* MorphLineInspector::undoManager() const
{
    InspectableWindow* window = documentWindow();
    return window ? window->documentUndoManager() : nullptr;
}

void MorphLineInspector::revert()
{
    const std::vector<MorphLine::Ptr> lines = sortLinesAlongChain(targetLines());
    if (lines.empty())
        return;
    const MorphLine& first = *lines.front();
    const MorphLine& last = *lines.back();
    LineTimingView* view = timingView();
    view->setValues({first.startPointBeginMoveTime(), first.startPointStopMoveTime(),
        last.endPointBeginMoveTime(), last.endPointStopMoveTime(),
        first.dissolveStartTime(), last.dissolveEndTime()});
    if (InspectableWindow* window = documentWindow()) {
        view->setDissolveEnabled(window->documentHasBothImages());
        view->setFrameTime(window->frameWindowTime());
    } else {
        view->setFrameTime(std::nullopt);
    }
    view->update();
}

void MorphLineInspector::setValues(QObject* sender)
{
    const std::vector<MorphLine::Ptr> lines = sortLinesAlongChain(targetLines());
    const std::optional<TimingCell> cell = timingView()->cellOf(sender);
    UndoManager* undo = undoManager();
    // Without the document's undo manager an edit could not be undone; the window is
    // gone, and the next refresh empties the panel.
    if (!cell || !undo)
        return;
    const TimingValues cells = timingView()->values();
    const MoveTimes stroke{cells[cellIndex(TimingCell::StartBegin)], cells[cellIndex(TimingCell::StartStop)],
        cells[cellIndex(TimingCell::EndBegin)], cells[cellIndex(TimingCell::EndStop)]};
    const MorphLine* previous = nullptr;
    int counter = 0;
    int n = 1;
    for (const MorphLine::Ptr& line : lines) {
        int k = 0;
        if (previous && previous->attachedLineAtEnd() == line) {
            k = counter++;
        } else {
            const MorphLine::Ptr next = line->attachedLineAtEnd();
            n = (!next || !contains(lines, next)) ? 1 : countSelectedSuccessors(*next, lines) + 2;
            counter = 1;
        }
        applyCell(*line, *cell, spreadAlongChain(stroke, k, n), cells, undo);
        previous = line.get();
    }
}

void MorphLineInspector::commitField(QObject* field)
{
    setValues(field);
    // Show what the lines now hold: the setters may have ignored a tiny change or moved
    // the partner time, and then no notification comes to refresh the panel.
    revert();
}

void MorphLineInspector::showHelp()
{
    emit helpRequested(kHelpPage);
}

// ---- dragging on the timeline --------------------------------------------------------

void MorphLineInspector::beginDrag()
{
    UndoManager* undo = undoManager();
    // A group already open (nothing should be) would take the drag's steps anyway.
    if (!undo || undo->groupingLevel() != 0)
        return;
    undo->beginUndoGrouping();
    m_dragUndo = undo;
    m_dragWindow = documentWindowWidget();
    m_dragStart = TimingSnapshot::ofChains(targetLines());
}

void MorphLineInspector::dragCell(TimingCell cell, float value)
{
    // Each step starts again from the times before the drag, with the fields showing
    // them, so that letting go at a value does what typing that value does.
    if (m_dragUndo) {
        m_dragStart.restore();
        revert();
    }
    TimeField* field = timingView()->field(cell);
    field->setValue(value);
    commitField(field);
}

void MorphLineInspector::endDrag()
{
    // The undo manager lives as long as its document window.
    if (m_dragUndo && m_dragWindow && m_dragUndo->groupingLevel() > 0)
        m_dragUndo->endUndoGrouping();
    m_dragUndo = nullptr;
    m_dragWindow = nullptr;
    m_dragStart = TimingSnapshot();
}

} // namespace plyra
