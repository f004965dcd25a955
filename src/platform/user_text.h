// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace plyra {

/// Looks a text up in the interface's language; returns the text itself when it has no translation.
using UserTextTranslator = std::string (*)(const char* context, const char* text);

/// Texts of the plain C++ layers that reach the user (reasons a file cannot be read or
/// written). Each is written as userText("Context", "English text with %1"), which the
/// translation tools collect like QCoreApplication::translate(), and is looked up through
/// the translator the application installs (the English text without one).
/// Threads: any thread; install the translator before other threads start.
void setUserTextTranslator(UserTextTranslator translator);
std::string userText(const char* context, const char* text);

/// text with %1 to %9 replaced by the values in order, as QString::arg() does: a
/// translation may place them in another order.
std::string fillIn(std::string_view text, std::initializer_list<std::string_view> values);

} // namespace plyra
