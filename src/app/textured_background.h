// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

class QMainWindow;
class QWidget;

namespace plyra {

/// The textured window background that the user default "texturedWindows" (true unless
/// the user says no) chooses for document windows: brushed metal in the shade of the
/// window colour, the same in every window; menu and tool bars stay solid.
/// Threads: main thread only.
class TexturedBackground {
public:
    static void registerDefault();
    /// Gives the window the texture when the user default asks for it, keeping the bars
    /// solid; answers whether it did.
    static bool apply(QMainWindow& window, const QList<QWidget*>& bars);
};

} // namespace plyra
