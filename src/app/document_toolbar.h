// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/customizable_toolbar.h"

#include <QStringList>

class QMainWindow;

namespace plyra {

class LineColorWell;
class WindowActions;

/// The toolbar of a document window: which of the window's actions it offers, under
/// which labels, which are shown by default and which may be added, and the line
/// colour well. What the items do and when they are enabled belong to the window's
/// actions, which the menus share.
/// Threads: main thread only.
class DocumentToolbar : public CustomizableToolbar {
    Q_OBJECT

public:
    /// The identifier the user's arrangement is kept under.
    static constexpr const char* kIdentifier = "MorphEditorWindowController";
    static constexpr const char* kLineColorIdentifier = "lineColor";

    DocumentToolbar(QMainWindow* window, WindowActions& actions);

    static QStringList defaultItems();
    static QStringList allowedItems();

    LineColorWell* lineColorWell() const { return m_colorWell; }

private:
    LineColorWell* m_colorWell;
};

} // namespace plyra
