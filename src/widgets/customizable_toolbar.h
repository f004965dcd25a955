// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QToolBar>

#include <map>

namespace plyra {

/// A toolbar whose items are known by identifier. The window registers each item once
/// (one of its actions, or a widget shown above a label) and says which items are
/// allowed and which are shown by default; the toolbar shows the user's own choice and
/// order, kept in the user defaults under "IDENTIFIER/toolbarItems", which the user
/// changes through "Customize Toolbar…" in the toolbar's context menu. What an item does
/// and when it is enabled stay with its action.
/// Threads: main thread only.
class CustomizableToolbar : public QToolBar {
    Q_OBJECT

public:
    static constexpr const char* kFlexibleSpace = "NSToolbarFlexibleSpaceItem";
    static constexpr const char* kSpace = "NSToolbarSpaceItem";
    static constexpr const char* kSeparator = "NSToolbarSeparatorItem";

    struct Item {
        QString identifier;
        /// Shown under the item's icon or widget.
        QString label;
        /// The item's name in the customize dialog.
        QString paletteLabel;
        QAction* action = nullptr;
    };

    CustomizableToolbar(const QString& identifier, QWidget* parent);

    QString identifier() const { return m_identifier; }

    /// Registers an action as an item; its icon text becomes the label.
    void addItem(const QString& identifier, QAction* action, const QString& label, const QString& paletteLabel);
    /// Registers a widget, shown above its label; answers the action that carries it.
    QAction* addWidgetItem(const QString& identifier, QWidget* widget, const QString& label, const QString& paletteLabel);
    /// The registered item, or null.
    const Item* item(const QString& identifier) const;
    /// The action of the item shown under that identifier, or null.
    QAction* itemWithIdentifier(const QString& identifier) const;

    /// Sets the allowed and the default items (registered ones, spaces and separators),
    /// then shows the user's stored arrangement, or the default one.
    void setItemSets(const QStringList& defaults, const QStringList& allowed);
    QStringList defaultItemIdentifiers() const { return m_defaults; }
    QStringList allowedItemIdentifiers() const { return m_allowed; }

    /// The identifiers shown now, in order.
    QStringList shownIdentifiers() const { return m_shown; }
    /// Shows these items (those not allowed are left out) and remembers the arrangement.
    void setShownIdentifiers(const QStringList& identifiers);
    /// Lets the user choose and order the items.
    void customize();

private:
    void rebuild();
    QString settingsKey() const;
    QString paletteLabel(const QString& identifier) const;
    QAction* spacer(const QString& identifier);

    QString m_identifier;
    std::map<QString, Item> m_items;
    QStringList m_defaults;
    QStringList m_allowed;
    QStringList m_shown;
    // The spaces and separators of the arrangement shown now.
    QList<QAction*> m_spacers;
};

} // namespace plyra
