// SPDX-License-Identifier: MIT
#pragma once

#include "inspector/inspector.h"
#include "inspector/timing_cell.h"
#include "inspector/timing_snapshot.h"
#include "model/morph_line.h"

#include <QPointer>

#include <vector>

namespace plyra {

class LineTimingView;
class UndoManager;

/// The inspector of the selected lines' timing: when each end point begins and stops
/// moving and when the picture under the line dissolves. Selected lines joined into a
/// chain count as one stroke: the fields show the chain's first start point and last
/// end point, and an edit spreads the times evenly along the chain. Every edit goes
/// through the lines' undoable setters with the document's undo manager; dragging on
/// the timeline is one undo step.
/// Threads: main thread only.
class MorphLineInspector : public Inspector {
    Q_OBJECT

public:
    /// The page of the application's help that explains line timing.
    static inline const QString kHelpPage = QStringLiteral("timing");

    explicit MorphLineInspector(QObject* parent = nullptr);
    ~MorphLineInspector() override;

    /// The application's line inspector, made on first use and deleted when the
    /// application is about to quit.
    static MorphLineInspector* sharedInspector();

    /// Yes for at least one object, all of them lines.
    bool isValidInspectorForTargets(const QVariantList& targets) const override;
    /// Shows the first line's start times and dissolve start, the last line's end times
    /// and dissolve end (in chain order); enables the dissolve when the document has both
    /// images; moves the timeline's frame marker.
    void revert() override;
    /// The action of the six fields: applies the value of the field sender to every
    /// selected line, spread along chains. Any other sender changes nothing.
    void setValues(QObject* sender);
    /// Asks for the help page on line timing.
    void showHelp();

    LineTimingView* timingView();

protected:
    QWidget* createView() override;

private:
    std::vector<MorphLine::Ptr> targetLines() const;
    UndoManager* undoManager() const;
    void commitField(QObject* field);
    void beginDrag();
    void dragCell(TimingCell cell, float value);
    void endDrag();

    // The undo group a timeline drag opened, the window whose document it belongs to,
    // and the times the drag started from.
    QPointer<QWidget> m_dragWindow;
    UndoManager* m_dragUndo = nullptr;
    TimingSnapshot m_dragStart;
};

} // namespace plyra
