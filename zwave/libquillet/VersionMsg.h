// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Tells a peer which protocol version the sender speaks; the answer tells the receiver's.
///
/// Unlike every other message it travels without the frames of its base classes, so that peers whose message headers
/// differ still read each other's version: identity, time, source and result are not on the wire.
class QUILLET_EXPORT VersionMsg : public MessageOf<VersionMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    VersionMsg() = default;
    /// `protocol` must not be null; the create forms check it.
    explicit VersionMsg(char const* protocol) : protocolVersion_(protocol) {}

    static boost::shared_ptr<VersionMsg> create(char const* protocol);
    static boost::shared_ptr<VersionMsg> create(boost::shared_ptr<VersionMsg> const& request, char const* protocol);

    std::string const& protocolVersion() const noexcept { return protocolVersion_; }

    void serialInserter(Serializer& s) const override;
    void serialExtract(Serializer& s) override;

    /// Writes one JSON-like line that shows the message header as well. Nothing in it is escaped.
    void print(std::ostream& os) const override;

private:
    friend MessageOf;
    struct Wire;

    std::string protocolVersion_;
};

extern template class MessageOf<VersionMsg, Confirmable>;

} // namespace zorv
