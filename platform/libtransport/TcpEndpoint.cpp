// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TcpEndpoint.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>

namespace zorv {

namespace {

TcpEndpoint const unspecified;

} // namespace

TcpEndpointValue::TcpEndpointValue(TcpEndpoint const& endpoint) {
    if (endpoint != unspecified) { endpoint_ = boost::make_shared<TcpEndpoint const>(endpoint); }
}

TcpEndpoint const& TcpEndpointValue::get() const noexcept { return endpoint_ ? *endpoint_ : unspecified; }

} // namespace zorv
