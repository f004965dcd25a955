// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QList>
#include <QString>
#include <QStringList>

class QListWidget;

namespace plyra {

/// Lets the user choose which of the allowed toolbar items are shown, and in which
/// order, or go back to the default set.
/// Threads: main thread only.
class ToolbarCustomizeDialog : public QDialog {
    Q_OBJECT

public:
    struct Entry {
        QString identifier;
        QString label;
    };

    explicit ToolbarCustomizeDialog(QWidget* parent = nullptr);

    /// The allowed items, those shown now (in their order) and the default set.
    void setEntries(const QList<Entry>& allowed, const QStringList& shown, const QStringList& defaults);
    /// The checked items, top to bottom.
    QStringList chosenIdentifiers() const;

private:
    void fill(const QStringList& shown);
    void moveCurrent(int by);

    QListWidget* m_list;
    QList<Entry> m_allowed;
    QStringList m_defaults;
};

} // namespace plyra
