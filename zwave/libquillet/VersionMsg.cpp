// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/VersionMsg.h"

#include "zwave/libquillet/jsonQuoteValue.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace zorv {

std::string const VersionMsg::NAME("VersionMsg");
SerialRegistrar const VersionMsg::registrar("zorv::" + NAME, &VersionMsg::serialFactory);

struct VersionMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&VersionMsg::protocolVersion_>("protocol version of the sender"));
    static constexpr auto protocolVersion = std::get<0>(members);
};

template class MessageOf<VersionMsg, Confirmable>;

namespace {

char const* requireProtocol(char const* protocol) {
    if (protocol == nullptr) { throw NullPointerError("protocol is null"); }
    return protocol;
}

} // namespace

boost::shared_ptr<VersionMsg> VersionMsg::create(char const* protocol) {
    return boost::make_shared<VersionMsg>(requireProtocol(protocol));
}

boost::shared_ptr<VersionMsg> VersionMsg::create(boost::shared_ptr<VersionMsg> const& request, char const* protocol) {
    auto const& asked = requireMessage(request);
    return respondWithNew<VersionMsg>(asked, requireProtocol(protocol)); // the result stays at its default
}

// No bases array is written or read, so that peers with different versions of the header understand each other.
void VersionMsg::serialInserter(Serializer& s) const {
    s << opencurly << noescape << Serializer::name << colon << serialName();
    s << comma << noescape << Wire::protocolVersion.key.data() << colon << protocolVersion_ << closecurly;
}

void VersionMsg::serialExtract(Serializer& s) {
    std::string className;
    s >> "__name__" >> colon >> className >> comma;
    s >> Wire::protocolVersion.key.data() >> colon >> protocolVersion_;
    // No `finished` here: the caller that selected the object ends the selection.
}

void VersionMsg::print(std::ostream& os) const {
    std::string line;
    auto const add = [&line](char const* key, std::string const& value) {
        line += line.empty() ? "{\"" : ", \"";
        line.append(key).append("\": ").append(value);
    };
    add("__name__", jsonQuoteValue("zorv::" + NAME));
    add("version_", std::to_string(version()));
    add("id_", jsonQuoteValue(boost::uuids::to_string(id())));
    add("name_", jsonQuoteValue("zorv::" + name()));
    add("timestamp_", jsonQuoteValue(toString(timestamp())));
    add("priority_", jsonQuoteValue(toString(priority())));
    add("source_", jsonQuoteValue(boost::lexical_cast<std::string>(source())));
    add(Wire::protocolVersion.key.data(), jsonQuoteValue(protocolVersion_));
    os.width(0); // fill characters are no JSON
    os << line << '}';
}

} // namespace zorv
