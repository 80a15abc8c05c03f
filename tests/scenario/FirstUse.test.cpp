// SPDX-License-Identifier: Apache-2.0
// The first use of the library, by many threads at once: what is made when it is first needed is made once. ctest runs
// each test in a process of its own, so that nothing has been used before.

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/freshIdentity.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzwaved/Zwaved.h"
#include "tests/support/golden.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zorv {
namespace {

constexpr int threadCount = 8;

/// Has all threads do the work at the same time.
void atOnce(std::function<void(int thread)> const& work) {
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < threadCount) {} // without a lock, which would keep them apart
            work(number);
        });
    }
    for (auto& thread : threads) { thread.join(); }
}

TEST(FirstUse, OfEveryClassByManyThreadsReadsAndWritesWhatOneThreadWould) {
    std::map<std::string, std::string> texts;
    for (auto const& name : goldenNames()) { texts[name] = golden(name); }
    ASSERT_GT(texts.size(), 20U);
    std::vector<std::map<std::string, std::string>> written(threadCount);
    atOnce([&](int thread) {
        auto& own = written.at(static_cast<std::size_t>(thread));
        for (auto const& [name, text] : texts) { own[name] = toText(*readSerializable(text)); }
    });
    for (auto const& own : written) { EXPECT_EQ(own, texts); }
}

TEST(FirstUse, OfWhatTheProcessHasOneOfByManyThreads) {
    std::vector<std::string> identities(threadCount);
    std::vector<std::size_t> names(threadCount);
    std::vector<Zwaved const*> daemons(threadCount);
    std::vector<std::size_t> described(threadCount);
    atOnce([&](int thread) {
        auto const own = static_cast<std::size_t>(thread);
        Logger::log(LogLevel::debug, "from a thread", BOOST_CURRENT_LOCATION);
        identities[own] = toText(PingMsg(ZwaveAddress(0xc0ffee01, 5)));
        names[own] = SerialRegistry::names().size();
        daemons[own] = &Zwaved::instance();
        described[own] = describeCatalogue().size();
    });
    EXPECT_EQ(std::set<std::string>(identities.begin(), identities.end()).size(), std::size_t{threadCount});
    EXPECT_EQ(std::set<std::size_t>(names.begin(), names.end()).size(), 1U);
    EXPECT_EQ(std::set<Zwaved const*>(daemons.begin(), daemons.end()).size(), 1U);
    EXPECT_EQ(std::set<std::size_t>(described.begin(), described.end()), std::set<std::size_t>{28U});
}

} // namespace
} // namespace zorv
