// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace plyra {

/// Keys of the texts an error carries.
inline constexpr const char* kLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr const char* kLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason";
inline constexpr const char* kLocalizedRecoverySuggestionErrorKey = "NSLocalizedRecoverySuggestion";

/// The domain of movie-framework status codes.
inline constexpr const char* kOSStatusErrorDomain = "NSOSStatusErrorDomain";

using ErrorUserInfo = std::map<std::string, std::string>;

/// An error value: a domain, a signed 32-bit code and texts about it keyed by name.
/// Threads: immutable; share it freely (errors travel as ErrorPtr).
class Error {
public:
    Error(std::string domain, int32_t code, ErrorUserInfo userInfo = {});

    const std::string& domain() const { return m_domain; }
    int32_t code() const { return m_code; }
    const ErrorUserInfo& userInfo() const { return m_userInfo; }

    /// The text under a key, or none.
    std::optional<std::string> userInfoValue(const std::string& key) const;
    std::optional<std::string> localizedDescription() const;
    std::optional<std::string> localizedFailureReason() const;
    std::optional<std::string> localizedRecoverySuggestion() const;

private:
    std::string m_domain;
    int32_t m_code;
    ErrorUserInfo m_userInfo;
};

using ErrorPtr = std::shared_ptr<const Error>;

} // namespace plyra
