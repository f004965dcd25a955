// SPDX-License-Identifier: MIT
#pragma once

#include <QAction>
#include <QList>
#include <QObject>
#include <QPointer>

#include "platform/qt/timer.h"

#include <memory>

namespace plyra {

class InspectableWindow;
class Inspector;
class InspectorPanel;

/// The one inspector panel of the application: it follows the selection of the document
/// window in front and shows the view of the first registered inspector that accepts it,
/// or the empty-selection view when nothing is selected. It refreshes 0.01 s after the
/// last of a burst of changes of that window's document and of main-window changes, and
/// does nothing while hidden. Views not shown stay alive, parked, and keep their state.
/// Threads: main thread only.
class InspectorController : public QObject {
    Q_OBJECT

public:
    /// How long after the last change of a burst the panel refreshes.
    static constexpr int kRevertDelayMs = 10;

    /// Also becomes the shared controller when none is recorded yet.
    explicit InspectorController(QObject* parent = nullptr);
    ~InspectorController() override;

    /// The application's controller, made on first use and deleted when the application
    /// is about to quit.
    static InspectorController* sharedInspectorController();

    /// Appends an inspector (not owned); asked in registration order, the first that
    /// accepts the selection wins, so registering one twice is harmless. Its help
    /// requests are passed on through helpRequested().
    void registerInspector(Inspector* inspector);

    InspectorPanel* panel() const { return m_panel.get(); }
    bool isPanelVisible() const;
    /// Shows the panel where the user last put it, else beside the document window in
    /// front, and refreshes at once. Only where the user moves it is remembered.
    void showPanel();
    void hidePanel();
    void togglePanel();

    /// Moves of the panel less than this many milliseconds after it was placed, or after
    /// the previous such move, are the placement settling (the window manager, the screen
    /// fit), not the user.
    static constexpr int kPlacementSettleMs = 500;

    /// The view the panel shows now.
    QWidget* shownView() const;
    QWidget* emptySelectionView() const { return m_emptySelectionView; }
    /// The document window whose selection the panel shows: the last normal window that
    /// became active, if it (or a parent of it) is an InspectableWindow; null otherwise.
    QWidget* mainDocumentWindow() const { return m_mainWindow; }

public slots:
    /// Refreshes 0.01 s from now, unless another request comes first.
    void delayedRevert();
    /// Chooses the inspector for the current selection and refreshes it.
    void revert();

signals:
    void panelVisibilityChanged(bool visible);
    void helpRequested(const QString& page);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void observeNotifications();
    void windowActivated(QWidget* window);
    void setMainWindow(QWidget* window);
    /// Undo and Redo of the window in front work while the panel has the keyboard.
    void offerEditActionsOf(InspectableWindow* window);
    void showContentView(QWidget* view);
    void placePanel();
    void panelMoved();

    std::unique_ptr<InspectorPanel> m_panel;
    QPointer<QWidget> m_emptySelectionView;
    // Parking place for views that are not shown; never shown itself.
    std::unique_ptr<QWidget> m_offWin;
    QList<QPointer<Inspector>> m_inspectors;
    QPointer<QWidget> m_mainWindow;
    QList<QPointer<QAction>> m_editActions;
    QMetaObject::Connection m_mainWindowDestroyed;
    Timer m_revertTimer;
    // Runs while moves of the panel are its placement settling rather than the user.
    Timer m_placementSettling;
};

} // namespace plyra
