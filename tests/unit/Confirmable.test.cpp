// SPDX-License-Identifier: Apache-2.0
// What a message makes of its member table, shown on a message that has a member of every kind.

#include "zwave/libquillet/Confirmable.h"

#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/printFromSerial.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/unordered_map.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace zorv {

class SampleMsg : public MessageOf<SampleMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    struct Wire;

    bool flag_ = true;
    double ratio_ = 0.5;
    std::string text_ = "default";
    std::vector<std::string> texts_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<unsigned char> octets_;
    std::vector<ZwaveAddress> addresses_;
    std::vector<boost::shared_ptr<PingMsg>> pings_;
    boost::unordered_map<ZwaveAddress, boost::shared_ptr<PingMsg>> pingOfNode_;
    boost::shared_ptr<PingMsg> ping_;
};

std::string const SampleMsg::NAME("SampleMsg");
SerialRegistrar const SampleMsg::registrar("zorv::" + NAME, &SampleMsg::serialFactory);

struct SampleMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&SampleMsg::flag_>(""), member<&SampleMsg::ratio_>(""), member<&SampleMsg::text_>(""),
                        member<&SampleMsg::texts_>(""), member<&SampleMsg::rows_>(""), member<&SampleMsg::octets_>(""),
                        member<&SampleMsg::addresses_>(""), member<&SampleMsg::pings_>(""),
                        member<&SampleMsg::pingOfNode_>(""), member<&SampleMsg::ping_>(""));
};

template class MessageOf<SampleMsg, Confirmable>;

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

ZwaveAddress const node5(0xC0FFEE01, 5);

/// A sample with only these members in its text.
std::string sampleText(std::string const& members) { return R"({"__name__":"zorv::SampleMsg",)" + members + "}"; }

boost::shared_ptr<SampleMsg> readSample(std::string const& members) { return readBack<SampleMsg>(sampleText(members)); }

std::string errorOfSample(std::string const& members) { return errorOfReading(sampleText(members)); }

/// What a sample writes of its own members.
std::string ownText(SampleMsg const& sample) {
    auto const text = toText(sample);
    return text.substr(text.find("\"flag_\""));
}

char const* const emptySample = R"("flag_":true,"ratio_":0.5,"text_":"default","texts_":[],"rows_":[],"octets_":[],)"
                                R"("addresses_":[],"pings_":[],"pingOfNode_":[],"ping_":null})";

// ---- members

TEST(Members, AnEmptyPointerIsWrittenAsNullAndReadBackEmpty) {
    EXPECT_EQ(ownText(SampleMsg()), emptySample);
    SampleMsg sample;
    sample.ping_ = PingMsg::create(node5);
    Serializer s(toText(SampleMsg()));
    sample.serialExtract(s);
    EXPECT_EQ(sample.ping_, nullptr);
}

TEST(Members, ASetPointerIsWrittenAsAFramedObjectAndReadBack) {
    SampleMsg sample;
    sample.ping_ = readBack<PingMsg>(golden("PingMsg"));
    EXPECT_THAT(toText(sample), EndsWith("\"ping_\":" + golden("PingMsg") + "}"));
    auto const copy = readSerializable(toText(sample));
    EXPECT_EQ(toText(*copy), toText(sample));
}

TEST(Members, AnObjectOfAnotherClassLeavesThePointerEmptyWithoutError) {
    EXPECT_EQ(readSample(R"("ping_":{"__name__":"zorv::Confirmable"})")->ping_, nullptr);
}

TEST(Members, APointerThatWasSetIsEmptiedByAnObjectOfAnotherClass) {
    SampleMsg sample;
    sample.ping_ = PingMsg::create(node5);
    Serializer s(sampleText(R"("ping_":{"__name__":"zorv::Confirmable"})"));
    sample.serialExtract(s);
    EXPECT_EQ(sample.ping_, nullptr);
}

TEST(Members, AnAbsentPointerKeepsWhatItPointsTo) {
    SampleMsg sample;
    sample.ping_ = PingMsg::create(node5);
    auto const before = sample.ping_;
    Serializer s(sampleText(R"("flag_":false)"));
    sample.serialExtract(s);
    EXPECT_EQ(sample.ping_, before);
}

TEST(Members, TheMembersBehindAReferenceAreRead) {
    auto const sample = readSample(R"("ping_":{"__name__":"zorv::Confirmable","result_":7},"flag_":false)");
    EXPECT_FALSE(sample->flag_);
}

TEST(Members, ABadMemberOfAReferenceIsNamedByItsPath) {
    EXPECT_EQ(errorOfSample(R"("pings_":[null,{"__name__":"zorv::PingMsg","latencyMs_":"x"}])"),
              "SerializerError: pings_[1].latencyMs_: expected unsigned int, got string");
}

TEST(Members, AnEmptyVectorIsWrittenAsAnEmptyArrayAndReadBackEmpty) {
    SampleMsg sample;
    sample.texts_ = {"a", "b"};
    Serializer s(toText(SampleMsg()));
    sample.serialExtract(s);
    EXPECT_THAT(sample.texts_, IsEmpty());
}

TEST(Members, AVectorReadIntoALongerOneShrinksItToTheArraysSize) {
    SampleMsg sample;
    sample.texts_ = {"a", "b", "c"};
    Serializer s(sampleText(R"("texts_":["x","y"])"));
    sample.serialExtract(s);
    EXPECT_THAT(sample.texts_, ElementsAre("x", "y"));
}

TEST(Members, AVectorReadIntoAShorterOneGrowsIt) {
    SampleMsg sample;
    sample.octets_ = {1};
    Serializer s(sampleText(R"("octets_":[0,255,16])"));
    sample.serialExtract(s);
    EXPECT_THAT(sample.octets_, ElementsAre(0, 255, 16));
}

TEST(Members, AVectorOfVectorsKeepsItsRowsOfDifferentLength) {
    auto const sample = readSample(R"("rows_":[["a","b"],[],["c"]])");
    EXPECT_THAT(sample->rows_, ElementsAre(ElementsAre("a", "b"), IsEmpty(), ElementsAre("c")));
    EXPECT_EQ(toText(toJson(*sample)["rows_"]), R"([["a","b"],[],["c"]])");
}

TEST(Members, AVectorOfRecordsReadsEachRecord) {
    auto const sample = readSample(R"("addresses_":[{"homeId_":1,"nodeId_":2},{"nodeId_":4}])");
    EXPECT_THAT(sample->addresses_, ElementsAre(ZwaveAddress(1, 2), ZwaveAddress(0, 4)));
}

TEST(Members, AVectorThatIsNotAnArrayIsASyntaxErrorThatNamesTheType) {
    EXPECT_EQ(errorOfSample(R"("texts_":"a")"), "SyntaxError: expected array, got string");
    EXPECT_EQ(errorOfSample(R"("texts_":{})"), "SyntaxError: expected array, got object");
    EXPECT_EQ(errorOfSample(R"("texts_":null)"), "SyntaxError: expected array, got null");
    EXPECT_EQ(errorOfSample(R"("texts_":1)"), "SyntaxError: expected array, got int");
    EXPECT_EQ(errorOfSample(R"("texts_":4294967296)"), "SyntaxError: expected array, got int");
    EXPECT_EQ(errorOfSample(R"("texts_":1.5)"), "SyntaxError: expected array, got real");
    EXPECT_EQ(errorOfSample(R"("texts_":true)"), "SyntaxError: expected array, got boolean");
    EXPECT_EQ(errorOfSample(R"("rows_":[["a"],"b"])"), "SyntaxError: expected array, got string");
}

TEST(Members, TheErrorOfAVectorKnowsItsPlaceWhichItsTextDoesNotName) {
    auto const placeIn = [](std::string const& members) {
        try {
            readSample(members);
        } catch (SyntaxError const& error) { return error.place(); }
        return std::string("no error");
    };
    EXPECT_EQ(placeIn(R"("texts_":"a")"), "texts_");
    EXPECT_EQ(placeIn(R"("rows_":[["a"],"b"])"), "rows_[1]");
    EXPECT_EQ(SyntaxError("made by itself").place(), "");
}

TEST(Members, TheComplaintAboutALineNamesThePlaceOfABadVector) {
    EXPECT_EQ(errorOf([] { readMessage(sampleText(R"("rows_":[["a"],"b"])")); }),
              "BadMessageError: rows_[1]: zorv::SyntaxError: expected array, got string");
    EXPECT_EQ(errorOf([] { readMessage(sampleText(R"("texts_":[1])")); }),
              "BadMessageError: texts_[0]: expected string, got int");
}

TEST(Members, TheErrorOfAnEnumerationNamesItsPathAndKeepsItsEnumeration) {
    try {
        readSample(R"("pings_":[null,{"__name__":"zorv::PingMsg","__bases__":[{"__name__":"zorv::Confirmable",)"
                   R"("__bases__":[{"__name__":"zorv::TConfirmable","result_":"perhaps"}]}]}])");
        FAIL() << "it was read";
    } catch (InvalidEnumError const& error) {
        EXPECT_STREQ(error.what(), "pings_[1].result_: invalid ZResult text \"perhaps\"");
        EXPECT_EQ(error.enumName(), "ZResult");
    }
}

TEST(Members, ABadElementIsNamedByItsIndex) {
    EXPECT_EQ(errorOfSample(R"("texts_":["a",2])"), "SerializerError: texts_[1]: expected string, got int");
    EXPECT_EQ(errorOfSample(R"("octets_":[0,256])"), "SerializerError: octets_[1]: expected unsigned byte, got 256");
    EXPECT_EQ(errorOfSample(R"("rows_":[[],["a",1]])"), "SerializerError: rows_[1][1]: expected string, got int");
    EXPECT_EQ(errorOfSample(R"("addresses_":[{"nodeId_":-1}])"),
              "SerializerError: addresses_[0].nodeId_: expected unsigned byte, got -1");
}

TEST(Members, AMapIsAnArrayOfPairs) {
    auto const sample = readSample(R"("pingOfNode_":[[{"homeId_":1,"nodeId_":2},null]])");
    ASSERT_EQ(sample->pingOfNode_.size(), 1U);
    EXPECT_EQ(sample->pingOfNode_.at(ZwaveAddress(1, 2)), nullptr);
    EXPECT_EQ(toText(toJson(*sample)["pingOfNode_"]), R"([[{"homeId_":1,"nodeId_":2},null]])");
}

TEST(Members, AMapWithASetValueRoundTrips) {
    SampleMsg sample;
    sample.pingOfNode_[node5] = readBack<PingMsg>(golden("PingMsg"));
    auto const text = toText(sample);
    EXPECT_NE(text.find(R"("pingOfNode_":[[{"homeId_":3237998081,"nodeId_":5},)" + golden("PingMsg") + "]]"),
              std::string::npos);
    EXPECT_EQ(toText(*readSerializable(text)), text);
}

TEST(Members, AMapOfManyEntriesRoundTrips) {
    SampleMsg sample;
    for (unsigned char node = 1; node <= 232; ++node) { sample.pingOfNode_[ZwaveAddress(7, node)]; }
    auto const copy = readBack<SampleMsg>(toText(sample));
    EXPECT_EQ(copy->pingOfNode_.size(), 232U);
    EXPECT_EQ(copy->pingOfNode_.count(ZwaveAddress(7, 232)), 1U);
}

TEST(Members, AMapOfTheWrongShapeIsASyntaxError) {
    EXPECT_EQ(errorOfSample(R"("pingOfNode_":{})"), "SyntaxError: expected array, got object");
    EXPECT_EQ(errorOfSample(R"("pingOfNode_":[{}])"), "SyntaxError: expected array, got object");
    EXPECT_EQ(errorOfSample(R"("pingOfNode_":[7])"), "SyntaxError: expected array, got int");
}

TEST(Members, AMapElementThatIsNotAPairIsRefused) {
    EXPECT_EQ(errorOfSample(R"("pingOfNode_":[[{"nodeId_":1}]])"),
              "SerializerError: pingOfNode_[0]: expected a key and a value, got 1 elements");
}

TEST(Members, WhatFollowsKeyAndValueOfAMapElementIsIgnored) {
    auto const sample = readSample(R"("pingOfNode_":[[{"nodeId_":1},null,7]])");
    EXPECT_EQ(sample->pingOfNode_.size(), 1U);
}

TEST(Members, AMapOfMoreThan4096EntriesIsRefused) {
    std::string entries = "[{},null]";
    for (int i = 1; i < 4097; ++i) { entries += ",[{},null]"; }
    EXPECT_EQ(errorOfSample("\"pingOfNode_\":[" + entries + "]"),
              "SerializerError: pingOfNode_: expected at most 4096 entries, got 4097");
}

TEST(Members, OfTwoEqualKeysOfAMapTheFirstWins) {
    auto const sample = readSample(
        R"("pingOfNode_":[[{"nodeId_":1},null],[{"nodeId_":1},{"__name__":"zorv::PingMsg","latencyMs_":7}]])");
    ASSERT_EQ(sample->pingOfNode_.size(), 1U);
    EXPECT_EQ(sample->pingOfNode_.at(ZwaveAddress(0, 1)), nullptr);
}

TEST(Members, AMessageMayBeNestedInItself) {
    std::string text = R"({"__name__":"zorv::PingMsg"})";
    auto const sample = readSample(R"("pings_":[)" + text + "," + text + "]");
    ASSERT_EQ(sample->pings_.size(), 2U);
    EXPECT_NE(sample->pings_[0]->id(), sample->pings_[1]->id());
}

TEST(Members, AMessageThatCannotBeReadToItsEndIsFreed) {
    // The address sanitizer sees what is left behind.
    EXPECT_EQ(errorOfSample(R"("pings_":[{"__name__":"zorv::PingMsg"}],"ping_":{"__name__":"zorv::PingMsg",)"
                            R"("latencyMs_":{}})"),
              "SerializerError: ping_.latencyMs_: expected unsigned int, got object");
}

// ---- frame

TEST(Confirmable, SerializesToExactlyTheNameAndTheBases) {
    Confirmable const confirmable;
    Serializer base;
    confirmable.TConfirmable::serialInserter(base);
    EXPECT_EQ(toText(confirmable), R"({"__name__":"zorv::Confirmable","__bases__":[)" + base.str() + "]}");
}

TEST(Confirmable, HasResultZeroByDefault) {
    EXPECT_EQ(static_cast<int>(Confirmable().result()), 0);
    EXPECT_EQ(Confirmable(ZResult::rejected).result(), ZResult::rejected);
}

TEST(Confirmable, IsReadFromATextWithoutBases) {
    EXPECT_EQ(
        toJson(*readSerializable(R"({"__name__":"zorv::Confirmable","__bases__":[]})"))["__bases__"][0]["result_"],
        "none");
}

TEST(Confirmable, PrintFromSerialWritesTheWireTextUnchanged) {
    std::ostringstream os;
    printFromSerial(os, *readSerializable(golden("Confirmable")));
    EXPECT_EQ(os.str(), golden("Confirmable"));
}

// ---- copies and answers

TEST(Clone, SharesTheRecordsThatItsOriginalPointsTo) {
    SampleMsg sample;
    sample.ping_ = PingMsg::create(node5);
    sample.texts_ = {"a"};
    auto const clone = boost::dynamic_pointer_cast<SampleMsg>(sample.clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->ping_, sample.ping_);
    EXPECT_EQ(clone->id(), sample.id());
    clone->texts_.emplace_back("b");
    EXPECT_THAT(sample.texts_, ElementsAre("a"));
}

TEST(MakeResponse, CarriesEveryFieldOfTheRequest) {
    SampleMsg request;
    request.ping_ = PingMsg::create(node5);
    request.text_ = "asked";
    auto const response = boost::dynamic_pointer_cast<SampleMsg>(request.makeResponse(ZResult::success));
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(response->ping_, request.ping_);
    EXPECT_EQ(response->text_, "asked");
    EXPECT_EQ(response->result(), ZResult::success);
    EXPECT_EQ(response->correlation(), request.id());
}

TEST(MakeResponse, TwoAnswersToOneRequestHaveIdentitiesOfTheirOwn) {
    Confirmable const request;
    EXPECT_NE(request.makeResponse(ZResult::inProgress)->id(), request.makeResponse(ZResult::success)->id());
}

TEST(MakeTimeoutResponse, ReturnsACopyWithResultFive) {
    SampleMsg request;
    request.text_ = "asked";
    auto const response = boost::dynamic_pointer_cast<SampleMsg>(request.makeTimeoutResponse());
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(response->text_, "asked");
    EXPECT_EQ(static_cast<int>(response->result()), 5);
    EXPECT_EQ(request.result(), ZResult::none);
}

TEST(Respond, RequiresARequest) {
    boost::shared_ptr<SampleMsg> const none;
    EXPECT_EQ(errorOf([&] { requireMessage(none); }), "NullPointerError: msg is null");
    EXPECT_EQ(errorOf([&] { respondWithCopy(none, ZResult::success); }), "NullPointerError: msg is null");
}

TEST(Respond, ANewMessageAnswersTheRequestAndHasAnIdentityOfItsOwn) {
    auto const request = PingMsg::create(node5);
    auto const response = respondWithNew<PingMsg>(*request, node5);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_NE(response->id(), request->id());
}

} // namespace
} // namespace zorv
