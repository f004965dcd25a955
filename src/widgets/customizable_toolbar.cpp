// SPDX-License-Identifier: MIT
#include "widgets/customizable_toolbar.h"

#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"
#include "widgets/toolbar_customize_dialog.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>
#include <QWidgetAction>

namespace plyra {
namespace {

bool isSpace(const QString& identifier)
{
    return identifier == QLatin1String(CustomizableToolbar::kFlexibleSpace)
        || identifier == QLatin1String(CustomizableToolbar::kSpace);
}

bool isSpacer(const QString& identifier)
{
    return isSpace(identifier) || identifier == QLatin1String(CustomizableToolbar::kSeparator);
}

// A widget has no label of its own in a toolbar: one goes under it, as buttons have.
QWidget* labelledWidget(QWidget* widget, const QString& label)
{
    auto* item = new QWidget;
    auto* layout = new QVBoxLayout(item);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(2);
    // A widget that may grow (a slider) takes the item's width; others sit in its middle.
    const bool grows = widget->sizePolicy().horizontalPolicy() & QSizePolicy::ExpandFlag;
    layout->addWidget(widget, 0, grows ? Qt::Alignment() : Qt::AlignHCenter);
    auto* caption = new QLabel(label, item);
    caption->setAlignment(Qt::AlignHCenter);
    caption->setBuddy(widget);
    layout->addWidget(caption);
    return item;
}

} // namespace

CustomizableToolbar::CustomizableToolbar(const QString& identifier, QWidget* parent)
    : QToolBar(parent)
    , m_identifier(identifier)
{
    setWindowTitle(tr("Toolbar"));
    setAccessibleName(tr("Toolbar"));
    setMovable(false);
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setIconSize({24, 24});
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QToolBar::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(this);
        menu.addAction(tr("Customize Toolbar…"), this, &CustomizableToolbar::customize);
        menu.exec(mapToGlobal(at));
    });
}

void CustomizableToolbar::addItem(const QString& identifier, QAction* action, const QString& label, const QString& paletteLabel)
{
    action->setIconText(label);
    m_items.insert_or_assign(identifier, Item{identifier, label, paletteLabel, action});
}

QAction* CustomizableToolbar::addWidgetItem(const QString& identifier, QWidget* widget, const QString& label, const QString& paletteLabel)
{
    auto* action = new QWidgetAction(this);
    action->setText(label);
    action->setDefaultWidget(labelledWidget(widget, label));
    m_items.insert_or_assign(identifier, Item{identifier, label, paletteLabel, action});
    return action;
}

const CustomizableToolbar::Item* CustomizableToolbar::item(const QString& identifier) const
{
    const auto it = m_items.find(identifier);
    return it == m_items.end() ? nullptr : &it->second;
}

QAction* CustomizableToolbar::itemWithIdentifier(const QString& identifier) const
{
    const Item* found = m_shown.contains(identifier) ? item(identifier) : nullptr;
    return found ? found->action : nullptr;
}

QString CustomizableToolbar::settingsKey() const
{
    return QLatin1String(DefaultsKey::kToolbarItems).arg(m_identifier);
}

void CustomizableToolbar::setItemSets(const QStringList& defaults, const QStringList& allowed)
{
    m_defaults = defaults;
    m_allowed = allowed;
    const QStringList stored = UserDefaults::standard().object(settingsKey()).toStringList();
    setShownIdentifiers(stored.isEmpty() ? defaults : stored);
}

void CustomizableToolbar::setShownIdentifiers(const QStringList& identifiers)
{
    m_shown.clear();
    for (const QString& identifier : identifiers)
        if (m_allowed.contains(identifier) && (isSpacer(identifier) || item(identifier)))
            m_shown.append(identifier);
    if (m_shown == m_defaults)
        UserDefaults::standard().remove(settingsKey());
    else
        UserDefaults::standard().setObject(settingsKey(), m_shown);
    rebuild();
}

QAction* CustomizableToolbar::spacer(const QString& identifier)
{
    if (identifier == QLatin1String(kSeparator)) {
        auto* separator = new QAction(this);
        separator->setSeparator(true);
        return separator;
    }
    auto* space = new QWidget;
    if (identifier == QLatin1String(kFlexibleSpace))
        space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    else
        space->setFixedWidth(16);
    auto* action = new QWidgetAction(this);
    action->setDefaultWidget(space);
    return action;
}

void CustomizableToolbar::rebuild()
{
    clear();
    qDeleteAll(m_spacers);
    m_spacers.clear();
    for (const QString& identifier : std::as_const(m_shown)) {
        if (isSpacer(identifier)) {
            m_spacers.append(spacer(identifier));
            addAction(m_spacers.constLast());
        } else {
            addAction(m_items.at(identifier).action);
        }
    }
}

QString CustomizableToolbar::paletteLabel(const QString& identifier) const
{
    if (identifier == QLatin1String(kFlexibleSpace))
        return tr("Flexible Space");
    if (identifier == QLatin1String(kSpace))
        return tr("Space");
    if (identifier == QLatin1String(kSeparator))
        return tr("Separator");
    const Item* found = item(identifier);
    return found ? found->paletteLabel : identifier;
}

void CustomizableToolbar::customize()
{
    ToolbarCustomizeDialog dialog(window());
    QList<ToolbarCustomizeDialog::Entry> entries;
    for (const QString& identifier : std::as_const(m_allowed))
        entries.append({identifier, paletteLabel(identifier)});
    dialog.setEntries(entries, m_shown, m_defaults);
    if (dialog.exec() == QDialog::Accepted)
        setShownIdentifiers(dialog.chosenIdentifiers());
}

} // namespace plyra
