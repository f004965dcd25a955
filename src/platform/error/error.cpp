// SPDX-License-Identifier: MIT
#include "platform/error/error.h"

namespace plyra {

Error::Error(std::string domain, int32_t code, ErrorUserInfo userInfo)
    : m_domain(std::move(domain))
    , m_code(code)
    , m_userInfo(std::move(userInfo))
{
}

std::optional<std::string> Error::userInfoValue(const std::string& key) const
{
    const auto found = m_userInfo.find(key);
    if (found == m_userInfo.end())
        return std::nullopt;
    return found->second;
}

std::optional<std::string> Error::localizedDescription() const
{
    return userInfoValue(kLocalizedDescriptionKey);
}

std::optional<std::string> Error::localizedFailureReason() const
{
    return userInfoValue(kLocalizedFailureReasonErrorKey);
}

std::optional<std::string> Error::localizedRecoverySuggestion() const
{
    return userInfoValue(kLocalizedRecoverySuggestionErrorKey);
}

} // namespace plyra
