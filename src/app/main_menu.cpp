// SPDX-License-Identifier: MIT
#include "app/main_menu.h"

#include "app/application_commands.h"
#include "app/window_actions.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

namespace plyra {
namespace {

QString menuText(const char* text)
{
    return QCoreApplication::translate("MainMenu", text);
}

void fillRecentMenu(QMenu* menu, ApplicationCommands& commands)
{
    menu->clear();
    const QStringList paths = commands.recentDocuments();
    for (const QString& path : paths) {
        QAction* item = menu->addAction(QFileInfo(path).fileName(), menu, [&commands, path] { commands.openRecentDocument(path); });
        item->setToolTip(path);
    }
    if (paths.isEmpty())
        menu->addAction(menuText(QT_TRANSLATE_NOOP("MainMenu", "No Recent Documents")))->setEnabled(false);
    menu->addSeparator();
    menu->addAction(menuText(QT_TRANSLATE_NOOP("MainMenu", "Clear Menu")), menu, [&commands] { commands.clearRecentDocuments(); })->setEnabled(!paths.isEmpty());
}

void addActions(QMenu* menu, WindowActions& actions, std::initializer_list<Command> commands)
{
    for (Command command : commands)
        menu->addAction(actions.action(command));
}

} // namespace

void buildMainMenu(QMenuBar* bar, WindowActions& actions, ApplicationCommands& commands)
{
    QMenu* file = bar->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "&File")));
    file->setObjectName(QStringLiteral("fileMenu"));
    addActions(file, actions, {Command::NewDocument, Command::Open});
    QMenu* recent = file->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "Open &Recent")));
    recent->setObjectName(QStringLiteral("recentMenu"));
    QObject::connect(recent, &QMenu::aboutToShow, recent, [recent, &commands] { fillRecentMenu(recent, commands); });
    fillRecentMenu(recent, commands);
    file->addSeparator();
    addActions(file, actions, {Command::ChooseFirstImage, Command::ChooseLastImage});
    file->addSeparator();
    addActions(file, actions, {Command::Close, Command::Save, Command::SaveAs, Command::Revert});
    file->addSeparator();
    addActions(file, actions, {Command::Quit});

    QMenu* edit = bar->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "&Edit")));
    edit->setObjectName(QStringLiteral("editMenu"));
    addActions(edit, actions, {Command::Undo, Command::Redo});
    edit->addSeparator();
    addActions(edit, actions, {Command::Duplicate, Command::Delete, Command::SelectAll, Command::SelectNone, Command::SelectAttached});
    edit->addSeparator();
    addActions(edit, actions, {Command::AddFaceLines});
    addActions(edit, actions, {Command::PredictCounterparts, Command::PlaceSelectionByPrediction,
        Command::FlipSelectionHorizontally});

    QMenu* view = bar->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "&View")));
    view->setObjectName(QStringLiteral("viewMenu"));
    addActions(view, actions, {Command::ZoomIn, Command::ZoomOut, Command::ZoomToFit, Command::ActualSize, Command::CenterSelection});
    view->addSeparator();
    addActions(view, actions, {Command::TogglePreview, Command::ToggleInspector});
    view->addSeparator();
    addActions(view, actions, {Command::CustomizeToolbar});

    QMenu* render = bar->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "&Render")));
    render->setObjectName(QStringLiteral("renderMenu"));
    addActions(render, actions, {Command::RenderImage, Command::RenderMovie});

    QMenu* help = bar->addMenu(menuText(QT_TRANSLATE_NOOP("MainMenu", "&Help")));
    help->setObjectName(QStringLiteral("helpMenu"));
    addActions(help, actions, {Command::HelpContents, Command::HelpGettingStarted, Command::HelpEditors, Command::HelpTiming, Command::HelpRendering});
    help->addSeparator();
    addActions(help, actions, {Command::CheckForUpdates, Command::About});

    // Items are enabled by the rules of the moment they are seen.
    for (QMenu* menu : {file, edit, view, render, help})
        QObject::connect(menu, &QMenu::aboutToShow, &actions, &WindowActions::refresh);
}

} // namespace plyra
