// SPDX-License-Identifier: MIT
#include "platform/user_text.h"

#include <atomic>
#include <vector>

namespace plyra {
namespace {

std::atomic<UserTextTranslator> g_translator{nullptr};

} // namespace

void setUserTextTranslator(UserTextTranslator translator)
{
    g_translator.store(translator);
}

std::string userText(const char* context, const char* text)
{
    const UserTextTranslator translator = g_translator.load();
    return translator ? translator(context, text) : std::string(text);
}

std::string fillIn(std::string_view text, std::initializer_list<std::string_view> values)
{
    const std::vector<std::string_view> list(values);
    std::string result;
    result.reserve(text.size() + 64);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool marker = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
        const std::size_t index = marker ? static_cast<std::size_t>(text[i + 1] - '1') : list.size();
        if (index < list.size()) {
            result += list[index];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace plyra
