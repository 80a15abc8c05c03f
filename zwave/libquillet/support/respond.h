// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/TResult.h"
#include "zwave/libquillet/support/requireNonNull.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>

// The two ways in which the catalogue's response forms answer a request.

namespace zorv {

/// The request itself; NullPointerError "msg is null" where there is none.
template <class Message> Message const& requireMessage(boost::shared_ptr<Message> const& request) {
    return requireNonNull(request, "msg is null");
}

/// A copy of the request that answers it with `result`, for messages whose answer repeats the request's members.
template <class Message>
boost::shared_ptr<Message> respondWithCopy(boost::shared_ptr<Message> const& request, TResult::Enum result) {
    return boost::dynamic_pointer_cast<Message>(requireMessage(request).makeResponse(result));
}

/// A new message, made from `arguments`, that answers the request.
template <class Message, class... Arguments>
boost::shared_ptr<Message> respondWithNew(TMessage const& request, Arguments&&... arguments) {
    auto response = boost::make_shared<Message>(std::forward<Arguments>(arguments)...);
    response->setResponse(request);
    return response;
}

} // namespace zorv
