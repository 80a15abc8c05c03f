// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libio/PortHandlers.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/system/error_code.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

class EventLoop;

/// Reads and writes a descriptor that it owns; shared with the operations that are under way.
class DescriptorStream : public std::enable_shared_from_this<DescriptorStream> {
public:
    /// What happens to bytes that do not fit into the queue.
    enum class WhenFull {
        close, ///< the port ends
        drop   ///< they are lost
    };

    DescriptorStream(EventLoop& loop, int descriptor, WhenFull whenFull, std::size_t room);

    /// Has the terminal pass on each byte as it is, and at once.
    void makeRaw();

    void start(PortHandlers handlers);
    void write(std::vector<std::uint8_t> const& bytes);
    void close(std::string const& reason);

    /// Closes without telling.
    void abandon();

    boost::asio::posix::stream_descriptor& descriptor() noexcept { return descriptor_; }

private:
    void read();
    void received(boost::system::error_code const& error, std::size_t size);
    void flush();
    void written(boost::system::error_code const& error);

    boost::asio::posix::stream_descriptor descriptor_;
    WhenFull whenFull_;
    std::size_t room_;
    PortHandlers handlers_;
    bool isOpen_ = true;
    bool isAbandoned_ = false;
    std::array<std::uint8_t, 4096> chunk_{};
    std::vector<std::uint8_t> waiting_;
    std::vector<std::uint8_t> writing_;
};

} // namespace zorv
