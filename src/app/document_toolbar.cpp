// SPDX-License-Identifier: MIT
#include "app/document_toolbar.h"

#include "app/line_color_well.h"
#include "app/window_actions.h"

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>

namespace plyra {
namespace {

struct ItemInfo {
    const char* identifier;
    Command command;
    const char* label;
    const char* paletteLabel;
};

// The labels are the English keys of the "DocumentToolbar" context.
const ItemInfo kItemTable[] = {
    {"togglePreviewDrawer", Command::TogglePreview, QT_TRANSLATE_NOOP("DocumentToolbar", "Preview"), QT_TRANSLATE_NOOP("DocumentToolbar", "Preview")},
    {"inspector", Command::ShowInspector, QT_TRANSLATE_NOOP("DocumentToolbar", "Inspector"), QT_TRANSLATE_NOOP("DocumentToolbar", "Inspector")},
    {"showMorphFrameWindow", Command::RenderImage, QT_TRANSLATE_NOOP("DocumentToolbar", "Render image"), QT_TRANSLATE_NOOP("DocumentToolbar", "Render morph image")},
    {"showMorphMovieWindow", Command::RenderMovie, QT_TRANSLATE_NOOP("DocumentToolbar", "Render movie"), QT_TRANSLATE_NOOP("DocumentToolbar", "Render morph movie")},
    {"addFaceLines", Command::AddFaceLines, QT_TRANSLATE_NOOP("DocumentToolbar", "Face Lines"), QT_TRANSLATE_NOOP("DocumentToolbar", "Add Face Lines")},
    {"zoomIn", Command::ZoomIn, QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom in"), QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom in editor")},
    {"zoomOut", Command::ZoomOut, QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom out"), QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom out editor")},
    {"center", Command::CenterSelection, QT_TRANSLATE_NOOP("DocumentToolbar", "Center"), QT_TRANSLATE_NOOP("DocumentToolbar", "Center selection")},
    {"NSToolbarShowColorsItem", Command::ShowColors, QT_TRANSLATE_NOOP("DocumentToolbar", "Colours"), QT_TRANSLATE_NOOP("DocumentToolbar", "Show Colours")},
};

QString itemText(const char* text)
{
    return QCoreApplication::translate("DocumentToolbar", text);
}

} // namespace

DocumentToolbar::DocumentToolbar(QMainWindow* window, WindowActions& actions)
    : CustomizableToolbar(QLatin1String(kIdentifier), window)
    , m_colorWell(new LineColorWell(window))
{
    setObjectName(QLatin1String(kIdentifier));
    for (const ItemInfo& info : kItemTable) {
        QAction* action = actions.action(info.command);
        addItem(QLatin1String(info.identifier), action, itemText(info.label), itemText(info.paletteLabel));
        action->setToolTip(itemText(info.paletteLabel));
    }
    m_colorWell->setObjectName(QStringLiteral("toolbar.lineColor"));
    addWidgetItem(QLatin1String(kLineColorIdentifier), m_colorWell, itemText(QT_TRANSLATE_NOOP("DocumentToolbar", "line colour")),
        itemText(QT_TRANSLATE_NOOP("DocumentToolbar", "Background colour")));
    window->addToolBar(Qt::TopToolBarArea, this);
    setItemSets(defaultItems(), allowedItems());
}

QStringList DocumentToolbar::defaultItems()
{
    return {QStringLiteral("togglePreviewDrawer"), QStringLiteral("showMorphFrameWindow"), QStringLiteral("showMorphMovieWindow"),
        QStringLiteral("addFaceLines"), QLatin1String(kLineColorIdentifier), QLatin1String(kFlexibleSpace), QStringLiteral("inspector")};
}

QStringList DocumentToolbar::allowedItems()
{
    return {QStringLiteral("togglePreviewDrawer"), QStringLiteral("showMorphFrameWindow"), QStringLiteral("showMorphMovieWindow"),
        QStringLiteral("addFaceLines"), QLatin1String(kLineColorIdentifier), QStringLiteral("zoomIn"), QStringLiteral("zoomOut"), QStringLiteral("center"),
        QStringLiteral("inspector"), QStringLiteral("NSToolbarShowColorsItem"), QLatin1String(kSeparator), QLatin1String(kSpace),
        QLatin1String(kFlexibleSpace)};
}

} // namespace plyra
