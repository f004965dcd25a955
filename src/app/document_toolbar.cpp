// SPDX-License-Identifier: MIT
#include "app/document_toolbar.h"

#include "app/line_color_well.h"
#include "app/toolbar_customize_dialog.h"
#include "platform/qt/user_defaults.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>
#include <QMainWindow>
#include <QMenu>
#include <QSizePolicy>
#include <QToolBar>
#include <QWidgetAction>

namespace plyra {
namespace {

const QString kLineColor = QStringLiteral("lineColor");
const QString kShowColors = QStringLiteral("NSToolbarShowColorsItem");

struct ItemInfo {
    const char* identifier;
    const char* label;
    const char* paletteLabel;
    const char* icon;
};

// The labels are the English keys of the "DocumentToolbar" context.
const ItemInfo kItemTable[] = {
    {"togglePreviewDrawer", QT_TRANSLATE_NOOP("DocumentToolbar", "Preview"), QT_TRANSLATE_NOOP("DocumentToolbar", "Preview"), "showdrawer"},
    {"inspector", QT_TRANSLATE_NOOP("DocumentToolbar", "Inspector"), QT_TRANSLATE_NOOP("DocumentToolbar", "Inspector"), "inspector"},
    {"showMorphFrameWindow", QT_TRANSLATE_NOOP("DocumentToolbar", "Render image"), QT_TRANSLATE_NOOP("DocumentToolbar", "Render morph image"), "renderframe"},
    {"showMorphMovieWindow", QT_TRANSLATE_NOOP("DocumentToolbar", "Render movie"), QT_TRANSLATE_NOOP("DocumentToolbar", "Render morph movie"), "rendermovie"},
    {"zoomIn", QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom in"), QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom in editor"), "zoomIn"},
    {"zoomOut", QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom out"), QT_TRANSLATE_NOOP("DocumentToolbar", "Zoom out editor"), "zoomOut"},
    {"center", QT_TRANSLATE_NOOP("DocumentToolbar", "Center"), QT_TRANSLATE_NOOP("DocumentToolbar", "Center selection"), "center"},
    {"lineColor", QT_TRANSLATE_NOOP("DocumentToolbar", "line colour"), QT_TRANSLATE_NOOP("DocumentToolbar", "Background colour"), nullptr},
    {"NSToolbarShowColorsItem", QT_TRANSLATE_NOOP("DocumentToolbar", "Colours"), QT_TRANSLATE_NOOP("DocumentToolbar", "Show Colours"), "colors"},
};

QString itemText(const char* text)
{
    return QCoreApplication::translate("DocumentToolbar", text);
}

QString settingsKey()
{
    return QStringLiteral("%1/toolbarItems").arg(QLatin1String(DocumentToolbar::kIdentifier));
}

// The well over its label, as the other items show their icon over theirs.
QWidget* labelledWell(LineColorWell* well, const QString& label)
{
    auto* item = new QWidget;
    auto* layout = new QVBoxLayout(item);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(0);
    layout->addWidget(well, 0, Qt::AlignHCenter);
    auto* text = new QLabel(label, item);
    text->setAlignment(Qt::AlignHCenter);
    layout->addWidget(text);
    return item;
}

QWidgetAction* spaceAction(QObject* owner, bool flexible)
{
    auto* spacer = new QWidget;
    if (flexible)
        spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    else
        spacer->setFixedWidth(16);
    auto* action = new QWidgetAction(owner);
    action->setDefaultWidget(spacer);
    return action;
}

} // namespace

DocumentToolbar::DocumentToolbar(QMainWindow* window)
    : QObject(window)
    , m_toolBar(new QToolBar(tr("Toolbar"), window))
    , m_colorWell(new LineColorWell(window))
{
    m_toolBar->setObjectName(QLatin1String(kIdentifier));
    m_toolBar->setAccessibleName(tr("Toolbar"));
    m_toolBar->setMovable(false);
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_toolBar->setIconSize(QSize(24, 24));
    m_toolBar->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_toolBar, &QToolBar::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(m_toolBar);
        menu.addAction(tr("Customize Toolbar…"), this, &DocumentToolbar::customize);
        menu.exec(m_toolBar->mapToGlobal(at));
    });
    window->addToolBar(Qt::TopToolBarArea, m_toolBar);
    m_colorWellAction = new QWidgetAction(this);
    m_colorWellAction->setDefaultWidget(labelledWell(m_colorWell, itemText(QT_TRANSLATE_NOOP("DocumentToolbar", "line colour"))));
    makeItems(window);

    QStringList stored = UserDefaults::standard().object(settingsKey()).toStringList();
    setShownIdentifiers(stored.isEmpty() ? defaultItemIdentifiers() : stored);
}

QStringList DocumentToolbar::defaultItemIdentifiers()
{
    return {QStringLiteral("togglePreviewDrawer"), QStringLiteral("showMorphFrameWindow"), QStringLiteral("showMorphMovieWindow"),
        kLineColor, QLatin1String(kFlexibleSpace), QStringLiteral("inspector")};
}

QStringList DocumentToolbar::allowedItemIdentifiers()
{
    return {QStringLiteral("togglePreviewDrawer"), QStringLiteral("showMorphFrameWindow"), QStringLiteral("showMorphMovieWindow"),
        kLineColor, QStringLiteral("zoomIn"), QStringLiteral("zoomOut"), QStringLiteral("center"), QStringLiteral("inspector"),
        kShowColors, QLatin1String(kSeparator), QLatin1String(kSpace), QLatin1String(kFlexibleSpace)};
}

void DocumentToolbar::makeItems(QMainWindow* window)
{
    for (const ItemInfo& info : kItemTable) {
        Item item;
        item.identifier = QLatin1String(info.identifier);
        item.label = itemText(info.label);
        item.paletteLabel = itemText(info.paletteLabel);
        if (info.icon) {
            item.action = new QAction(QIcon(QStringLiteral(":/app/icons/%1.svg").arg(QLatin1String(info.icon))), item.label, window);
            item.action->setObjectName(QStringLiteral("toolbar.%1").arg(item.identifier));
            item.action->setToolTip(item.paletteLabel);
        }
        m_items.emplace(item.identifier, item);
    }
    m_colorWell->setObjectName(QStringLiteral("toolbar.lineColor"));
    connect(m_items.at(kShowColors).action, &QAction::triggered, m_colorWell, &QToolButton::click);
}

const DocumentToolbar::Item* DocumentToolbar::item(const QString& identifier) const
{
    const auto it = m_items.find(identifier);
    return it == m_items.end() ? nullptr : &it->second;
}

void DocumentToolbar::setHandler(const QString& identifier, std::function<void()> handler)
{
    if (const Item* found = item(identifier); found && found->action)
        connect(found->action, &QAction::triggered, this, [handler = std::move(handler)] { handler(); });
}

void DocumentToolbar::setEnabledRule(const QString& identifier, std::function<bool()> rule)
{
    m_rules[identifier] = std::move(rule);
}

void DocumentToolbar::validate()
{
    for (const auto& [identifier, rule] : m_rules)
        if (const Item* found = item(identifier); found && found->action)
            found->action->setEnabled(rule());
}

void DocumentToolbar::setShownIdentifiers(const QStringList& identifiers)
{
    const QStringList allowed = allowedItemIdentifiers();
    m_shown.clear();
    for (const QString& identifier : identifiers)
        if (allowed.contains(identifier))
            m_shown.append(identifier);
    if (m_shown == defaultItemIdentifiers())
        UserDefaults::standard().remove(settingsKey());
    else
        UserDefaults::standard().setObject(settingsKey(), m_shown);
    rebuild();
}

void DocumentToolbar::rebuild()
{
    m_toolBar->clear();
    qDeleteAll(m_spaceActions);
    m_spaceActions.clear();
    for (const QString& identifier : m_shown) {
        if (identifier == QLatin1String(kFlexibleSpace) || identifier == QLatin1String(kSpace)) {
            m_spaceActions.append(spaceAction(this, identifier == QLatin1String(kFlexibleSpace)));
            m_toolBar->addAction(m_spaceActions.constLast());
        } else if (identifier == QLatin1String(kSeparator)) {
            m_toolBar->addSeparator();
        } else if (identifier == kLineColor) {
            m_toolBar->addAction(m_colorWellAction);
        } else {
            m_toolBar->addAction(m_items.at(identifier).action);
        }
    }
}

void DocumentToolbar::customize()
{
    ToolbarCustomizeDialog dialog(m_toolBar->window());
    QList<ToolbarCustomizeDialog::Entry> entries;
    for (const QString& identifier : allowedItemIdentifiers()) {
        QString label;
        if (identifier == QLatin1String(kFlexibleSpace))
            label = tr("Flexible Space");
        else if (identifier == QLatin1String(kSpace))
            label = tr("Space");
        else if (identifier == QLatin1String(kSeparator))
            label = tr("Separator");
        else
            label = m_items.at(identifier).paletteLabel;
        entries.append({identifier, label});
    }
    dialog.setEntries(entries, m_shown, defaultItemIdentifiers());
    if (dialog.exec() == QDialog::Accepted)
        setShownIdentifiers(dialog.chosenIdentifiers());
}

} // namespace plyra
