// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/TMessage.h"

#include <boost/shared_ptr.hpp>

#include <stdexcept>
#include <string>

namespace zorv {

/// A line that is not a message.
class ZORV_EXPORT BadMessageError : public std::runtime_error {
public:
    BadMessageError(std::string const& complaint, boost::shared_ptr<TMessage const> const& header);

    /// A message header with the identity of the bad message; empty where the identity could not be read.
    boost::shared_ptr<TMessage const> const& header() const noexcept { return header_; }

private:
    boost::shared_ptr<TMessage const> header_;
};

/// Rebuilds the message that `text`, one JSON object, holds; a BadMessageError where it holds none.
///
/// The complaint is short and has no control characters, whatever the text holds, so that it can be logged.
ZORV_EXPORT boost::shared_ptr<TMessage> readMessage(std::string const& text);

} // namespace zorv
