#include "platform/libtransport/readMessage.h"

#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libzorvlogger/printable.h"

#include <boost/make_shared.hpp>
#include <boost/uuid/uuid.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace zorv {

namespace {

constexpr std::size_t longestComplaint = 300;

/// The first line of a complaint, which may quote the peer.
std::string toLogText(std::string const& complaint) {
    return printable(std::string_view(complaint).substr(0, std::min(complaint.find('\n'), longestComplaint)));
}

/// Makes a header that has nothing of the message but its identity.
boost::shared_ptr<TMessage const> makeHeader(boost::uuids::uuid const& id) {
    Serializer writer;
    writer << opencurly << "id_" << colon << id << closecurly;
    Serializer reader(writer.str());
    auto header = boost::make_shared<TMessage>();
    header->serialExtract(reader);
    return header;
}

/// Finds the identity in the innermost of the frames, even though some member elsewhere is bad.
boost::shared_ptr<TMessage const> readHeader(std::string const& text) {
    try {
        Serializer s(text);
        for (int depth = 0; depth < Serializer::maxDepth; ++depth) {
            std::string className;
            s >> Serializer::name >> className;
            if (className == TMessage::serialName()) {
                boost::uuids::uuid id{};
                s >> "id_" >> id;
                return id.is_nil() ? nullptr : makeHeader(id);
            }
            s >> Serializer::bases;
            s.element(0);
        }
    } catch (std::exception const&) {
        // Not even this much can be read.
    }
    return nullptr;
}

} // namespace

BadMessageError::BadMessageError(std::string const& complaint, boost::shared_ptr<TMessage const> const& header)
    : std::runtime_error(complaint), header_(header) {}

boost::shared_ptr<TMessage> readMessage(std::string const& text) {
    std::string complaint = "not a message";
    try {
        auto message = boost::dynamic_pointer_cast<TMessage>(readSerializable(text));
        if (message) { return message; }
    } catch (std::exception const& error) { complaint = toLogText(error.what()); }
    throw BadMessageError(complaint, readHeader(text));
}

} // namespace zorv
