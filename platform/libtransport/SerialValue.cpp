// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerialValue.h"

#include "platform/libtransport/SerializerError.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace zorv {

namespace {

TcpEndpoint toEndpoint(std::string const& text) {
    auto const colon = text.rfind(':');
    if (colon == std::string::npos) { throw std::invalid_argument("no port"); }
    auto host = text.substr(0, colon);
    bool const bracketed = host.size() > 1 && host.front() == '[' && host.back() == ']';
    if (bracketed) { host = host.substr(1, host.size() - 2); }
    if (host.find('\0') != std::string::npos) { throw std::invalid_argument("make_address would stop there"); }
    auto const address = boost::asio::ip::make_address(host);
    if (address.is_v6() != bracketed) { throw std::invalid_argument("brackets go with IPv6"); }
    auto const port = text.substr(colon + 1);
    if (port.empty() || port.find_first_not_of("0123456789") != std::string::npos) {
        throw std::invalid_argument("not a port");
    }
    return {address, boost::lexical_cast<unsigned short>(port)};
}

/// Reads a string and converts it; a text that does not convert is a bad member like any other.
template <class T, class Convert> Serializer& readText(Serializer& s, T& value, char const* expected, Convert convert) {
    if (s.skipAbsent()) { return s; }
    std::string const text(s.text());
    try {
        value = convert(text);
    } catch (std::exception const&) { s.fail(std::string("expected ") + expected + ", got \"" + text + '"'); }
    s.drop();
    return s;
}

} // namespace

void requireFewPairs(std::size_t count) {
    if (count > limits::maxPairs) {
        throw SerializerError("expected at most " + std::to_string(limits::maxPairs) + " entries, got " +
                              std::to_string(count));
    }
}

Serializer& operator<<(Serializer& s, TimeStamp const& value) { return s << toString(value); }

Serializer& operator>>(Serializer& s, TimeStamp& value) { return readText(s, value, "time stamp", &TimeStamp::parse); }

Serializer& operator<<(Serializer& s, boost::uuids::uuid const& value) { return s << boost::uuids::to_string(value); }

Serializer& operator>>(Serializer& s, boost::uuids::uuid& value) {
    return readText(s, value, "UUID", [](std::string const& text) {
        auto const id = boost::uuids::string_generator()(text);
        // The generator takes other notations as well; on the wire there is one.
        if (boost::uuids::to_string(id) != text) { throw std::invalid_argument("other notation"); }
        return id;
    });
}

Serializer& operator<<(Serializer& s, TcpEndpoint const& value) {
    auto const host = value.address().to_string();
    return s << (value.address().is_v6() ? '[' + host + ']' : host) + ':' + std::to_string(value.port());
}

Serializer& operator>>(Serializer& s, TcpEndpoint& value) { return readText(s, value, "TCP endpoint", &toEndpoint); }

Serializer& operator<<(Serializer& s, TcpEndpointValue const& value) { return s << value.get(); }

Serializer& operator>>(Serializer& s, TcpEndpointValue& value) {
    return readText(s, value, "TCP endpoint", &toEndpoint);
}

} // namespace zorv
