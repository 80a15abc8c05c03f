// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/readMessage.h"

#include "platform/libtransport/PlacedError.h"
#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/limits.h"
#include "platform/libzorvlogger/printable.h"

#include <boost/make_shared.hpp>
#include <boost/uuid/uuid.hpp>

#include <algorithm>
#include <cstddef>
#include <new>
#include <string_view>

namespace zorv {

namespace {

constexpr std::size_t longestComplaint = 300;

/// The first line of a complaint, which may quote the peer.
std::string toLogText(std::string const& complaint) {
    return printable(std::string_view(complaint).substr(0, std::min(complaint.find('\n'), longestComplaint)));
}

/// The place of an error whose own text does not name it.
std::string placeOf(std::exception const& error) {
    auto const* const placed = dynamic_cast<PlacedError const*>(&error);
    return placed == nullptr || placed->place().empty() ? "" : placed->place() + ": ";
}

/// Makes a header that has only the identity of the message.
boost::shared_ptr<TMessage const> makeHeader(boost::uuids::uuid const& id) {
    Serializer writer;
    writer << opencurly << "id_" << colon << id << closecurly;
    Serializer reader(writer.str());
    auto header = boost::make_shared<TMessage>();
    header->serialExtract(reader);
    return header;
}

/// Finds the identity in the innermost of the frames, even if another member is bad.
boost::shared_ptr<TMessage const> readHeader(Serializer& s) {
    try {
        s.rewind();
        for (std::size_t depth = 0; depth < limits::maxDepth; ++depth) {
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
    } catch (std::bad_alloc const&) { throw; } catch (std::exception const&) {
        // Even the identity cannot be read.
    }
    return nullptr;
}

/// Reads the message; where that fails, the same reader looks for the header.
boost::shared_ptr<TMessage> readFrom(Serializer& s) {
    std::string complaint = "not a message";
    try {
        boost::shared_ptr<Serializable> const object(s.deserialize());
        auto* const message = object ? object->asMessage() : nullptr;
        if (message != nullptr) { return {object, message}; }
    } catch (std::bad_alloc const&) { throw; } catch (std::exception const& error) {
        complaint = toLogText(placeOf(error) + error.what());
    }
    throw BadMessageError(complaint, readHeader(s));
}

} // namespace

BadMessageError::BadMessageError(std::string const& complaint, boost::shared_ptr<TMessage const> const& header)
    : std::runtime_error(complaint), header_(header) {}

boost::shared_ptr<TMessage> readMessage(std::string const& text) {
    std::string complaint;
    try {
        auto s = Serializer::over(text);
        return readFrom(s);
    } catch (BadMessageError const&) { throw; } catch (std::bad_alloc const&) {
        throw; // says nothing of the message
    } catch (std::exception const& error) { complaint = toLogText(error.what()); }
    throw BadMessageError(complaint, nullptr); // malformed: there is no header to be found
}

} // namespace zorv
