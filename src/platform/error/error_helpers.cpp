// SPDX-License-Identifier: MIT
#include "platform/error/error_helpers.h"

#include "platform/error/string_table.h"
#include "platform/log.h"

#include <cstdarg>

namespace plyra {

const std::string& applicationBundleIdentifier()
{
    static const std::string identifier = "org.plyra.Plyra";
    return identifier;
}

std::string applicationErrorDomain()
{
    return formatString("%s.ErrorDomain", applicationBundleIdentifier().c_str());
}

ErrorUserInfo userInfoForErrorDomain(const std::string& domain, int32_t code)
{
    const std::string stem = formatString("%s.%d", domain.c_str(), code);
    const std::shared_ptr<const StringTable> table = errorsTable();
    ErrorUserInfo userInfo;
    userInfo[kLocalizedDescriptionKey] = table->lookup(formatString("%s.Description", stem.c_str()));
    userInfo[kLocalizedFailureReasonErrorKey] = table->lookup(formatString("%s.FailureReason", stem.c_str()));
    userInfo[kLocalizedRecoverySuggestionErrorKey] =
        table->lookup(formatString("%s.RecoverySuggestion", stem.c_str()));
    return userInfo;
}

ErrorPtr errorWithDomain(const std::string& domain, int32_t code, const ErrorUserInfo& extra)
{
    ErrorUserInfo userInfo = userInfoForErrorDomain(domain, code);
    for (const auto& [key, value] : extra)
        userInfo[key] = value;
    return std::make_shared<const Error>(domain, code, std::move(userInfo));
}

ErrorPtr applicationErrorWithCode(int32_t code, const ErrorUserInfo& extra)
{
    return errorWithDomain(applicationErrorDomain(), code, extra);
}

Exception exceptionWithError(ErrorPtr error, const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string reason = formatStringV(format, args);
    va_end(args);
    return Exception(kGenericException, std::move(reason), std::move(error));
}

void raiseError(ErrorPtr error, const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string reason = formatStringV(format, args);
    va_end(args);
    throw Exception(kGenericException, std::move(reason), std::move(error));
}

void raiseErrorDomain(const std::string& domain, int32_t code, const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string reason = formatStringV(format, args);
    va_end(args);
    throw Exception(domain, std::move(reason), errorWithDomain(domain, code));
}

void raiseOSStatus(int32_t status, const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string reason = formatStringV(format, args);
    va_end(args);
    throw Exception(kGenericException, std::move(reason), errorWithDomain(kOSStatusErrorDomain, status));
}

} // namespace plyra
