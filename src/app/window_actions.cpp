// SPDX-License-Identifier: MIT
#include "app/window_actions.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QKeySequence>
#include <QWidget>

namespace plyra {
namespace {

struct CommandInfo {
    Command command;
    const char* objectName;
    const char* text;
    QKeySequence shortcut;
    // A name from the icon theme, or one of our resources (":/…").
    const char* icon = nullptr;
};

QIcon commandIcon(const char* icon)
{
    const QString name = QLatin1String(icon);
    return name.startsWith(QLatin1Char(':')) ? QIcon(name) : QIcon::fromTheme(name);
}

// Texts are the English keys of the "WindowActions" context.
const std::vector<CommandInfo>& commandTable()
{
    static const std::vector<CommandInfo> table = {
        {Command::NewDocument, "new", QT_TRANSLATE_NOOP("WindowActions", "&New"), QKeySequence::New, "document-new"},
        {Command::Open, "open", QT_TRANSLATE_NOOP("WindowActions", "&Open…"), QKeySequence::Open, "document-open"},
        {Command::ChooseFirstImage, "chooseFirstImage", QT_TRANSLATE_NOOP("WindowActions", "Choose &First Image…"), QKeySequence(), "document-open"},
        {Command::ChooseLastImage, "chooseLastImage", QT_TRANSLATE_NOOP("WindowActions", "Choose &Last Image…"), QKeySequence(), "document-open"},
        {Command::Close, "close", QT_TRANSLATE_NOOP("WindowActions", "&Close"), QKeySequence::Close, "window-close"},
        {Command::Save, "save", QT_TRANSLATE_NOOP("WindowActions", "&Save"), QKeySequence::Save, "document-save"},
        {Command::SaveAs, "saveAs", QT_TRANSLATE_NOOP("WindowActions", "Save &As…"), QKeySequence(QStringLiteral("Ctrl+Shift+S")), "document-save-as"},
        {Command::Revert, "revert", QT_TRANSLATE_NOOP("WindowActions", "Re&vert to Saved"), QKeySequence(), "document-revert"},
        {Command::Quit, "quit", QT_TRANSLATE_NOOP("WindowActions", "&Quit"), QKeySequence::Quit, "application-exit"},
        {Command::Undo, "undo", QT_TRANSLATE_NOOP("WindowActions", "&Undo"), QKeySequence::Undo, "edit-undo"},
        {Command::Redo, "redo", QT_TRANSLATE_NOOP("WindowActions", "&Redo"), QKeySequence::Redo, "edit-redo"},
        {Command::Duplicate, "duplicate", QT_TRANSLATE_NOOP("WindowActions", "Dup&licate"), QKeySequence(QStringLiteral("Ctrl+D")), "edit-copy"},
        {Command::Delete, "delete", QT_TRANSLATE_NOOP("WindowActions", "&Delete"), QKeySequence::Delete, "edit-delete"},
        {Command::SelectAll, "selectAll", QT_TRANSLATE_NOOP("WindowActions", "Select &All"), QKeySequence::SelectAll, "edit-select-all"},
        {Command::SelectNone, "selectNone", QT_TRANSLATE_NOOP("WindowActions", "Select &None"), QKeySequence(QStringLiteral("Ctrl+Shift+A"))},
        {Command::SelectAttached, "selectAttached", QT_TRANSLATE_NOOP("WindowActions", "Select A&ttached Lines"), QKeySequence(QStringLiteral("Ctrl+Shift+E"))},
        {Command::AddFaceLines, "addFaceLines", QT_TRANSLATE_NOOP("WindowActions", "Add &Face Lines"), QKeySequence(), ":/app/icons/facelines.svg"},
        {Command::PredictCounterparts, "predictCounterparts", QT_TRANSLATE_NOOP("WindowActions", "&Predict Counterparts"), QKeySequence()},
        {Command::PlaceSelectionByPrediction, "placeSelectionByPrediction", QT_TRANSLATE_NOOP("WindowActions", "Place Selection by Predi&ction"), QKeySequence()},
        {Command::FlipSelectionHorizontally, "flipSelectionHorizontally", QT_TRANSLATE_NOOP("WindowActions", "Flip Selection &Horizontally"), QKeySequence()},
        {Command::ZoomIn, "zoomIn", QT_TRANSLATE_NOOP("WindowActions", "Zoom &In"), QKeySequence::ZoomIn, ":/app/icons/zoomIn.svg"},
        {Command::ZoomOut, "zoomOut", QT_TRANSLATE_NOOP("WindowActions", "Zoom &Out"), QKeySequence::ZoomOut, ":/app/icons/zoomOut.svg"},
        {Command::ZoomToFit, "zoomToFit", QT_TRANSLATE_NOOP("WindowActions", "Zoom to &Fit"), QKeySequence(QStringLiteral("Ctrl+0")), "zoom-fit-best"},
        {Command::ActualSize, "actualSize", QT_TRANSLATE_NOOP("WindowActions", "&Actual Size"), QKeySequence(QStringLiteral("Ctrl+1")), "zoom-original"},
        {Command::CenterSelection, "centerSelection", QT_TRANSLATE_NOOP("WindowActions", "&Center Selection"), QKeySequence(QStringLiteral("Ctrl+E")), ":/app/icons/center.svg"},
        {Command::TogglePreview, "togglePreview", QT_TRANSLATE_NOOP("WindowActions", "&Preview"), QKeySequence(QStringLiteral("Ctrl+Shift+P")), ":/app/icons/showdrawer.svg"},
        {Command::ToggleInspector, "toggleInspector", QT_TRANSLATE_NOOP("WindowActions", "I&nspector"), QKeySequence(QStringLiteral("Ctrl+I"))},
        {Command::ShowInspector, "showInspector", QT_TRANSLATE_NOOP("WindowActions", "Show &Inspector"), QKeySequence(), ":/app/icons/inspector.svg"},
        {Command::ShowColors, "showColors", QT_TRANSLATE_NOOP("WindowActions", "Show &Colours"), QKeySequence(), ":/app/icons/colors.svg"},
        {Command::CustomizeToolbar, "customizeToolbar", QT_TRANSLATE_NOOP("WindowActions", "Customize &Toolbar…"), QKeySequence()},
        {Command::RenderImage, "renderImage", QT_TRANSLATE_NOOP("WindowActions", "Render &Image…"), QKeySequence(QStringLiteral("Ctrl+R")), ":/app/icons/renderframe.svg"},
        {Command::RenderMovie, "renderMovie", QT_TRANSLATE_NOOP("WindowActions", "Render &Movie…"), QKeySequence(QStringLiteral("Ctrl+Shift+R")), ":/app/icons/rendermovie.svg"},
        {Command::HelpContents, "helpContents", QT_TRANSLATE_NOOP("WindowActions", "Plyra &Help"), QKeySequence::HelpContents, "help-contents"},
        {Command::HelpGettingStarted, "helpGettingStarted", QT_TRANSLATE_NOOP("WindowActions", "&Getting Started"), QKeySequence()},
        {Command::HelpEditors, "helpEditors", QT_TRANSLATE_NOOP("WindowActions", "The Line &Editors"), QKeySequence()},
        {Command::HelpTiming, "helpTiming", QT_TRANSLATE_NOOP("WindowActions", "&Timing"), QKeySequence()},
        {Command::HelpRendering, "helpRendering", QT_TRANSLATE_NOOP("WindowActions", "&Rendering"), QKeySequence()},
        {Command::CheckForUpdates, "checkForUpdates", QT_TRANSLATE_NOOP("WindowActions", "Check for &Updates…"), QKeySequence()},
        {Command::About, "about", QT_TRANSLATE_NOOP("WindowActions", "&About Plyra"), QKeySequence(), "help-about"},
    };
    return table;
}

} // namespace

WindowActions::WindowActions(QWidget* window)
    : QObject(window)
{
    for (const CommandInfo& info : commandTable()) {
        auto* action = new QAction(QCoreApplication::translate("WindowActions", info.text), window);
        action->setObjectName(QLatin1String(info.objectName));
        action->setShortcut(info.shortcut);
        if (info.icon)
            action->setIcon(commandIcon(info.icon));
        // Shortcuts belong to their window: the inspector panel keeps its own keys.
        action->setShortcutContext(Qt::WindowShortcut);
        window->addAction(action);
        m_actions.emplace(info.command, action);
    }
    action(Command::TogglePreview)->setCheckable(true);
    action(Command::ToggleInspector)->setCheckable(true);
    action(Command::Quit)->setMenuRole(QAction::QuitRole);
    action(Command::About)->setMenuRole(QAction::AboutRole);
    // Backspace deletes lines too.
    action(Command::Delete)->setShortcuts({QKeySequence::Delete, QKeySequence(Qt::Key_Backspace)});
}

void WindowActions::setHandler(Command command, std::function<void()> handler)
{
    connect(action(command), &QAction::triggered, this, [handler = std::move(handler)] { handler(); });
}

void WindowActions::setEnabledRule(Command command, std::function<bool()> rule)
{
    m_rules[command] = std::move(rule);
}

void WindowActions::refresh()
{
    for (const auto& [command, rule] : m_rules)
        action(command)->setEnabled(rule());
}

} // namespace plyra
