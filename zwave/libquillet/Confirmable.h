// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZResult.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

/// Base of the messages that are answered: the answer is a message of the same class, linked to its request, that
/// carries a result.
class QUILLET_EXPORT Confirmable : public MessageOf<Confirmable, TConfirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    explicit Confirmable(ZResult::Enum result = ZResult::none) : MessageOf(result) {}

    /// A copy of this request that answers it with `result`.
    boost::shared_ptr<Confirmable> makeResponse(ZResult::Enum result) const;

    /// The answer to a request that nobody answered in time.
    boost::shared_ptr<Confirmable> makeTimeoutResponse() const;

private:
    friend MessageOf;
    struct Wire;
};

extern template class MessageOf<Confirmable, TConfirmable>;

} // namespace zorv
