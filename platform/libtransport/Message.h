// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <boost/shared_ptr.hpp>

#include <iosfwd>
#include <string>

namespace zorv {

/// An element of a message queue.
class ZORV_EXPORT Message {
public:
    virtual ~Message() = default;

    /// Whether this message is handled after `other`.
    virtual bool less(boost::shared_ptr<Message> const& other) const = 0;

    virtual void print(std::ostream& os) const = 0;

    /// The bare name of the message's class, such as "PingMsg".
    std::string name() const;

protected:
    Message() = default;
    Message(Message const&) = default;
    Message& operator=(Message const&) = default;
};

} // namespace zorv
