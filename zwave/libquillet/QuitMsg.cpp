// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/QuitMsg.h"

#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const QuitMsg::NAME("QuitMsg");
SerialRegistrar const QuitMsg::registrar("zorv::" + NAME, &QuitMsg::serialFactory);

struct QuitMsg::Wire {
    static constexpr auto members = std::make_tuple();
};

template class MessageOf<QuitMsg, TMessage>;

} // namespace zorv
