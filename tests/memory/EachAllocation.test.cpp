// SPDX-License-Identifier: Apache-2.0
// One allocation fails, the next ones do not: whichever it is, nothing leaks and nothing stays half done.

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvlogger/Logger.h"
#include "tests/memory/Allocations.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/golden.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libserialapi/SessionLayer.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zorv {
namespace {

/// Calls `work` with one allocation more each time before one is refused, until none is. After each call as much is
/// allocated as before it, and `isWhole` holds. Gives how often one was refused, and how often that was heard of.
struct Refusals {
    std::size_t all = 0;
    std::size_t heard = 0;
};

template <class Work, class Whole> Refusals refuseEach(Work const& work, Whole const& isWhole) {
    work(); // what is made once and kept is no leak
    EXPECT_TRUE(isWhole());
    Refusals refusals;
    refusals.all = forEachAllocation([&](std::size_t granted) {
        auto const before = Allocations::liveHere();
        bool wasRefused = false;
        {
            Allocations::Gap const gap(granted);
            try {
                work();
            } catch (std::bad_alloc const&) { ++refusals.heard; }
            wasRefused = Allocations::Gap::wasReached();
        }
        EXPECT_EQ(Allocations::liveHere(), before) << "the one after " << granted;
        EXPECT_TRUE(isWhole()) << "the one after " << granted;
        return wasRefused;
    });
    return refusals;
}

class EachAllocationOf : public testing::TestWithParam<std::string> {};

TEST_P(EachAllocationOf, MayFailInReading) {
    auto const text = golden(GetParam());
    auto const refusals =
        refuseEach([&] { readSerializable(text); }, [&] { return toText(*readSerializable(text)) == text; });
    EXPECT_GT(refusals.all, 1U);
    EXPECT_EQ(refusals.heard, refusals.all);
}

TEST_P(EachAllocationOf, MayFailInWriting) {
    auto const text = golden(GetParam());
    auto const object = readSerializable(text);
    auto const refusals = refuseEach([&] { toText(*object); }, [&] { return toText(*object) == text; });
    EXPECT_GT(refusals.all, 0U);
    EXPECT_EQ(refusals.heard, refusals.all);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EachAllocationOf, testing::ValuesIn(goldenNames()),
                         [](auto const& one) { return one.param; });

template <class M> void refuseEachInCloning() {
    auto const text = golden(M::NAME);
    auto const message = readBack<M>(text);
    auto const clone = [&message] {
        if constexpr (std::is_base_of_v<TConfirmable, M>) {
            return message->clone();
        } else {
            return boost::make_shared<M>(*message);
        }
    };
    auto const refusals = refuseEach(clone, [&] { return toText(*clone()) == text; });
    EXPECT_GT(refusals.all, 0U) << M::NAME;
    EXPECT_EQ(refusals.heard, refusals.all) << M::NAME;
}

template <class... Messages> void refuseEachInCloning(MessageList<Messages...>) {
    (refuseEachInCloning<Messages>(), ...);
}

TEST(EachAllocation, MayFailInCloning) { refuseEachInCloning(Catalogue()); }

TEST(EachAllocation, MayFailInRegistering) {
    auto const names = SerialRegistry::names();
    std::string const name = "zorv::AClassWithANameOfSomeLength";
    SerialFactory const factory = [name](Serializer&, Serializable*) -> Serializable* { throw std::logic_error(name); };
    auto const refusals = refuseEach([&] { SerialRegistrar const registrar(name, factory); },
                                     [&] { return SerialRegistry::names() == names; });
    EXPECT_GT(refusals.all, 2U);
    EXPECT_EQ(refusals.heard, refusals.all);
}

Serializable* makeNothing(Serializer&, Serializable*) { return nullptr; }

TEST(EachAllocation, MayFailInRefusingANameThatIsTaken) {
    Logger::consoleThreshold(LogLevel::error);
    SerialFactory const factory = &makeNothing;
    auto const refusals = refuseEach([&] { SerialRegistrar const registrar("zorv::PingMsg", factory); },
                                     [] { return readSerializable(golden("PingMsg")) != nullptr; });
    Logger::consoleThreshold(LogLevel::warn);
    EXPECT_GT(refusals.all, 2U);
}

TEST(EachAllocation, MayFailInReadingABackup) {
    TemporaryDirectory const directory;
    auto const path =
        directory.write("a name of some length for the backup.json",
                        R"([{"homeId_":5},{"name_":"a name that does not fit into a small string","offset_":0,)"
                        R"("size_":4,"crc_":4065733082,"contents_":"AQIDBA=="},{"homeId_":6}])");
    ManageNvmMsg message;
    EXPECT_EQ(message.read(path), ZResult::success);
    auto const isWhole = [&] { return message.read(path) == ZResult::success && message.blobs().size() == 1; };
    auto const refusals = refuseEach(
        [&] {
            ManageNvmMsg own;
            auto const result = own.read(path);
            bool const isRead = own.blobs().size() == 1 && own.homeId() == 6;
            if (isRead != (result == ZResult::success)) { std::abort(); }
        },
        isWhole);
    EXPECT_GT(refusals.all, 20U);
    EXPECT_EQ(refusals.heard, 0U);
}

// ---- the session layer

using serialapi::Bytes;
using serialapi::Frame;
using serialapi::FrameType;
using serialapi::Milliseconds;
using serialapi::SessionEvent;
using serialapi::SessionLayer;

/// A host asks, a module answers and then calls back. Both count what came, and go on where one of them failed.
class Line {
public:
    Line() {
        host_.start();
        host_.trace(
            [](serialapi::Side, Frame const& frame) { throw std::runtime_error(std::to_string(frame.function)); });
        module_.start();
        said_.reserve(16);
        responses_.reserve(16);
    }

    /// What happens in a few seconds, in which the line loses the host's first frame.
    void pass() {
        bool isAsked = false;
        int toSay = 0;
        for (int i = 0; i < 80; ++i) {
            if (!isAsked) {
                isAsked = tried([&] { host_.request({FrameType::request, 0x15, {}}, true, now_); });
            }
            if (toSay > 0 && tried([&] { module_.send({FrameType::response, 0x15, Bytes(20, 1)}, {}, now_); })) {
                --toSay;
                while (!tried([&] { module_.send({FrameType::request, 0x04, Bytes(20, 2)}, {}, now_); })) {}
            }
            tried([&] { carry(host_, module_); });
            for (auto const& event : module_.takeEvents()) { toSay += event.kind == SessionEvent::Kind::frame ? 1 : 0; }
            tried([&] { carry(module_, host_); });
            for (auto& event : host_.takeEvents()) {
                auto& heard = event.kind == SessionEvent::Kind::frame ? said_ : responses_;
                heard.push_back(std::move(event));
            }
            now_ += Milliseconds(100);
            tried([&] { host_.tick(now_); });
            tried([&] { module_.tick(now_); });
        }
    }

    std::vector<SessionEvent> takeResponses() { return std::exchange(responses_, {}); }
    std::vector<SessionEvent> takeSaid() { return std::exchange(said_, {}); }
    bool isQuiet() const { return host_.isQuiet() && module_.isQuiet(); }

private:
    template <class Work> static bool tried(Work const& work) {
        try {
            work();
            return true;
        } catch (std::bad_alloc const&) { return false; }
    }

    void carry(SessionLayer& from, SessionLayer& to) {
        auto bytes = from.takeOutput();
        if (bytes.size() > 1 && !std::exchange(hasLost_, true)) { return; }
        if (!bytes.empty()) { to.receive(bytes, now_); }
    }

    SessionLayer host_{serialapi::Side::host};
    SessionLayer module_{serialapi::Side::module};
    serialapi::TimePoint now_{};
    bool hasLost_ = false;
    std::vector<SessionEvent> responses_;
    std::vector<SessionEvent> said_;
};

TEST(EachAllocation, MayFailInASessionAndCostsNoFrame) {
    auto const refusals = forEachAllocation([](std::size_t granted) {
        auto const before = Allocations::liveHere();
        bool wasRefused = false;
        {
            Line line;
            {
                Allocations::Gap const gap(granted);
                line.pass();
                wasRefused = Allocations::Gap::wasReached();
            }
            for (int again = 0; again < 2; ++again) {
                auto const responses = line.takeResponses();
                EXPECT_EQ(responses.size(), 1U) << granted << ' ' << again;
                for (auto const& one : responses) {
                    EXPECT_EQ(one.kind, SessionEvent::Kind::response) << granted;
                    EXPECT_EQ(one.frame.parameters, Bytes(20, 1)) << granted;
                }
                auto const said = line.takeSaid();
                EXPECT_EQ(said.size(), 1U) << granted << ' ' << again;
                for (auto const& one : said) { EXPECT_EQ(one.frame.parameters, Bytes(20, 2)) << granted; }
                EXPECT_TRUE(line.isQuiet()) << granted;
                if (again == 0) { line.pass(); }
            }
        }
        EXPECT_EQ(Allocations::liveHere(), before) << granted;
        return wasRefused;
    });
    EXPECT_GT(refusals, 10U);
}

} // namespace
} // namespace zorv
