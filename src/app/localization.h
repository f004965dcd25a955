// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QComboBox;
class QMenu;
class QWidget;

namespace plyra {

/// The context of the application's main string table: texts of interface objects are
/// looked up there by their English text.
inline constexpr const char* kInterfaceContext = "Interface";

/// Looks the text up in the main string table; the text itself when there is no entry.
QString lookUpInterfaceString(const QString& text);
/// The same, but an empty text or one that starts with a decimal digit is returned as
/// it is (numbers in fields stay numbers).
QString localizedInterfaceString(const QString& text);

/// The menu's title and every item's text, then each item's submenu, at any depth.
void localizeMenu(QMenu* menu);
/// The items of a pop-up button.
void localizeMenu(QComboBox* popUp);
/// Every subview first, then the view's tool tip, then its own texts by its kind.
void localizeViewTree(QWidget* view);
/// The window's title and icon text (looked up directly), then its whole view tree.
void localizeWindow(QWidget* window);

} // namespace plyra
