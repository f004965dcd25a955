// SPDX-License-Identifier: MIT
#pragma once

#include "platform/error/error.h"
#include "platform/error/exception.h"

#include <cstdint>
#include <string>

namespace plyra {

/// The application's bundle identifier, "org.plyra.Plyra".
const std::string& applicationBundleIdentifier();
/// The application's own error domain: the bundle identifier and ".ErrorDomain".
std::string applicationErrorDomain();

/// The texts of an error looked up in the "Errors" table under "<domain>.<code>.Description",
/// ".FailureReason" and ".RecoverySuggestion"; a text missing from the table is its key.
ErrorUserInfo userInfoForErrorDomain(const std::string& domain, int32_t code);
/// A new error with the looked-up texts; entries of `extra` are added on top and win.
ErrorPtr errorWithDomain(const std::string& domain, int32_t code, const ErrorUserInfo& extra = {});
/// The same in the application's own error domain.
ErrorPtr applicationErrorWithCode(int32_t code, const ErrorUserInfo& extra = {});

/// A generic exception carrying `error`, with the formatted reason (printf formats).
Exception exceptionWithError(ErrorPtr error, const char* format, ...) __attribute__((format(printf, 2, 3)));
/// Throws exceptionWithError(error, format, ...).
[[noreturn]] void raiseError(ErrorPtr error, const char* format, ...) __attribute__((format(printf, 2, 3)));
/// Throws an exception named after the domain, carrying a new error of that domain and code.
[[noreturn]] void raiseErrorDomain(const std::string& domain, int32_t code, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
/// Throws a generic exception carrying a new error of the status-code domain.
[[noreturn]] void raiseOSStatus(int32_t status, const char* format, ...) __attribute__((format(printf, 2, 3)));

} // namespace plyra
