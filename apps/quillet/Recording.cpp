// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Recording.h"

#include "apps/quillet/ExitCode.h"

#include "platform/libtransport/readMessage.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <boost/uuid/uuid.hpp>

#include <istream>
#include <map>
#include <string>

namespace zorv {

namespace {

boost::shared_ptr<ObserveMsg> readCopy(std::string const& text, std::size_t number) {
    try {
        return boost::dynamic_pointer_cast<ObserveMsg>(readMessage(text));
    } catch (BadMessageError const& error) {
        throw ExitError(ExitCode::protocolError, "line " + std::to_string(number) + ": " + error.what());
    }
}

} // namespace

std::vector<RecordedRequest> readRecording(std::istream& lines) {
    std::vector<RecordedRequest> requests;
    std::map<boost::uuids::uuid, std::size_t> byIdentity;
    std::string text;
    for (std::size_t number = 1; std::getline(lines, text); ++number) {
        if (text.find_first_not_of(" \t\r") == std::string::npos) { continue; }
        auto const copy = readCopy(text, number);
        if (!copy || !copy->message()) { continue; } // the answer to the observer itself, say
        auto const& message = copy->message();
        bool const isAnswer = !message->correlation().is_nil();
        if (copy->direction() == ObserveDirection::received && !isAnswer && message->name() != VersionMsg::NAME) {
            byIdentity[message->id()] = requests.size();
            requests.push_back({number, std::chrono::milliseconds(copy->timestamp().milliseconds()), message, nullptr});
        }
        auto const asked = byIdentity.find(message->correlation());
        auto const answer = boost::dynamic_pointer_cast<Confirmable>(message);
        bool const isFinal = answer && answer->result() != ZResult::inProgress;
        if (copy->direction() == ObserveDirection::sent && isFinal && asked != byIdentity.end()) {
            requests[asked->second].answer = answer;
        }
    }
    return requests;
}

} // namespace zorv
