// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/firmwareImage.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/Confirmable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

/// A request that the daemon serves by a function of the module.
struct Request {
    std::string name;
    std::string function;                    ///< two hex digits
    std::string text;                        ///< of the message, without its frame
    ZResult::Enum result = ZResult::success; ///< where nothing goes wrong
    bool callsBack = true;
    std::string module = {};  ///< what its network file says of the module
    unsigned int earlier = 0; ///< calls of the function before the message's own: those of the start
    bool isAlone = true;      ///< no interview, which the daemon begins by itself, calls the function as well
};

/// None takes longer than what tells of it allows for a frame that is sent again.
std::vector<Request> requests() {
    std::string const node2 = R"({"homeId_":3237998081,"nodeId_":2})";
    std::string const node9 = R"({"homeId_":3237998081,"nodeId_":9})";
    return {
        {"inclusion", "4a", R"("zorv::AddRemoveNodeMsg","operation_":"add","timeout_":2)", ZResult::success, true, "",
         1},
        {"exclusion", "4b", R"("zorv::AddRemoveNodeMsg","operation_":"remove","timeout_":2)", ZResult::success, true,
         "", 1},
        {"learn mode", "50", R"("zorv::LearnModeMsg","mode_":"classic","timeout_":2000)", ZResult::timeout, true, "",
         1},
        {"reset", "42", R"("zorv::ResetDefaultsMsg","timeout_":10)", ZResult::success,
         false}, // its restart tells as much
        {"node information", "12", R"("zorv::SendNifMsg","destination_":2)"},
        {"removal", "61", R"("zorv::ManageFailedNodeMsg","operation_":"remove","timeout_":2,"address_":)" + node9},
        {"neighbours", "48", R"("zorv::RequestNeighborUpdateMsg","timeout_":5,"address_":)" + node2},
        {"network", "53", R"("zorv::RequestNetworkUpdateMsg","timeout_":10)", ZResult::success, true,
         R"("secondaryTo": 2)"},
        {"session", "15", R"("zorv::SessionLayerMsg","op_":"ping")", ZResult::success, false, "", 1},
        {"interview", "60",
         R"("zorv::ConfigurationMsg","operation_":"start","device_":{"__name__":"zorv::Device",)"
         R"("address_":)" +
             node2 + "}",
         ZResult::success, false, "", 0, false},
        {"save", "2e", R"("zorv::ManageNvmMsg","operation_":"save","timeout_":30)", ZResult::success, false, "", 1},
        {"validation", "2e", R"("zorv::ManageNvmMsg","operation_":"validate","timeout_":30)", ZResult::success, false,
         "", 1},
        {"firmware", "27", R"("zorv::FirmwareUpdateMsg","countryCode_":"EU","timeout_":5)", ZResult::success, false},
        {"older firmware", "78", R"("zorv::FirmwareUpdateMsg","countryCode_":"EU","timeout_":5)", ZResult::success,
         false, R"("generation": "500")"},
        {"ping", "a9", R"("zorv::PingMsg","destination_":)" + node2, ZResult::success, true, "", 0, false},
        {"command", "a9",
         R"("zorv::SendCommandMsg","options_":"ack","destinations_":[)" + node2 +
             R"(],"command_":{"__name__":"zorv::RawCommand","data_":[37,2]})",
         ZResult::success, true, "", 0, false},
    };
}

struct LineFault {
    std::string name;
    std::string text; ///< of the network file
    bool isOvercome;  ///< the message ends as if nothing had happened
};

void PrintTo(LineFault const& fault, std::ostream* out) { *out << fault.name; }

/// A daemon of its own for a request, so that all can wait at the same time.
class Conversation {
public:
    Conversation(Request request, std::string const& fault, TemporaryDirectory const& directory, std::size_t number)
        : request_(std::move(request)),
          daemon_({"--network", directory.write("network" + std::to_string(number), network(fault)), "--firmware-dir",
                   directory.path()}),
          client_(daemon_.port()),
          message_(
              boost::dynamic_pointer_cast<TConfirmable>(readSerializable("{\"__name__\":" + request_.text + "}"))) {
        status(); // the start is over
        client_.tell(*message_);
    }

    Request const& request() const noexcept { return request_; }

    /// The final answers, up to when the daemon knows its module, or knows that it does not answer.
    std::vector<ZResult::Enum> answers() {
        std::vector<ZResult::Enum> results;
        while (results.empty()) { take(*client_.receive(), results); }
        auto const last = boost::make_shared<SessionLayerMsg>(SessionLayerOp::status);
        client_.tell(*last);
        while (true) {
            auto const message = client_.receive();
            if (message->correlation() == last->id()) { return results; }
            take(*message, results);
        }
    }

private:
    std::string network(std::string const& fault) const {
        auto const skip = request_.earlier == 0 ? "" : R"(, "skip": )" + std::to_string(request_.earlier);
        return R"({"homeId": "c0ffee01", "retransmitMs": 20, "module": {"nvmSize": 16384)" +
               (request_.module.empty() ? "" : ", " + request_.module) +
               R"(}, "nodes": [{"id": 2, "latencyMs": 1}, {"id": 9, "state": "dead"}],
               "joining": [{"afterMs": 20, "latencyMs": 1}], "leaving": [{"node": 2, "afterMs": 20}])" +
               (fault.empty()
                    ? ""
                    : R"(, "faults": [{)" + fault + R"(, "function": ")" + request_.function + '"' + skip + "}]") +
               "}";
    }

    void status() { client_.ask(boost::make_shared<SessionLayerMsg>(SessionLayerOp::status)); }

    void take(TMessage const& message, std::vector<ZResult::Enum>& results) const {
        auto const* const answer = dynamic_cast<TConfirmable const*>(&message);
        bool const isFinal =
            answer != nullptr && answer->correlation() == message_->id() && answer->result() != ZResult::inProgress;
        if (isFinal) { results.push_back(answer->result()); }
    }

    Request request_;
    DaemonProcess daemon_;
    MessageClient client_;
    boost::shared_ptr<TConfirmable> message_;
};

std::string nameOf(testing::TestParamInfo<LineFault> const& info) { return info.param.name; }

class EveryMessage : public testing::TestWithParam<LineFault> {};

TEST_P(EveryMessage, HasOneFinalAnswerWhateverGoesWrong) {
    auto const& fault = GetParam();
    TemporaryDirectory directory;
    auto const image = firmwareImage("Z-Wave 9.99", 300);
    directory.write("EU.bin", {image.begin(), image.end()});
    std::vector<std::unique_ptr<Conversation>> conversations;
    for (auto const& request : requests()) {
        // A frame to a node waits for its callback for more than a minute: longer than a test may take.
        bool const isTooSlow = fault.name == "noCallback" && (request.function == "a9" || request.function == "12");
        if (isTooSlow) { continue; }
        conversations.push_back(std::make_unique<Conversation>(request, fault.text, directory, conversations.size()));
    }
    for (auto const& conversation : conversations) {
        auto const& request = conversation->request();
        SCOPED_TRACE(request.name);
        auto const answers = conversation->answers();
        ASSERT_EQ(answers.size(), 1U);
        bool const isHarmless = fault.isOvercome || (fault.name == "noCallback" && !request.callsBack);
        // The 500 series says nothing of a restart; a reset is sent again, and done after it.
        bool const goesUnnoticed = fault.name == "restart" && (request.function == "78" || request.function == "42");
        if ((!request.isAlone || goesUnnoticed) && !isHarmless) {
            EXPECT_NE(answers[0], ZResult::none); // what it is depends on whom the fault has struck, and when
        } else if (isHarmless) {
            EXPECT_EQ(answers[0], request.result);
        } else {
            EXPECT_THAT(answers[0], testing::AnyOf(ZResult::failure, ZResult::timeout, ZResult::nodeNotReached));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    UnderEachFault, EveryMessage,
    testing::Values(LineFault{"nothing", "", true}, LineFault{"lost", R"("what": "frameLost")", true},
                    LineFault{"answerLost", R"("what": "frameLost", "direction": "toHost")", true},
                    LineFault{"corrupted", R"("what": "frameCorrupted")", true},
                    LineFault{"answerCorrupted", R"("what": "frameCorrupted", "direction": "toHost")", true},
                    LineFault{"collision", R"("what": "collision")", true},
                    LineFault{"noCallback", R"("what": "noCallback", "times": 1000000)", false},
                    LineFault{"hang", R"("what": "hang", "lastsMs": 11000)", false},
                    LineFault{"restart", R"("what": "restart")", false},
                    LineFault{"vanish", R"("what": "vanish", "lastsMs": 300)", false}),
    nameOf);

} // namespace
