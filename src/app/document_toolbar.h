// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>

class QAction;
class QMainWindow;
class QToolBar;
class QWidgetAction;

namespace plyra {

class LineColorWell;

/// The toolbar of a document window: its items with their labels, palette labels and
/// icons, the default and the allowed sets, the user's own arrangement (kept in the
/// user defaults under the toolbar's identifier), and the rules that enable the items.
/// Threads: main thread only.
class DocumentToolbar : public QObject {
    Q_OBJECT

public:
    static constexpr const char* kIdentifier = "MorphEditorWindowController";
    static constexpr const char* kFlexibleSpace = "NSToolbarFlexibleSpaceItem";
    static constexpr const char* kSpace = "NSToolbarSpaceItem";
    static constexpr const char* kSeparator = "NSToolbarSeparatorItem";

    struct Item {
        QString identifier;
        QString label;
        QString paletteLabel;
        QAction* action = nullptr; // null for the colour well and the spaces
    };

    explicit DocumentToolbar(QMainWindow* window);

    static QStringList defaultItemIdentifiers();
    static QStringList allowedItemIdentifiers();
    /// The item of an identifier; null for an unknown one. Items are made once.
    const Item* item(const QString& identifier) const;

    QToolBar* toolBar() const { return m_toolBar; }
    LineColorWell* lineColorWell() const { return m_colorWell; }
    /// What each item does (by identifier) and when it is enabled.
    void setHandler(const QString& identifier, std::function<void()> handler);
    void setEnabledRule(const QString& identifier, std::function<bool()> rule);
    void validate();

    /// The identifiers shown now, in order.
    QStringList shownIdentifiers() const { return m_shown; }
    /// Shows these items (unknown ones are left out) and remembers the arrangement.
    void setShownIdentifiers(const QStringList& identifiers);
    /// Lets the user choose and order the items.
    void customize();

private:
    void makeItems(QMainWindow* window);
    void rebuild();

    QToolBar* m_toolBar;
    LineColorWell* m_colorWell;
    QWidgetAction* m_colorWellAction;
    QList<QWidgetAction*> m_spaceActions;
    std::map<QString, Item> m_items;
    std::map<QString, std::function<bool()>> m_rules;
    QStringList m_shown;
};

} // namespace plyra
