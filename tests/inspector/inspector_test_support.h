// SPDX-License-Identifier: MIT
#pragma once

#include "inspector/inspectable_window.h"
#include "inspector/inspector.h"
#include "model/morph_document.h"
#include "platform/qt/timer.h"

#include <QMainWindow>
#include <QTemporaryDir>

#include <optional>
#include <vector>

namespace plyra::test {

/// Points user defaults at a temporary file, binds the run loop to Qt's and puts the
/// panel's timers on testClock(), once per test program.
void setUpInspectorTests();
/// The time of the panel's timers, which moves only when a test moves it.
ManualClock& testClock();

/// A document window as the inspector panel sees it, over a real document.
class FakeDocumentWindow : public QMainWindow, public InspectableWindow {
public:
    FakeDocumentWindow();

    MorphDocument& document() { return m_document; }

    QVariantList currentSelection() const override;
    const void* documentNotificationObject() const override { return m_document.notificationObject(); }
    UndoManager* documentUndoManager() override { return &m_document.undoManager(); }
    bool documentHasBothImages() const override;
    std::optional<float> frameWindowTime() const override { return m_frameTime; }
    QList<QAction*> editActions() const override { return {}; }

    /// Changes the frame window's time (nothing: closed) and says so.
    void setFrameTime(std::optional<float> time);
    /// Something that is not a line, added to the selection.
    void setForeignSelectionItem(const QVariant& item) { m_foreign = item; }
    /// Gives the document a first image, and a last one when both is true.
    void setImages(bool both);

    /// Adds n lines joined end to start, left to right at height y, built without undo.
    std::vector<MorphLine::Ptr> addChain(int n, float y);
    /// Replaces the selection, registers no undo, and lets the notifications go out.
    void select(const std::vector<MorphLine::Ptr>& lines);
    /// Shows the window and makes it the active window.
    void activate();

private:
    MorphDocument m_document;
    QTemporaryDir m_dir;
    std::optional<float> m_frameTime;
    QVariant m_foreign;
};

/// An inspector that accepts any selection of lines and counts its refreshes.
class CountingInspector : public Inspector {
public:
    bool isValidInspectorForTargets(const QVariantList& targets) const override;
    void revert() override;

    int reverts = 0;

protected:
    QWidget* createView() override;
};

/// The six times of a line, in the order of the fields.
std::array<float, 6> timesOf(const MorphLine& line);
/// The times of every line, in order.
std::vector<std::array<float, 6>> timesOf(const std::vector<MorphLine::Ptr>& lines);

/// Lets pending events, notifications, undo groups and panel refreshes run.
void settle();

} // namespace plyra::test
