// SPDX-License-Identifier: MIT
#include "platform/error/exception.h"

#include "platform/log.h"

namespace plyra {

Exception::Exception(std::string name, std::string reason, ErrorPtr error)
    : m_name(std::move(name))
    , m_reason(std::move(reason))
    , m_error(std::move(error))
{
}

Exception Exception::internalInconsistency(std::string reason, const char* function, const char* file, int line,
                                           ErrorPtr error)
{
    Exception exception(kInternalInconsistencyException, std::move(reason), std::move(error));
    exception.m_location = formatString("%s, %s:%d", function, file, line);
    return exception;
}

} // namespace plyra
