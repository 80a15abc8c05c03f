// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvcrypto/base64Encode.h"

#include <boost/beast/core/detail/base64.hpp>

#include <algorithm>
#include <exception>

namespace zorv::crypto {

namespace {

namespace errc = boost::system::errc;

constexpr std::size_t lineBytes = 48;

} // namespace

std::string base64Encode(unsigned char const* data, std::size_t length, bool lines,
                         boost::system::error_code& error) noexcept {
    error.clear();
    std::string text;
    if (length == 0) { return text; }
    if (data == nullptr) {
        error = errc::make_error_code(errc::invalid_argument);
        return text;
    }
    std::size_t const lineEnds = lines ? (length - 1) / lineBytes + 1 : 0;
    std::size_t const groups = (length - 1) / 3 + 1;
    if (groups > (text.max_size() - lineEnds) / 4) {
        error = errc::make_error_code(errc::value_too_large);
        return text;
    }
    try {
        text.resize(groups * 4 + lineEnds);
    } catch (std::exception const&) {
        error = errc::make_error_code(errc::not_enough_memory);
        return text;
    }
    std::size_t const step = lines ? lineBytes : length;
    char* end = text.data();
    for (std::size_t at = 0; at < length; at += step) {
        end += boost::beast::detail::base64::encode(end, data + at, std::min(step, length - at));
        if (lines) { *end++ = '\n'; }
    }
    return text;
}

} // namespace zorv::crypto
