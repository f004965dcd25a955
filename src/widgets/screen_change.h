// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QWidget;

namespace plyra {

/// Calls changed, with the widget's new device pixel ratio in effect, whenever the window
/// that holds the widget moves to another screen, which may have another scale: what is
/// drawn or computed in device pixels must follow. It watches from the widget's first
/// show on, and follows the widget into another window (a dock made floating).
/// Threads: main thread only.
void followScreenChanges(QWidget* widget, std::function<void()> changed);

} // namespace plyra
