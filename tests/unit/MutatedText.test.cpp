// SPDX-License-Identifier: Apache-2.0
// Damaged texts. Whatever a peer sends is either refused with an exception or read as a usable message: what it writes
// reads back to the same text, and it can be shown, printed and answered.

#include "tests/support/damagedTexts.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace zorv {
namespace {

/// Uses a message as a daemon or a client would; a refusal is fine, everything else is not.
void use(TMessage const& message) {
    std::ostringstream printed;
    message.print(printed);
    auto const* const nvm = dynamic_cast<ManageNvmMsg const*>(&message);
    try {
        auto const rows = shown(message);
        if (nvm != nullptr && nvm->checkBlobs()) { nvm->size(); }
    } catch (std::exception const&) { // what cannot be shown or checked is refused
    }
    if (auto const* const request = dynamic_cast<Confirmable const*>(&message)) {
        auto const answer = request->makeTimeoutResponse();
        EXPECT_EQ(answer->result(), ZResult::timeout);
    }
}

TEST(MutatedText, IsRefusedOrReadAsAUsableMessage) {
    auto const texts = goldenTexts();
    ASSERT_FALSE(texts.empty());
    Damage damage(texts, 20260131); // the same texts in every run
    std::size_t read = 0;
    std::size_t refused = 0;
    for (int i = 0; i < 20000; ++i) {
        auto const text = damage.mutant();
        boost::shared_ptr<Serializable> object;
        try {
            object = readSerializable(text);
        } catch (std::exception const&) {
            ++refused;
            continue;
        }
        ++read;
        auto const once = toText(*object);
        ASSERT_EQ(toText(*readSerializable(once)), once) << text;
        if (auto const* const message = dynamic_cast<TMessage const*>(object.get())) { use(*message); }
    }
    // Damage that always breaks the message, or never does, would test nothing.
    EXPECT_GT(read, 500U);
    EXPECT_GT(refused, 500U);
}

} // namespace
} // namespace zorv
