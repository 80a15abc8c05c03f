// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

/// Tells the receiver to end. Nobody answers it.
class QUILLET_EXPORT QuitMsg : public MessageOf<QuitMsg, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

private:
    friend MessageOf;
    struct Wire;
};

extern template class MessageOf<QuitMsg, TMessage>;

} // namespace zorv
