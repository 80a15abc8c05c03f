// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SendCommandMsg.h"

#include "platform/libzorvshared/RawCommand.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/wire.h"

#include <boost/make_shared.hpp>

namespace zorv {
namespace {

using Bytes = std::vector<unsigned char>;
using Addresses = std::vector<ZwaveAddress>;

boost::shared_ptr<GenericCommand> const command = boost::make_shared<RawCommand>(Bytes{0x25, 0x01, 0xFF});

Addresses nodes(std::vector<unsigned char> const& nodeIds) {
    Addresses addresses;
    for (auto const nodeId : nodeIds) { addresses.emplace_back(0xC0FFEE01, nodeId); }
    return addresses;
}

boost::shared_ptr<SendCommandMsg> request(std::vector<unsigned char> const& nodeIds) {
    return SendCommandMsg::create(nodes(nodeIds), command, TransmitOption::defaultOptions, false, false, false);
}

std::string kind(std::vector<unsigned char> const& nodeIds) {
    auto const message = request(nodeIds);
    std::string kinds;
    if (message->sendSinglecast()) { kinds += "singlecast"; }
    if (message->sendBroadcast()) { kinds += "broadcast"; }
    if (message->sendMulticast()) { kinds += "multicast"; }
    return kinds;
}

bool valid(std::vector<unsigned char> const& nodeIds) { return SendCommandMsg::validDestinations(nodes(nodeIds)); }

TEST(SendCommandMsg, HasOneInvalidDestinationAndNoKindByDefault) {
    SendCommandMsg const message;
    EXPECT_EQ(message.destinations(), Addresses{ZwaveAddress::INVALID_ADDRESS});
    EXPECT_FALSE(SendCommandMsg::validDestinations(message.destinations()));
    EXPECT_FALSE(message.sendSinglecast());
    EXPECT_FALSE(message.sendBroadcast());
    EXPECT_FALSE(message.sendMulticast());
}

TEST(SendCommandMsg, HasTheDefaultsOfItsOtherMembers) {
    EXPECT_EQ(ownMembers<Confirmable>(SendCommandMsg()),
              R"(,"destinations_":[{"homeId_":0,"nodeId_":0}],"command_":null,"options_":"none","noWait_":false,)"
              R"("forceSend_":false,"forceSecure_":false,"groupResponse_":false})");
    EXPECT_EQ(static_cast<int>(SendCommandMsg().result()), 0);
}

TEST(SendCommandMsg, TakesOneDestination) {
    auto const message =
        SendCommandMsg::create(ZwaveAddress(0xC0FFEE01, 5), command, TransmitOption::ack, true, false, true);
    EXPECT_EQ(message->destinations(), nodes({5}));
    EXPECT_EQ(message->command(), command);
    EXPECT_EQ(message->options(), TransmitOption::ack);
    EXPECT_TRUE(message->noWait());
    EXPECT_FALSE(message->forceSend());
    EXPECT_TRUE(message->forceSecure());
    EXPECT_FALSE(message->groupResponse());
}

TEST(SendCommandMsg, TakesAListOfDestinations) {
    auto const message = SendCommandMsg::create(nodes({5, 6}), command, TransmitOption::explore, false, true, false);
    EXPECT_EQ(message->destinations(), nodes({5, 6}));
    EXPECT_EQ(message->command(), command);
    EXPECT_EQ(message->options(), TransmitOption::explore);
    EXPECT_FALSE(message->noWait());
    EXPECT_TRUE(message->forceSend());
    EXPECT_FALSE(message->forceSecure());
    EXPECT_FALSE(message->groupResponse());
}

TEST(SendCommandMsg, ReadsEveryMemberOfItsGoldenText) {
    auto const message = readBack<SendCommandMsg>(golden("SendCommandMsg"));
    EXPECT_EQ(message->destinations(), (Addresses{{0xC0FFEE01, 5}, {0xC0FFEE02, 232}}));
    ASSERT_TRUE(message->command());
    EXPECT_EQ(message->command()->bytes(), (Bytes{0x25, 0x01, 0xFF}));
    EXPECT_EQ(static_cast<int>(message->options()), 37);
    EXPECT_TRUE(message->noWait());
    EXPECT_TRUE(message->forceSend());
    EXPECT_TRUE(message->forceSecure());
    EXPECT_TRUE(message->groupResponse());
}

TEST(SendCommandMsg, AcceptsSixtyFourDestinations) { EXPECT_TRUE(valid(Bytes(64, 7))); }

TEST(SendCommandMsg, RefusesSixtyFiveDestinationsWhateverTheyAre) {
    EXPECT_FALSE(valid(Bytes(65, 7)));
    Bytes withBroadcast(65, 7);
    withBroadcast[0] = 255;
    EXPECT_FALSE(valid(withBroadcast));
}

TEST(SendCommandMsg, AcceptsNoDestinationAtAll) {
    EXPECT_TRUE(valid({}));
    EXPECT_EQ(kind({}), "");
}

TEST(SendCommandMsg, AcceptsTheFirstAndTheLastNodeIdInEveryPlace) {
    EXPECT_TRUE(valid({1}));
    EXPECT_TRUE(valid({232}));
    EXPECT_TRUE(valid({7, 1, 232}));
}

TEST(SendCommandMsg, RefusesNodeIdZeroAndThoseFrom233To254InEveryPlace) {
    EXPECT_FALSE(valid({0}));
    EXPECT_FALSE(valid({7, 0}));
    for (unsigned char nodeId = 233; nodeId < 255; ++nodeId) {
        EXPECT_FALSE(valid({nodeId})) << static_cast<int>(nodeId);
        EXPECT_FALSE(valid({7, nodeId})) << static_cast<int>(nodeId);
    }
}

TEST(SendCommandMsg, RefusesTheInvalidAddressInEveryPlace) {
    EXPECT_FALSE(SendCommandMsg::validDestinations({ZwaveAddress::INVALID_ADDRESS}));
    EXPECT_FALSE(SendCommandMsg::validDestinations({ZwaveAddress(0xC0FFEE01, 7), ZwaveAddress::INVALID_ADDRESS}));
}

TEST(SendCommandMsg, AcceptsANodeOfAHomeIdThatIsZero) {
    EXPECT_TRUE(SendCommandMsg::validDestinations({ZwaveAddress(0, 7)}));
}

TEST(SendCommandMsg, AcceptsTheBroadcastIdOnlyInTheFirstPlace) {
    EXPECT_TRUE(valid({255}));
    EXPECT_TRUE(valid({255, 7}));
    EXPECT_FALSE(valid({7, 255}));
    EXPECT_FALSE(valid({255, 255}));
}

TEST(SendCommandMsg, ToOneNodeIsASinglecast) { EXPECT_EQ(kind({7}), "singlecast"); }

TEST(SendCommandMsg, ToTheBroadcastIdIsABroadcast) { EXPECT_EQ(kind({255}), "broadcast"); }

TEST(SendCommandMsg, ToSeveralNodesIsAMulticast) { EXPECT_EQ(kind({7, 8}), "multicast"); }

TEST(SendCommandMsg, ToTheBroadcastIdAndANodeIsAMulticast) { EXPECT_EQ(kind({255, 7}), "multicast"); }

TEST(SendCommandMsg, ToANodeAndTheBroadcastIdIsOfNoKind) { EXPECT_EQ(kind({7, 255}), ""); }

TEST(SendCommandMsg, ToSixtyFiveNodesIsOfNoKind) { EXPECT_EQ(kind(Bytes(65, 7)), ""); }

TEST(SendCommandMsg, GivesTheInvalidAddressForAnIndexOutOfRange) {
    auto const message = request({5, 6});
    EXPECT_EQ(message->destination(1), ZwaveAddress(0xC0FFEE01, 6));
    EXPECT_EQ(&message->destination(2), &ZwaveAddress::INVALID_ADDRESS);
    EXPECT_EQ(&message->destination(4294967295U), &ZwaveAddress::INVALID_ADDRESS);
    EXPECT_EQ(&request({})->destination(0), &ZwaveAddress::INVALID_ADDRESS);
}

TEST(SendCommandMsg, TheResponseToABroadcastOrAMulticastIsAGroupResponse) {
    EXPECT_TRUE(SendCommandMsg::create(request({255}), ZResult::success)->groupResponse());
    EXPECT_TRUE(SendCommandMsg::create(request({7, 8}), ZResult::success)->groupResponse());
    EXPECT_TRUE(SendCommandMsg::create(request({255, 7}), ZResult::success)->groupResponse());
}

TEST(SendCommandMsg, TheResponseToASinglecastIsNoGroupResponse) {
    EXPECT_FALSE(SendCommandMsg::create(request({7}), ZResult::success)->groupResponse());
}

TEST(SendCommandMsg, TheResponseToASinglecastKeepsTheGroupResponseFlagOfTheRequest) {
    auto const message = request({7});
    message->groupResponse(true);
    EXPECT_TRUE(SendCommandMsg::create(message, ZResult::success)->groupResponse());
}

TEST(SendCommandMsg, TheResponseToInvalidDestinationsIsNoGroupResponse) {
    EXPECT_FALSE(SendCommandMsg::create(request({7, 255}), ZResult::rejected)->groupResponse());
}

TEST(SendCommandMsg, ResponseRepeatsTheRequest) {
    auto const message = SendCommandMsg::create(nodes({5}), command, TransmitOption::noRoute, true, true, true);
    auto const response = SendCommandMsg::create(message, ZResult::nodeNotReached);
    EXPECT_EQ(ownMembers<Confirmable>(*response), ownMembers<Confirmable>(*message));
    EXPECT_EQ(response->command().get(), command.get());
    EXPECT_EQ(response->result(), ZResult::nodeNotReached);
    EXPECT_EQ(response->correlation(), message->id());
    EXPECT_NE(response->id(), message->id());
}

TEST(SendCommandMsg, RefusesToRespondToANullRequest) {
    EXPECT_EQ(errorOf([] { SendCommandMsg::create(nullptr, ZResult::success); }), "NullPointerError: msg is null");
}

/// A request whose copies are of another class. The catalogue has no such class.
class ForeignClone : public SendCommandMsg {
public:
    boost::shared_ptr<TConfirmable> clone() const override { return boost::make_shared<Confirmable>(); }
};

TEST(SendCommandMsg, ResponseIsNullWhenTheCloneIsOfAnotherClass) {
    EXPECT_FALSE(SendCommandMsg::create(boost::make_shared<ForeignClone>(), ZResult::success));
}

TEST(SendCommandMsg, KeepsAnEmptyCommandEmpty) {
    auto const message = SendCommandMsg::create(nodes({5}), nullptr, TransmitOption::ack, false, false, false);
    EXPECT_NE(toText(*message).find(R"("command_":null)"), std::string::npos);
    EXPECT_FALSE(readBack<SendCommandMsg>(toText(*message))->command());
}

TEST(SendCommandMsg, HasNoCommandWhenTheTextHoldsAnObjectOfAnotherClass) {
    auto const message =
        readBack<SendCommandMsg>(R"({"__name__":"zorv::SendCommandMsg","command_":{"__name__":"zorv::Device"}})");
    EXPECT_FALSE(message->command());
}

TEST(SendCommandMsg, ReplacesItsDefaultDestinationByAnEmptyList) {
    auto const message = readBack<SendCommandMsg>(R"({"__name__":"zorv::SendCommandMsg","destinations_":[]})");
    EXPECT_TRUE(message->destinations().empty());
}

TEST(SendCommandMsg, KeepsItsDefaultDestinationWhenTheKeyIsAbsent) {
    EXPECT_EQ(readBlank<SendCommandMsg>()->destinations(), Addresses{ZwaveAddress::INVALID_ADDRESS});
}

TEST(SendCommandMsg, RefusesDestinationsThatAreNotAnArray) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SendCommandMsg","destinations_":{"homeId_":1,"nodeId_":2}})"),
              "SyntaxError: expected array, got object");
}

TEST(SendCommandMsg, RefusesUnknownOptions) {
    EXPECT_EQ(errorOfReading(R"({"__name__":"zorv::SendCommandMsg","options_":"ack|fast"})"),
              "InvalidEnumError: options_: invalid TransmitOption text \"ack|fast\"");
}

TEST(SendCommandMsg, SharesItsCommandWithItsClone) {
    auto const clone = boost::dynamic_pointer_cast<SendCommandMsg>(request({5})->clone());
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->command().get(), command.get());
}

} // namespace
} // namespace zorv
