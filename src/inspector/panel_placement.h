// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace plyra {

/// Where the inspector panel opens: where the user last put it (kept in the user
/// defaults), else beside the document window, never over its editors when the screen
/// has room on either side.
/// Threads: main thread only.
class PanelPlacement {
public:
    /// The panel's top-left corner for a document window's frame: right of it when the
    /// panel fits there, else left of it, else at the right edge of the screen.
    static QPoint besideWindow(const QRect& windowFrame, QSize panelSize, const QRect& available);
    /// The remembered position, when it still lies on the screen (at least partly).
    static std::optional<QPoint> remembered(QSize panelSize, const QRect& available);
    static void remember(QPoint position);
};

} // namespace plyra
