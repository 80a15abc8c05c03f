// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TConfirmable.h"

#include "platform/libtransport/tables/MemberTable.h"

#include <boost/make_shared.hpp>

namespace zorv {

struct TConfirmable::Wire {
    static constexpr auto members = std::make_tuple(member<&TConfirmable::result_>("outcome of the request"));
};

void TConfirmable::serialInserter(Serializer& s) const { insertFrame<TMessage>(s, serialName(), *this, Wire::members); }

void TConfirmable::serialExtract(Serializer& s) { extractFrame<TMessage>(s, *this, Wire::members); }

boost::shared_ptr<TConfirmable> TConfirmable::clone() const { return boost::make_shared<TConfirmable>(*this); }

TypeDescriptor TConfirmable::describe() {
    return describeFrame<TMessage>(serialName(), TConfirmable(TResult::none), Wire::members);
}

} // namespace zorv
