// SPDX-License-Identifier: MIT
#pragma once

class QMenuBar;

namespace plyra {

class ApplicationCommands;
class WindowActions;

/// Builds a document window's menu bar (File, Edit, View, Render, Help) from its actions;
/// the Open Recent submenu is filled each time it opens.
/// Threads: main thread only.
void buildMainMenu(QMenuBar* bar, WindowActions& actions, ApplicationCommands& commands);

} // namespace plyra
