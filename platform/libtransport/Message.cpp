// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Message.h"

#include "platform/libzorvlogger/StackTrace.h"

#include <typeinfo>

namespace zorv {

std::string Message::name() const {
    auto const fullName = StackTrace::demangle(typeid(*this).name());
    auto const scopeEnd = fullName.rfind("::");
    return scopeEnd == std::string::npos ? fullName : fullName.substr(scopeEnd + 2);
}

} // namespace zorv
