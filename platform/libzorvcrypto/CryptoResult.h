// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace zorv::crypto {

/// The bytes that an operation made, or its failure. An empty result is not a failure.
class ZORV_EXPORT CryptoResult {
public:
    /// A failure.
    CryptoResult() = default;

    explicit CryptoResult(std::vector<unsigned char> bytes) noexcept : good_(true), bytes_(std::move(bytes)) {}

    /// Whether the operation failed.
    bool operator!() const noexcept { return !good_; }

    unsigned char const* toUChar() const noexcept { return bytes_.data(); }
    std::size_t size() const noexcept { return bytes_.size(); }

private:
    bool good_ = false;
    std::vector<unsigned char> bytes_;
};

} // namespace zorv::crypto
