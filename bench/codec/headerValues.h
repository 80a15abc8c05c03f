// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TimeStamp.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/uuid/uuid.hpp>

#include <string>
#include <string_view>

// The values of a message's header that are texts on the wire, for the other libraries. Every part has its fixed place,
// so that no general parser slows them down; what has another form is a std::invalid_argument.

namespace bench {

void parseText(std::string_view text, zorv::TimeStamp& value);
void parseText(std::string_view text, boost::uuids::uuid& value);
void parseText(std::string_view text, boost::asio::ip::tcp::endpoint& value);

std::string textOf(zorv::TimeStamp value);
std::string textOf(boost::uuids::uuid const& value);
std::string textOf(boost::asio::ip::tcp::endpoint const& value);

} // namespace bench
