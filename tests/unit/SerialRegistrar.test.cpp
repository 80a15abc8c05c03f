// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerialRegistrar.h"

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/readSerializable.h"
#include "tests/support/LogCapture.h"
#include "tests/support/errorOf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

namespace zorv {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// Says by which factory it was made.
class Made : public Serializable {
public:
    explicit Made(int factory) : Serializable(1), by(factory) {}
    void serialExtract(Serializer&) override {}
    int by;
};

SerialFactory factoryOf(int by) {
    return [by](Serializer& s, Serializable* target) -> Serializable* {
        auto made = std::make_unique<Made>(by);
        if (target == nullptr) { target = made.release(); }
        target->serialExtract(s);
        return target;
    };
}

int madeBy(std::string const& serialName) {
    auto const object = readSerializable("{\"__name__\":\"" + serialName + "\"}");
    return dynamic_cast<Made&>(*object).by;
}

TEST(SerialRegistrar, RegistersAFactoryAsLongAsItLives) {
    {
        SerialRegistrar const registrar("test::Made", factoryOf(1));
        EXPECT_EQ(registrar.serialName(), "test::Made");
        EXPECT_THAT(SerialRegistry::names(), Contains("test::Made"));
        EXPECT_EQ(madeBy("test::Made"), 1);
    }
    EXPECT_THAT(SerialRegistry::names(), Not(Contains("test::Made")));
    EXPECT_TRUE(SerialRegistry::find("test::Made").empty());
    EXPECT_EQ(errorOfReading("{\"__name__\":\"test::Made\"}"), "SerializerError: unknown class \"test::Made\"");
}

TEST(SerialRegistrar, RefusesASecondRegistrationWithOneWarning) {
    SerialRegistrar const first("test::Made", factoryOf(1));
    LogCapture const log;
    SerialRegistrar const second("test::Made", factoryOf(2));
    EXPECT_THAT(log.lines(), ElementsAre("WARN SerialRegistrar: test::Made is registered already"));
    EXPECT_EQ(madeBy("test::Made"), 1);
}

TEST(SerialRegistrar, TheFirstStaysWhenTheSecondIsDestroyed) {
    SerialRegistrar const first("test::Made", factoryOf(1));
    { SerialRegistrar const second("test::Made", factoryOf(2)); }
    EXPECT_EQ(madeBy("test::Made"), 1);
}

TEST(SerialRegistrar, TheSecondDoesNotTakeOverWhenTheFirstIsDestroyed) {
    auto first = std::make_unique<SerialRegistrar>("test::Made", factoryOf(1));
    SerialRegistrar const second("test::Made", factoryOf(2));
    first.reset();
    EXPECT_THAT(SerialRegistry::names(), Not(Contains("test::Made")));
}

TEST(SerialRegistrar, ANameThatBecameFreeMayBeTakenAgain) {
    { SerialRegistrar const first("test::Made", factoryOf(1)); }
    LogCapture const log;
    SerialRegistrar const second("test::Made", factoryOf(2));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(madeBy("test::Made"), 2);
}

TEST(SerialRegistrar, LeavesTheRegistryAsItWasWhenAFactoryThrows) {
    SerialRegistrar const registrar("test::Throws", [](Serializer&, Serializable*) -> Serializable* {
        throw std::runtime_error("no object today");
    });
    auto const before = SerialRegistry::names();
    EXPECT_THROW(readSerializable("{\"__name__\":\"test::Throws\"}"), std::runtime_error);
    EXPECT_EQ(SerialRegistry::names(), before);
}

TEST(SerialRegistry, GivesItsNamesInAscendingOrder) {
    SerialRegistrar const b("test::B", factoryOf(1));
    SerialRegistrar const a("test::A", factoryOf(2));
    auto const names = SerialRegistry::names();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_THAT(names, testing::IsSupersetOf({"test::A", "test::B", "zorv::Confirmable", "zorv::PingMsg"}));
}

TEST(SerialRegistry, FindsNothingUnderAnUnknownName) {
    EXPECT_TRUE(SerialRegistry::find("test::Nobody").empty());
    EXPECT_TRUE(SerialRegistry::find("").empty());
    EXPECT_TRUE(SerialRegistry::find("zorv::pingmsg").empty());
}

} // namespace
} // namespace zorv
