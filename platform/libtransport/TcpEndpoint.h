// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/shared_ptr.hpp>

// Asio's endpoint costs every file that includes it more than the rest of a message's header: who looks into one
// includes <boost/asio/ip/tcp.hpp>.
namespace boost::asio::ip {
class tcp;
template <typename InternetProtocol> class basic_endpoint;
} // namespace boost::asio::ip

namespace zorv {

/// An address and a port: boost::asio::ip::tcp::endpoint.
using TcpEndpoint = boost::asio::ip::basic_endpoint<boost::asio::ip::tcp>;

/// A value that is an endpoint, for members of classes whose headers do not include Asio.
class ZORV_EXPORT TcpEndpointValue {
public:
    /// Any address, port 0.
    TcpEndpointValue() noexcept = default;
    TcpEndpointValue(TcpEndpoint const& endpoint);

    TcpEndpoint const& get() const noexcept;

private:
    boost::shared_ptr<TcpEndpoint const> endpoint_; // never changes, so that copies share it; none for the default
};

} // namespace zorv
