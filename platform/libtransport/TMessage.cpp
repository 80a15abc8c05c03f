// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TMessage.h"

#include "platform/libtransport/freshIdentity.h"
#include "platform/libtransport/tables/MemberTable.h"
#include "platform/libtransport/toText.h"
#include "transport/displayRow.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/uuid/nil_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cstdint>
#include <limits>
#include <ostream>
#include <utility>

namespace zorv {

struct TMessage::Wire {
    static constexpr auto members = std::make_tuple(
        member<&TMessage::version_>("version of the header"), member<&TMessage::id_>("identity of the message"),
        member<&TMessage::timestamp_>("when the message was made, UTC"),
        member<&TMessage::priority_>("order among waiting messages"),
        member<&TMessage::source_>("where the request came from"),
        member<&TMessage::role_>("what the message is to its receiver"),
        member<&TMessage::correlation_>("identity of the request that it answers"));
};

namespace {

thread_local bool nextIsRead = false;

/// Stands for an identity that has not been read. A text cannot have it: nobody else knows it.
boost::uuids::uuid const& unreadIdentity() {
    static boost::uuids::uuid const identity = freshIdentity();
    return identity;
}

/// Stands for a time that has not been read: no text reaches so far.
constexpr auto unreadTime = std::numeric_limits<std::int64_t>::min();

} // namespace

TMessage::NextIsRead::NextIsRead() noexcept { nextIsRead = true; }

TMessage::NextIsRead::~NextIsRead() { nextIsRead = false; }

TMessage::TMessage()
    : Serializable(1), id_(unreadIdentity()), timestamp_(unreadTime), correlation_(boost::uuids::nil_uuid()) {
    if (!std::exchange(nextIsRead, false)) { drawMissing(); } // the next one: not another that this one makes in turn
}

void TMessage::drawMissing() {
    if (id_ == unreadIdentity()) { id_ = freshIdentity(); }
    if (timestamp_ == TimeStamp(unreadTime)) { timestamp_ = TimeStamp::now(); }
}

void TMessage::serialInserter(Serializer& s) const { insertFrame<NoBase>(s, serialName(), *this, Wire::members); }

void TMessage::serialExtract(Serializer& s) { extractFrame<NoBase>(s, *this, Wire::members); }

bool TMessage::less(boost::shared_ptr<Message> const& other) const {
    auto const* const message = dynamic_cast<TMessage const*>(other.get());
    if (message == nullptr) { return false; }
    if (priority_ != message->priority_) { return priority_ < message->priority_; }
    return message->timestamp_ < timestamp_;
}

void TMessage::print(std::ostream& os) const {
    auto const text = toText(*this);
    os.width(0); // fill characters are no JSON
    os << text;
}

void TMessage::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Message:", name());
    displayRow(rows, "Id:", id_);
    displayRow(rows, "Time:", timestamp_);
    displayRow(rows, "Priority:", priority_);
    displayRow(rows, "Source:", source());
    displayRow(rows, "Role:", role_);
}

TypeDescriptor TMessage::describe() {
    TMessage const blank;
    TMessage other(blank);
    other.id_ = boost::uuids::nil_uuid();
    other.timestamp_ = TimeStamp();
    auto type = describeFrame<NoBase>(serialName(), blank, Wire::members);
    auto const others = describeMembers(other, Wire::members);
    for (std::size_t i = 0; i < others.size(); ++i) {
        if (type.members[i].defaultJson != others[i].defaultJson) { type.members[i].defaultJson.clear(); }
    }
    return type;
}

void TMessage::setResponse(TMessage const& request) {
    auto const requestId = request.id_;
    source_ = request.source_;
    correlation_ = requestId;
    if (id_ == requestId) {
        id_ = freshIdentity();
        timestamp_ = TimeStamp::now();
    }
}

} // namespace zorv
