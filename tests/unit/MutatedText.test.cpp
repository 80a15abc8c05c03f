// Texts that went wrong on the way. Whatever a peer sends is either refused with an exception or read as a message
// that behaves: it writes itself, the text it writes reads back to the same text, and it can be shown, printed and
// answered.

#include "tests/support/golden.h"
#include "tests/support/shown.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace zorv {
namespace {

std::vector<std::string> goldenTexts() {
    std::vector<std::string> texts;
    for (auto const& name : goldenNames()) { texts.push_back(golden(name)); }
    return texts;
}

/// Damages texts in ways that keep most of them near to being messages. One seed gives one series of texts.
class Damage {
public:
    explicit Damage(std::vector<std::string> const& texts) : texts_(texts) {}

    std::string mutant() {
        auto text = texts_[below(texts_.size())];
        for (auto count = 1 + below(3); count > 0 && !text.empty(); --count) { damage(text); }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    void damage(std::string& text) {
        auto const at = below(text.size());
        switch (below(6)) {
        case 0: text[at] = static_cast<char>(below(256)); break;
        case 1: text.erase(at, 1 + below(8)); break;
        case 2: text.insert(at, tokens_[below(tokens_.size())]); break;
        case 3: replaceValue(text, at); break;
        case 4: text.resize(at); break;
        case 5: splice(text, at); break;
        }
    }

    /// Puts another value behind the next colon, up to the next comma or closing bracket.
    void replaceValue(std::string& text, std::size_t at) {
        auto const colon = text.find(':', at);
        if (colon == std::string::npos) { return; }
        auto const end = text.find_first_of(",}]", colon);
        text.replace(colon + 1, end == std::string::npos ? end : end - colon - 1, tokens_[below(tokens_.size())]);
    }

    void splice(std::string& text, std::size_t at) {
        auto const& other = texts_[below(texts_.size())];
        auto const from = below(other.size());
        text.replace(at, below(40), other, from, below(40));
    }

    std::vector<std::string> const& texts_;
    std::vector<std::string> const tokens_{"null",  "true", "-1",   "0",    "255",         "256",        "4294967296",
                                           "1e999", "0.5",  "[]",   "{}",   "[null]",      "[[],[]]",    "\"\"",
                                           "\"x\"", "|",    "\\u0", "\xc3", "\"invalid\"", "[[{},null]]"};
    std::mt19937 random_{20260131}; // the same texts in every run
};

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
    Damage damage(texts);
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
        auto const once = wireText(*object);
        ASSERT_EQ(wireText(*readSerializable(once)), once) << text;
        if (auto const* const message = dynamic_cast<TMessage const*>(object.get())) { use(*message); }
    }
    // A damage that never leaves a message, or never breaks one, would test nothing.
    EXPECT_GT(read, 500U);
    EXPECT_GT(refused, 500U);
}

} // namespace
} // namespace zorv
