// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/freshIdentity.h"

#include "tests/support/inChildProcess.h"

#include <boost/uuid/uuid_io.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace zorv {
namespace {

using Identities = std::vector<std::string>;

Identities draw(std::size_t count) {
    Identities drawn;
    while (drawn.size() < count) { drawn.push_back(to_string(freshIdentity())); }
    return drawn;
}

std::string joined(Identities const& identities) {
    std::string text;
    for (auto const& identity : identities) { text += identity + '\n'; }
    return text;
}

Identities split(std::string const& text) {
    Identities identities;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) { identities.push_back(line); }
    return identities;
}

std::size_t distinct(std::vector<Identities> const& draws) {
    std::set<std::string> all;
    for (auto const& identities : draws) { all.insert(identities.begin(), identities.end()); }
    return all.size();
}

TEST(FreshIdentity, IsARandomUuid) {
    for (int i = 0; i < 1000; ++i) {
        auto const identity = freshIdentity();
        ASSERT_EQ(identity.version(), boost::uuids::uuid::version_random_number_based);
        ASSERT_EQ(identity.variant(), boost::uuids::uuid::variant_rfc_4122);
    }
}

TEST(FreshIdentity, EveryBitButThoseOfTheVersionVaries) {
    std::vector<unsigned int> everOne(16);
    std::vector<unsigned int> everZero(16);
    for (int i = 0; i < 1000; ++i) {
        auto const identity = freshIdentity();
        for (std::size_t byte = 0; byte < 16; ++byte) {
            everOne[byte] |= identity.data[byte];
            everZero[byte] |= ~unsigned{identity.data[byte]} & 0xffU;
        }
    }
    for (std::size_t byte = 0; byte < 16; ++byte) {
        unsigned int const fixed = byte == 6 ? 0xf0 : byte == 8 ? 0xc0 : 0;
        EXPECT_EQ(everOne[byte] | fixed, 0xffU) << "byte " << byte;
        EXPECT_EQ(everZero[byte] | fixed, 0xffU) << "byte " << byte;
    }
}

TEST(FreshIdentity, ThreadsDrawDifferentOnes) {
    std::vector<Identities> draws(8);
    std::vector<std::thread> threads;
    for (auto& mine : draws) {
        threads.emplace_back([&mine] { mine = draw(1000); });
    }
    for (auto& thread : threads) { thread.join(); }
    EXPECT_EQ(distinct(draws), 8000U);
}

TEST(FreshIdentity, AProcessAndItsChildrenDrawDifferentOnes) {
    std::vector<Identities> draws{draw(3)};
    auto const child = [] { return joined(draw(100)); };
    draws.push_back(split(inChildProcess(child)));
    draws.push_back(split(inChildProcess(child)));
    draws.push_back(draw(100));
    EXPECT_EQ(distinct(draws), 303U);
}

TEST(FreshIdentity, AGrandchildDrawsDifferentOnesAlsoWhereItsParentDrewNone) {
    std::vector<Identities> draws{draw(3)};
    auto const child = [] { return joined(draw(100)); };
    draws.push_back(split(inChildProcess([&child] { return inChildProcess(child); })));
    draws.push_back(split(inChildProcess([&child] { return joined(draw(100)) + inChildProcess(child); })));
    draws.push_back(draw(100));
    EXPECT_EQ(distinct(draws), 403U);
}

TEST(FreshIdentity, AChildOfAnotherThreadDrawsDifferentOnes) {
    std::vector<Identities> draws{draw(3)};
    std::string childsText;
    std::thread([&] {
        draws.push_back(draw(3));
        childsText = inChildProcess([] {
            auto text = joined(draw(100));
            std::thread([&text] { text += joined(draw(100)); }).join();
            return text;
        });
        draws.push_back(draw(100));
    }).join();
    draws.push_back(split(childsText));
    draws.push_back(draw(100));
    EXPECT_EQ(distinct(draws), 406U);
}

} // namespace
} // namespace zorv
