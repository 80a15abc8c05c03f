// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvcrypto/base64Decode.h"

#include <boost/beast/core/detail/base64.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <vector>

namespace zorv::crypto {

namespace {

namespace errc = boost::system::errc;

CryptoResult fail(boost::system::error_code& error, errc::errc_t code) noexcept {
    error = errc::make_error_code(code);
    return CryptoResult();
}

constexpr std::size_t blockChars = 16384;
constexpr std::size_t blockBytes = blockChars / 4 * 3;

/// Decodes up to `blockChars` characters to three bytes for each four of them, of which the last `padding` are not part
/// of the data; false where the text is not what an encoder writes for these bytes.
bool decodeBlock(char const* text, std::size_t length, std::size_t padding, unsigned char* bytes) noexcept {
    namespace base64 = boost::beast::detail::base64;
    auto const decoded = base64::decode(bytes, text, length).first;
    if (decoded != length / 4 * 3 - padding) { return false; }
    // The decoder lets a few things pass: it stops at padding, wherever that is, and drops bits that are left over.
    // Encoding the bytes again gives the one text that stands for them.
    std::array<char, blockChars> again; // NOLINT(cppcoreguidelines-pro-type-member-init): written below
    auto const written = base64::encode(again.data(), bytes, decoded);
    return written == length && std::memcmp(again.data(), text, length) == 0;
}

} // namespace

CryptoResult base64Decode(char const* text, std::size_t length, boost::system::error_code& error) noexcept {
    error.clear();
    if (length == 0) { return CryptoResult(std::vector<unsigned char>()); }
    if (text == nullptr) { return fail(error, errc::invalid_argument); }
    if (length % 4 != 0) { return fail(error, errc::illegal_byte_sequence); }
    std::size_t const padding = text[length - 1] != '=' ? 0 : text[length - 2] != '=' ? 1 : 2;
    std::vector<unsigned char> bytes;
    try {
        bytes.resize(length / 4 * 3);
    } catch (std::exception const&) { return fail(error, errc::not_enough_memory); }
    auto* to = bytes.data();
    for (std::size_t at = 0; at < length; at += blockChars, to += blockBytes) {
        auto const size = std::min(blockChars, length - at);
        bool const last = size == length - at;
        if (!decodeBlock(text + at, size, last ? padding : 0, to)) { return fail(error, errc::illegal_byte_sequence); }
    }
    bytes.resize(bytes.size() - padding);
    return CryptoResult(std::move(bytes));
}

} // namespace zorv::crypto
