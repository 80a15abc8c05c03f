// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/Confirmable.h"

#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const Confirmable::NAME("Confirmable");
SerialRegistrar const Confirmable::registrar("zorv::" + NAME, &Confirmable::serialFactory);

struct Confirmable::Wire {
    static constexpr auto members = std::make_tuple();
};

template class MessageOf<Confirmable, TConfirmable>;

boost::shared_ptr<Confirmable> Confirmable::makeResponse(ZResult::Enum result) const {
    auto response = boost::static_pointer_cast<Confirmable>(clone()); // from this class on, every copy is one
    response->setResponse(*this);
    response->result(result);
    return response;
}

boost::shared_ptr<Confirmable> Confirmable::makeTimeoutResponse() const { return makeResponse(ZResult::timeout); }

} // namespace zorv
