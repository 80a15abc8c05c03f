// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerialValue.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/uuidText.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>

#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

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

/// Reads an IPv4 endpoint in the usual notation: four numbers without leading zeros, a colon, a port. What it does not
/// take may still be an endpoint.
bool parseUsualEndpoint(std::string_view text, TcpEndpoint& endpoint) {
    auto const* at = text.data();
    auto const* const end = at + text.size();
    boost::asio::ip::address_v4::bytes_type bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto const* const begin = at;
        auto const parsed = std::from_chars(at, end, bytes[i]);
        auto const separator = i + 1 < bytes.size() ? '.' : ':';
        bool const leadsWithZero = parsed.ptr - begin > 1 && *begin == '0';
        if (parsed.ec != std::errc() || leadsWithZero || parsed.ptr == end || *parsed.ptr != separator) {
            return false;
        }
        at = parsed.ptr + 1;
    }
    unsigned short port = 0;
    auto const parsed = std::from_chars(at, end, port);
    if (parsed.ec != std::errc() || parsed.ptr != end) { return false; }
    endpoint = {boost::asio::ip::address_v4(bytes), port};
    return true;
}

bool tryParse(std::string_view text, TimeStamp& value) { return TimeStamp::tryParse(text, value); }

bool tryParse(std::string_view text, boost::uuids::uuid& value) { return parseUuid(text, value); }

template <class Endpoint> bool tryParse(std::string_view text, Endpoint& value) {
    TcpEndpoint usual;
    if (parseUsualEndpoint(text, usual)) {
        value = usual;
        return true;
    }
    try {
        value = toEndpoint(std::string(text));
        return true;
    } catch (std::exception const&) { return false; }
}

/// Reads a string and converts it; a text that does not convert is a bad member like any other.
template <class T> Serializer& readText(Serializer& s, T& value, char const* expected) {
    if (s.skipAbsent()) { return s; }
    auto const text = s.text();
    if (!tryParse(text, value)) {
        s.fail(std::string("expected ").append(expected).append(", got \"").append(text) + '"');
    }
    s.drop();
    return s;
}

template <class T> void readTextMember(Serializer& s, std::string_view key, T& value) {
    auto const text = s.nextText(key);
    if (text.data() != nullptr && tryParse(text, value)) {
        s.passText(text);
    } else {
        s.enter(key) >> value;
    }
}

/// Puts an IPv4 endpoint's text.
char* put(char* at, TcpEndpoint const& endpoint) {
    constexpr std::ptrdiff_t most = 5; // digits of a number
    for (auto const byte : endpoint.address().to_v4().to_bytes()) {
        at = std::to_chars(at, at + most, byte).ptr;
        *at++ = '.';
    }
    at[-1] = ':';
    return std::to_chars(at, at + most, endpoint.port()).ptr;
}

} // namespace

void readMember(Serializer& s, std::string_view key, TimeStamp& value) { readTextMember(s, key, value); }
void readMember(Serializer& s, std::string_view key, boost::uuids::uuid& value) { readTextMember(s, key, value); }
void readMember(Serializer& s, std::string_view key, TcpEndpointValue& value) { readTextMember(s, key, value); }

void requireFewPairs(std::size_t count) {
    if (count > limits::maxPairs) {
        throw SerializerError("expected at most " + std::to_string(limits::maxPairs) + " entries, got " +
                              std::to_string(count));
    }
}

Serializer& operator<<(Serializer& s, TimeStamp const& value) {
    return s.writePlain(TimeStamp::textSize, [&value](char* at) { return value.put(at); });
}

Serializer& operator>>(Serializer& s, TimeStamp& value) { return readText(s, value, "time stamp"); }

Serializer& operator<<(Serializer& s, boost::uuids::uuid const& value) {
    return s.writePlain(uuidTextSize, [&value](char* at) { return putUuid(at, value); });
}

Serializer& operator>>(Serializer& s, boost::uuids::uuid& value) { return readText(s, value, "UUID"); }

Serializer& operator<<(Serializer& s, TcpEndpoint const& value) {
    if (value.address().is_v6()) {
        return s << '[' + value.address().to_string() + "]:" + std::to_string(value.port());
    }
    constexpr std::size_t most = 21; // 255.255.255.255:65535
    return s.writePlain(most, [&value](char* at) { return put(at, value); });
}

Serializer& operator>>(Serializer& s, TcpEndpoint& value) { return readText(s, value, "TCP endpoint"); }

Serializer& operator<<(Serializer& s, TcpEndpointValue const& value) { return s << value.get(); }

Serializer& operator>>(Serializer& s, TcpEndpointValue& value) { return readText(s, value, "TCP endpoint"); }

} // namespace zorv
