// SPDX-License-Identifier: Apache-2.0
// What holds for every message, tested for each message of the catalogue. The golden file of a message is its wire
// text, with every member at a distinct value; this suite takes the text apart and puts it together again.

#include "zwave/libquillet/Catalogue.h"

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iomanip>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zorv {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;

// ---- the messages that are irregular, and in what

bool isOneOf(std::initializer_list<char const*> names, std::string const& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Leaves out the frames of its base classes, so that peers with other frames can read it.
bool hasNoBases(std::string const& message) { return isOneOf({"VersionMsg"}, message); }

/// Prints something else than its wire text.
bool printsByHand(std::string const& message) { return isOneOf({"VersionMsg"}, message); }

// ---- the frames of a message: its own and those of its base classes

using Frames = std::vector<Json::Value*>;

Frames framesOf(Json::Value& message) {
    Frames frames{&message};
    while (frames.back()->isMember("__bases__") && !(*frames.back())["__bases__"].empty()) {
        frames.push_back(&(*frames.back())["__bases__"][0]);
    }
    return frames;
}

std::vector<std::string> memberKeys(Json::Value const& frame) {
    auto keys = frame.getMemberNames();
    auto const isFrameKey = [](std::string const& key) { return key == "__name__" || key == "__bases__"; };
    keys.erase(std::remove_if(keys.begin(), keys.end(), isFrameKey), keys.end());
    return keys;
}

/// Sets the members with these keys, in whatever frame, to null, so that the rest can be compared.
Json::Value without(std::initializer_list<char const*> keys, Json::Value message) {
    for (auto* const frame : framesOf(message)) {
        for (auto const* const key : keys) {
            if (frame->isMember(key)) { (*frame)[key] = Json::Value::null; }
        }
    }
    return message;
}

/// Drawn afresh for each message, so that no two default messages have the same.
bool isDrawnAfresh(std::string const& key) { return key == "id_" || key == "timestamp_"; }

// ---- values that a member cannot have

struct BadValue {
    Json::Value value;
    std::string error;
};

BadValue badType(std::string const& key, Json::Value const& value, std::string const& expected) {
    auto const got = Serializer::toString(value.type());
    return {value, "SerializerError: " + key + ": expected " + expected + ", got " + got};
}

std::vector<BadValue> badTypes(std::string const& key, std::string const& expected,
                               std::initializer_list<Json::Value> values) {
    std::vector<BadValue> bad;
    for (auto const& value : values) { bad.push_back(badType(key, value, expected)); }
    return bad;
}

BadValue notAnArray(Json::Value const& value) {
    return {value, "SyntaxError: expected array, got " + Serializer::toString(value.type())};
}

BadValue outOfRange(std::string const& key, std::int64_t number, std::string const& expected) {
    return {Json::Value(Json::Int64(number)),
            "SerializerError: " + key + ": expected " + expected + ", got " + std::to_string(number)};
}

BadValue unknownText(std::string const& key, std::string const& enumName) {
    return {"noSuchText", "InvalidEnumError: " + key + ": invalid " + enumName + " text \"noSuchText\""};
}

Json::Value const emptyArray(Json::arrayValue);
Json::Value const emptyObject(Json::objectValue);
Json::Value const null;

std::vector<BadValue> badValues(MemberDescriptor const& member) {
    using Kind = TypeDescriptor::Kind;
    auto const& key = member.key;
    auto const& type = member.type;
    switch (type.kind) {
    case Kind::boolean: return badTypes(key, "boolean", {1, "true", null, emptyArray, emptyObject});
    case Kind::integer: {
        auto bad = badTypes(key, type.name, {"1", true, 1.5, null, emptyArray, emptyObject});
        bad.push_back(outOfRange(key, static_cast<std::int64_t>(type.minimum) - 1, type.name));
        bad.push_back(outOfRange(key, static_cast<std::int64_t>(type.maximum) + 1, type.name));
        return bad;
    }
    case Kind::number: return badTypes(key, "number", {"1", true, null, emptyArray, emptyObject});
    case Kind::text:
    case Kind::timeStamp:
    case Kind::uuid:
    case Kind::endpoint: return badTypes(key, "string", {1, true, null, emptyArray, emptyObject});
    case Kind::enumeration:
    case Kind::openSet: {
        auto bad = badTypes(key, "string", {1, true, null, emptyArray, emptyObject});
        bad.push_back(unknownText(key, type.name));
        return bad;
    }
    case Kind::flagSet: return badTypes(key, "string", {1, true, null, emptyArray, emptyObject});
    case Kind::framed:
    case Kind::record: return badTypes(key, "object", {1, "text", true, null, emptyArray});
    case Kind::reference: return badTypes(key, "object", {1, "text", true, emptyArray});
    case Kind::list:
    case Kind::pairs:
        return {notAnArray(1), notAnArray("text"), notAnArray(true), notAnArray(null), notAnArray(emptyObject)};
    }
    return {};
}

// ---- the suite

/// The messages of a list for which `Filter` holds, and the base of all that are answered.
template <template <class> class Filter, class List, class... Kept> struct Filtered;
template <template <class> class Filter, class... Kept> struct Filtered<Filter, MessageList<>, Kept...> {
    using Type = testing::Types<Confirmable, Kept...>;
};
template <template <class> class Filter, class First, class... Rest, class... Kept>
struct Filtered<Filter, MessageList<First, Rest...>, Kept...>
    : std::conditional_t<Filter<First>::value, Filtered<Filter, MessageList<Rest...>, Kept..., First>,
                         Filtered<Filter, MessageList<Rest...>, Kept...>> {};

template <class Message> using IsMessage = std::is_base_of<TMessage, Message>;
template <class Message> using IsConfirmable = std::is_base_of<Confirmable, Message>;

struct MessageName {
    template <class Message> static std::string GetName(int) { return Message::NAME; }
};

template <class Message, class = void> struct HasClone : std::false_type {};
template <class Message> struct HasClone<Message, std::void_t<decltype(std::declval<Message const&>().clone())>>
    : std::true_type {};

template <class Message> class CatalogueMessage : public testing::Test {
protected:
    static std::string serialName() { return "zorv::" + Message::NAME; }

    static boost::shared_ptr<Message> read(std::string const& text) { return readBack<Message>(text); }

    static boost::shared_ptr<Message> sample() { return read(golden(Message::NAME)); }
    static Json::Value sampleJson() { return toJson(golden(Message::NAME)); }

    static boost::shared_ptr<Message> blank() { return readBlank<Message>(); }

    /// Runs `check` for every member of every frame of the sample: with the sample, the frame's index and the key.
    static void forEachMember(std::function<void(Json::Value, std::size_t, std::string const&)> const& check) {
        auto json = sampleJson();
        auto const frames = framesOf(json);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            for (auto const& key : memberKeys(*frames[i])) {
                SCOPED_TRACE((*frames[i])["__name__"].asString() + ' ' + key);
                check(json, i, key);
            }
        }
    }
};

using Messages = Filtered<IsMessage, Catalogue>::Type;
TYPED_TEST_SUITE(CatalogueMessage, Messages, MessageName);

TYPED_TEST(CatalogueMessage, IsReadFromItsGoldenTextAndWritesItByteForByte) {
    EXPECT_EQ(toText(*this->sample()), golden(TypeParam::NAME));
}

TYPED_TEST(CatalogueMessage, IsFramedByItsBaseClassesDownToTMessage) {
    auto json = this->sampleJson();
    std::vector<std::string> names;
    for (auto* const frame : framesOf(json)) { names.push_back((*frame)["__name__"].asString()); }

    std::vector<std::string> expected{this->serialName()};
    if (!hasNoBases(TypeParam::NAME)) {
        if (IsConfirmable<TypeParam>::value) {
            if (!std::is_same_v<TypeParam, Confirmable>) { expected.emplace_back("zorv::Confirmable"); }
            expected.emplace_back("zorv::TConfirmable");
        }
        expected.emplace_back("zorv::TMessage");
    }
    EXPECT_EQ(names, expected);
}

TYPED_TEST(CatalogueMessage, IsRegisteredUnderItsSerialName) {
    EXPECT_THAT(SerialRegistry::names(), Contains(this->serialName()));
    EXPECT_EQ(TypeParam::registrar.serialName(), this->serialName());
    EXPECT_EQ(TypeParam::describe().name, this->serialName());
}

TYPED_TEST(CatalogueMessage, IsNamedAfterItsClass) { EXPECT_EQ(this->sample()->name(), TypeParam::NAME); }

TYPED_TEST(CatalogueMessage, IsBuiltByTheFactoryThatIsRegistered) {
    Serializer s(golden(TypeParam::NAME));
    std::unique_ptr<Serializable> const built(SerialRegistry::find(this->serialName())(s, nullptr));
    ASSERT_NE(built, nullptr);
    auto const& object = *built;
    EXPECT_EQ(typeid(object), typeid(TypeParam));
    EXPECT_EQ(toText(*built), golden(TypeParam::NAME));
}

TYPED_TEST(CatalogueMessage, IsReadIntoAGivenTarget) {
    auto const target = this->blank();
    Serializer s(golden(TypeParam::NAME));
    EXPECT_EQ(TypeParam::serialFactory(s, target.get()), target.get());
    EXPECT_EQ(toText(*target), golden(TypeParam::NAME));
}

template <class Self, class Base> std::string baseOf(MessageOf<Self, Base> const*) { return Base::serialName(); }

TYPED_TEST(CatalogueMessage, DescribesItselfAsAFramedObjectOfItsBase) {
    auto const type = TypeParam::describe();
    EXPECT_EQ(type.kind, TypeDescriptor::Kind::framed);
    EXPECT_EQ(type.base, baseOf(static_cast<TypeParam*>(nullptr)));
}

TYPED_TEST(CatalogueMessage, HasTheMembersOfItsDescriptor) {
    std::set<std::string> described;
    for (auto const& member : TypeParam::describe().members) {
        EXPECT_TRUE(described.insert(member.key).second) << member.key << " is described twice";
    }
    auto const keys = memberKeys(this->sampleJson());
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()), described);
}

TYPED_TEST(CatalogueMessage, HasTheDefaultsOfItsDescriptor) {
    auto const json = toJson(*this->blank());
    auto const members = TypeParam::describe().members;
    ASSERT_EQ(members.size(), memberKeys(this->sampleJson()).size());
    for (auto const& member : members) {
        EXPECT_EQ(toText(json[member.key]), toText(toJson(member.defaultJson))) << member.key;
    }
}

TYPED_TEST(CatalogueMessage, HasAGoldenTextThatSetsEveryMemberToAnotherValueThanItsDefault) {
    auto blank = toJson(*this->blank());
    this->forEachMember([&](Json::Value sample, std::size_t frame, std::string const& key) {
        EXPECT_NE((*framesOf(sample)[frame])[key], (*framesOf(blank)[frame])[key]);
    });
}

TYPED_TEST(CatalogueMessage, KeepsTheDefaultOfAMemberWhoseKeyIsAbsent) {
    auto blank = toJson(*this->blank());
    this->forEachMember([&](Json::Value const& sample, std::size_t frame, std::string const& key) {
        auto input = sample;
        framesOf(input)[frame]->removeMember(key);
        auto expected = sample;
        (*framesOf(expected)[frame])[key] = (*framesOf(blank)[frame])[key];

        auto got = toJson(*this->read(toText(input)));
        if (isDrawnAfresh(key)) {
            auto& value = (*framesOf(got)[frame])[key];
            EXPECT_NE(value, (*framesOf(input)[frame])[key]);
            value = (*framesOf(expected)[frame])[key];
        }
        EXPECT_EQ(toText(got), toText(expected));
    });
}

TYPED_TEST(CatalogueMessage, RefusesAMemberOfTheWrongType) {
    auto const members = TypeParam::describe().members;
    ASSERT_EQ(members.size(), memberKeys(this->sampleJson()).size());
    for (auto const& member : members) {
        auto const badOnes = badValues(member);
        ASSERT_FALSE(badOnes.empty()) << member.key;
        for (auto const& bad : badOnes) {
            auto json = this->sampleJson();
            json[member.key] = bad.value;
            EXPECT_EQ(errorOfReading(toText(json)), bad.error) << member.key << ": " << toText(bad.value);
        }
    }
}

TYPED_TEST(CatalogueMessage, PassesOverKeysThatItDoesNotKnow) {
    auto json = this->sampleJson();
    for (auto* const frame : framesOf(json)) {
        (*frame)["zzz"]["__bases__"].append(1);
        (*frame)["A"] = Json::Value::null;
    }
    EXPECT_EQ(toText(*this->read(toText(json))), golden(TypeParam::NAME));
}

TYPED_TEST(CatalogueMessage, DoesNotDependOnTheOrderOfKeys) {
    auto const json = this->sampleJson();
    EXPECT_EQ(toText(*this->read(toText(json))), golden(TypeParam::NAME));
    EXPECT_EQ(toText(*this->read(toTextBackwards(json))), golden(TypeParam::NAME));
}

TYPED_TEST(CatalogueMessage, PrintsItsWireTextUnlessItPrintsByHand) {
    std::ostringstream os;
    this->sample()->print(os);
    EXPECT_EQ(os.str() == golden(TypeParam::NAME), !printsByHand(TypeParam::NAME)) << os.str();
}

TYPED_TEST(CatalogueMessage, PrintsTheSameWhateverWidthTheStreamHasForItsNextItem) {
    auto const sample = this->sample();
    std::ostringstream plain;
    sample->print(plain);
    std::ostringstream os;
    os << std::setw(5000);
    sample->print(os);
    os << 'x';
    EXPECT_EQ(os.str(), plain.str() + 'x');
}

TYPED_TEST(CatalogueMessage, IsCopiedMemberByMember) {
    auto const sample = this->sample();
    TypeParam const copy(*sample);
    EXPECT_EQ(toText(copy), golden(TypeParam::NAME));
    EXPECT_EQ(copy.id(), sample->id());
}

TYPED_TEST(CatalogueMessage, HasACloneOnlyWhereItIsConfirmable) {
    EXPECT_EQ(HasClone<TypeParam>::value, IsConfirmable<TypeParam>::value);
}

// ---- what is answered

template <class Message> class CatalogueRequest : public CatalogueMessage<Message> {};

using Requests = Filtered<IsConfirmable, Catalogue>::Type;
TYPED_TEST_SUITE(CatalogueRequest, Requests, MessageName);

TYPED_TEST(CatalogueRequest, ClonesItselfWithItsIdentity) {
    auto const sample = this->sample();
    auto const clone = sample->clone();
    ASSERT_NE(clone, nullptr);
    auto const& object = *clone;
    EXPECT_EQ(typeid(object), typeid(TypeParam));
    EXPECT_NE(clone.get(), sample.get());
    EXPECT_EQ(clone->id(), sample->id());
    EXPECT_EQ(toText(*clone), golden(TypeParam::NAME));
}

TYPED_TEST(CatalogueRequest, IsAnsweredByACopyWithTheGivenResultAndTheRequestsIdentityAsCorrelation) {
    auto const request = this->sample();
    auto const response = request->makeResponse(ZResult::rejected);
    ASSERT_NE(response, nullptr);
    auto const& object = *response;
    EXPECT_EQ(typeid(object), typeid(TypeParam));
    EXPECT_EQ(response->result(), ZResult::rejected);
    EXPECT_EQ(response->correlation(), request->id());
    EXPECT_NE(response->id(), request->id());
    EXPECT_FALSE(response->id().is_nil());
    EXPECT_EQ(response->source(), request->source());
    EXPECT_EQ(response->role(), request->role());
    EXPECT_EQ(toText(*request), golden(TypeParam::NAME)) << "the request changed";
    auto const ownKeys = {"id_", "timestamp_", "correlation_", "result_"};
    EXPECT_EQ(toText(without(ownKeys, toJson(*response))), toText(without(ownKeys, this->sampleJson())));
}

TYPED_TEST(CatalogueRequest, IsAnsweredByACopyWithResultFiveAfterItsDeadline) {
    auto const request = this->sample();
    auto const response = request->makeTimeoutResponse();
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(static_cast<int>(response->result()), 5);
    EXPECT_EQ(response->correlation(), request->id());
    auto const ownKeys = {"id_", "timestamp_", "correlation_", "result_"};
    EXPECT_EQ(toText(without(ownKeys, toJson(*response))), toText(without(ownKeys, this->sampleJson())));
}

// ---- members of kinds that only some messages have

struct MemberOfMessage {
    std::string message; ///< such as "PingMsg"
    MemberDescriptor member;

    /// The message's golden text with another value of the member.
    std::string textWith(Json::Value const& value) const {
        auto json = toJson(golden(message));
        json[member.key] = value;
        return toText(json);
    }
};

std::ostream& operator<<(std::ostream& os, MemberOfMessage const& it) {
    return os << it.message << ' ' << it.member.key;
}

std::vector<MemberOfMessage> membersOf(TypeDescriptor::Kind kind) {
    std::vector<MemberOfMessage> found;
    for (auto const& message : describeCatalogue()) {
        for (auto const& member : message.members) {
            if (member.type.kind == kind) { found.push_back({message.name.substr(6), member}); }
        }
    }
    EXPECT_FALSE(found.empty()) << "no message has such a member";
    return found;
}

TEST(CatalogueMembers, FlagSetRefusesAnUnknownFlag) {
    for (auto const& it : membersOf(TypeDescriptor::Kind::flagSet)) {
        EXPECT_THAT(errorOfReading(it.textWith("noSuchText")),
                    AllOf(StartsWith("InvalidEnumError: "), EndsWith(" text \"noSuchText\"")))
            << it;
    }
}

TEST(CatalogueMembers, ReferenceRefusesAnUnknownClass) {
    Json::Value object;
    object["__name__"] = "zorv::NoSuchClass";
    for (auto const& it : membersOf(TypeDescriptor::Kind::reference)) {
        EXPECT_EQ(errorOfReading(it.textWith(object)),
                  "SerializerError: " + it.member.key + ": unknown class \"zorv::NoSuchClass\"")
            << it;
    }
}

TEST(CatalogueMembers, ReferenceReadsNullAsAnEmptyPointer) {
    for (auto const& it : membersOf(TypeDescriptor::Kind::reference)) {
        auto const text = it.textWith(Json::Value::null);
        EXPECT_EQ(toText(toJson(*readSerializable(text))), text) << it;
    }
}

// ---- the list itself

TEST(Catalogue, DescribesEveryMessageOnce) {
    std::set<std::string> names;
    for (auto const& message : describeCatalogue()) {
        EXPECT_TRUE(names.insert(message.name).second) << message.name;
        EXPECT_THAT(message.name, StartsWith("zorv::"));
    }
    EXPECT_THAT(names, Contains("zorv::PingMsg"));
}

} // namespace
} // namespace zorv
