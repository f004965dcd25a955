// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>
#include <map>

class QAction;
class QWidget;

namespace plyra {

/// Every command of a document window, in its menus, its toolbar or both.
enum class Command {
    NewDocument, Open, ChooseFirstImage, ChooseLastImage, Close, Save, SaveAs, Revert, Quit,
    Undo, Redo, Duplicate, Delete, SelectAll, SelectNone, SelectAttached, AddFaceLines,
    PredictCounterparts, PlaceSelectionByPrediction, FlipSelectionHorizontally,
    ZoomIn, ZoomOut, ZoomToFit, ActualSize, CenterSelection, TogglePreview, ToggleInspector, ShowInspector, ShowColors, CustomizeToolbar,
    RenderImage, RenderMovie,
    HelpContents, HelpGettingStarted, HelpEditors, HelpTiming, HelpRendering, CheckForUpdates, About,
};

/// The table of a window's actions: one QAction per command, with its text, standard
/// shortcut and icon in one place, what it does, and the rule that enables it. Menus and
/// the toolbar show these very actions (the toolbar adds only its labels), so that both
/// always agree; refresh() applies every rule.
/// Threads: main thread only.
class WindowActions : public QObject {
    Q_OBJECT

public:
    explicit WindowActions(QWidget* window);

    QAction* action(Command command) const { return m_actions.at(command); }
    void setHandler(Command command, std::function<void()> handler);
    void setEnabledRule(Command command, std::function<bool()> rule);
    /// Enables each action by its rule (actions without a rule stay enabled).
    void refresh();

private:
    std::map<Command, QAction*> m_actions;
    std::map<Command, std::function<bool()>> m_rules;
};

} // namespace plyra
