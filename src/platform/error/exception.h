// SPDX-License-Identifier: MIT
#pragma once

#include "platform/error/error.h"

#include <exception>
#include <string>

namespace plyra {

/// Names of exceptions.
inline constexpr const char* kGenericException = "NSGenericException";
inline constexpr const char* kInternalInconsistencyException = "NSInternalInconsistencyException";

/// An exception with a name, a reason and, optionally, the error that caused it.
/// Threads: immutable once thrown.
class Exception : public std::exception {
public:
    Exception(std::string name, std::string reason, ErrorPtr error = nullptr);

    /// An internal-inconsistency exception that names where it was raised, optionally
    /// carrying the error behind it.
    static Exception internalInconsistency(std::string reason, const char* function, const char* file, int line,
                                           ErrorPtr error = nullptr);

    const std::string& name() const { return m_name; }
    const std::string& reason() const { return m_reason; }
    /// The error attached to the exception, or null.
    const ErrorPtr& error() const { return m_error; }
    /// Where an internal inconsistency was found ("function, file:line"); empty otherwise.
    const std::string& location() const { return m_location; }

    const char* what() const noexcept override { return m_reason.c_str(); }

private:
    std::string m_name;
    std::string m_reason;
    ErrorPtr m_error;
    std::string m_location;
};

} // namespace plyra
