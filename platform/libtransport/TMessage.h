// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/Message.h"
#include "platform/libtransport/MessageRole.h"
#include "platform/libtransport/Priority.h"
#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/TcpEndpoint.h"
#include "platform/libtransport/TimeStamp.h"
#include "transport/CliViewer.h"

#include <boost/uuid/uuid.hpp>

namespace zorv {

class TConfirmable;
struct TypeDescriptor;

/// Base of every message: its header, with identity, time, priority, source, role and correlation.
class ZORV_EXPORT TMessage : public Serializable, public Message, public CliViewer {
public:
    using Endpoint = TcpEndpoint;

    /// A new message: with a fresh identity and the present time, of normal priority, without a role.
    TMessage();

    /// The next message that its thread makes is about to be read, and draws its identity and its time only where the
    /// text does not have them: drawMissing() does.
    class ZORV_EXPORT NextIsRead {
    public:
        NextIsRead() noexcept;
        ~NextIsRead();
        NextIsRead(NextIsRead const&) = delete;
        NextIsRead& operator=(NextIsRead const&) = delete;
    };

    /// Draws what a message that was made to be read has not found in its text.
    void drawMissing();

    /// Writes the header as the innermost frame, the one whose bases array is empty.
    void serialInserter(Serializer& s) const override;
    void serialExtract(Serializer& s) override;

    TMessage* asMessage() noexcept final { return this; }

    /// The message as one that carries a result; null where it carries none.
    virtual TConfirmable* asConfirmable() noexcept { return nullptr; }

    /// Lower priorities come after higher ones, and younger messages after older ones.
    bool less(boost::shared_ptr<Message> const& other) const override;

    /// Writes the message's JSON text.
    void print(std::ostream& os) const override;

    /// Appends the header as rows of a label and a value.
    void accumulateDisplay(StringVecVec& rows) const override;

    boost::uuids::uuid const& id() const noexcept { return id_; }
    TimeStamp const& timestamp() const noexcept { return timestamp_; }
    Priority::Enum priority() const noexcept { return priority_; }
    Endpoint const& source() const noexcept { return source_.get(); }
    MessageRole::Enum role() const noexcept { return role_; }

    /// Identity of the message that this one answers; nil where it answers none.
    boost::uuids::uuid const& correlation() const noexcept { return correlation_; }

    void priority(Priority::Enum priority) noexcept { priority_ = priority; }
    void source(Endpoint const& source) { source_ = source; }
    void source(TcpEndpointValue const& source) { source_ = source; }
    void role(MessageRole::Enum role) noexcept { role_ = role; }

    /// Makes this message the answer to `request`: its correlation becomes the request's identity, its source the
    /// request's source. A copy of the request gets an identity and a time stamp of its own. The role is not touched.
    void setResponse(TMessage const& request);

    static char const* serialName() noexcept { return "zorv::TMessage"; }

    /// The header's members; those that are drawn anew for each message have no default.
    static TypeDescriptor describe();

private:
    struct Wire;

    boost::uuids::uuid id_;
    TimeStamp timestamp_;
    Priority::Enum priority_ = Priority::normal;
    TcpEndpointValue source_;
    MessageRole::Enum role_ = MessageRole::none;
    boost::uuids::uuid correlation_;
};

} // namespace zorv
