// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/PortHandlers.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

class DescriptorStream;
class EventLoop;

/// A line to another process, which takes its end for a serial device; nothing is interpreted on either side.
///
/// The other side may be opened, closed and opened again: that is not told of. Where nobody reads there, bytes wait up
/// to a bound, and further ones are lost, as on a line that nobody listens to. All of it belongs to the event loop's
/// thread.
class ZORV_EXPORT PseudoTerminal {
public:
    /// A std::runtime_error says why there can be none.
    explicit PseudoTerminal(EventLoop& loop);

    /// Closes the terminal, which the other side takes for a device that is gone; no handler is called any more.
    ~PseudoTerminal();

    PseudoTerminal(PseudoTerminal const&) = delete;
    PseudoTerminal& operator=(PseudoTerminal const&) = delete;

    /// The device that the other process opens, such as "/dev/pts/3".
    std::string const& path() const noexcept { return path_; }

    /// Begins to read; to be called once.
    void start(PortHandlers handlers);

    /// Queues bytes; nothing happens on a terminal that is closed.
    void write(std::vector<std::uint8_t> const& bytes);

    void close(std::string const& reason = "closed here");

private:
    std::string path_;
    std::shared_ptr<DescriptorStream> otherSide_; ///< kept open, so that its settings stay
    std::shared_ptr<DescriptorStream> stream_;
};

} // namespace zorv
