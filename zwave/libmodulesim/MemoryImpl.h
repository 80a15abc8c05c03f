// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/CoreImpl.h"

namespace zorv::modulesim {

/// The module's non-volatile memory: the membership at its beginning, what the host's application keeps behind it, and
/// the rest as it came from the factory.
class Memory {
public:
    static constexpr std::size_t applicationOffset = 0x3000; ///< leaves room for 232 nodes with all their neighbours
    static constexpr std::size_t applicationSize = 0x800;

    explicit Memory(Core& core);

    std::size_t size() const noexcept { return image_.size(); }

    /// Up to `length` bytes; less at the end of the memory.
    Bytes read(std::size_t offset, std::size_t length) const;

    /// True where a byte has changed; what lies behind the end of the memory is not written.
    bool write(std::size_t offset, Bytes const& data);

    /// Whether a fault keeps these bytes from being read.
    bool fails(std::size_t offset, std::size_t length);

    /// How often the module has written by itself.
    std::uint64_t ownWrites() const noexcept { return ownWrites_; }

private:
    void keep();
    void load();

    Core& core_;
    Bytes image_;
    bool hasBeenWritten_ = false; ///< by the host
    std::uint64_t ownWrites_ = 0;
};

} // namespace zorv::modulesim
