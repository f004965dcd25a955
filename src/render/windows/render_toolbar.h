// SPDX-License-Identifier: MIT
#pragma once

#include <QToolBar>

namespace plyra {

class ProgressPie;

/// The toolbar of a render window: items found by their identifier ("progressIndicator",
/// "save", "showInfo" and those a window adds), shown with their labels under them, and
/// enabled by the render's progress.
/// Threads: main thread.
class RenderToolbar : public QToolBar {
    Q_OBJECT

public:
    static constexpr auto kProgressIdentifier = "progressIndicator";
    static constexpr auto kSaveIdentifier = "save";
    static constexpr auto kSettingsIdentifier = "showInfo";

    explicit RenderToolbar(QWidget* parent = nullptr);

    /// Appends a button item; the action's object name becomes its identifier.
    QAction* addItem(const QString& identifier, QAction* action);
    /// Appends an item showing a widget above its label.
    QAction* addWidgetItem(const QString& identifier, const QString& label, QWidget* widget);
    /// The item with that identifier, or null.
    QAction* itemWithIdentifier(const QString& identifier) const;
    /// The identifiers of the items in their order.
    QStringList itemIdentifiers() const;

    ProgressPie* progressIndicator() const { return m_progress; }
    /// Save is enabled only for a complete result; the indicator shows the progress and is
    /// enabled while the render runs.
    void validate(float progress);

private:
    ProgressPie* m_progress = nullptr;
};

} // namespace plyra
