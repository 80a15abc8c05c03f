// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/completeJson.h"

#include "platform/libtransport/tables/TypeDescriptor.h"

#include <cctype>
#include <cstddef>

namespace zorv {

namespace {

using Kind = TypeDescriptor::Kind;

/// Follows what was typed up to the place where the next text, or the one that is not complete, begins.
class Follower {
public:
    Follower(TypeDescriptor const& type, std::string const& typed) : levels_{{&type, nullptr}} {
        for (std::size_t i = 0; i < typed.size(); ++i) {
            if (typed[i] == '"') {
                auto const end = endOfText(typed, i + 1);
                if (end == std::string::npos) { // the text that is being typed
                    start_ = i;
                    return;
                }
                key(typed.substr(i + 1, end - i - 1));
                i = end;
            } else {
                follow(typed[i]);
            }
        }
        start_ = typed.size();
        // A number, or a word such as true, has begun already.
        while (start_ > 0 && std::isalnum(static_cast<unsigned char>(typed[start_ - 1])) != 0) { --start_; }
    }

    std::size_t start() const noexcept { return start_; }

    std::vector<std::string> candidates() const {
        std::vector<std::string> all;
        if (levels_.size() < 2 || levels_.back().type == nullptr) { return all; }
        if (!isValue_) {
            for (auto const& member : levels_.back().type->members) { all.push_back('"' + member.key + "\":"); }
            return all;
        }
        auto const* const type = levels_.back().value;
        if (type == nullptr) { return all; }
        for (auto const& text : type->texts) { all.push_back('"' + text.text + '"'); }
        if (type->kind == Kind::boolean) { all = {"true", "false"}; }
        return all;
    }

private:
    /// An object or a list that is open, and the type of the value that comes next in it.
    struct Level {
        TypeDescriptor const* type;
        TypeDescriptor const* value;
    };

    static std::size_t endOfText(std::string const& typed, std::size_t from) {
        for (auto i = from; i < typed.size(); ++i) {
            if (typed[i] == '\\') {
                ++i;
            } else if (typed[i] == '"') {
                return i;
            }
        }
        return std::string::npos;
    }

    void key(std::string const& name) {
        auto& level = levels_.back();
        if (isValue_ || level.type == nullptr) { return; }
        level.value = nullptr;
        for (auto const& member : level.type->members) {
            if (member.key == name) { level.value = &member.type; }
        }
    }

    void follow(char character) {
        auto& level = levels_.back();
        switch (character) {
        case '{':
            // The first brace opens the message itself.
            levels_.push_back({levels_.size() == 1 ? level.type : level.value, nullptr});
            isValue_ = false;
            break;
        case '[': {
            bool const isList = level.value != nullptr && level.value->kind == Kind::list;
            auto const* const element = isList ? &level.value->elements.at(0) : nullptr;
            levels_.push_back({element, element});
            isValue_ = true;
            break;
        }
        case '}':
        case ']':
            if (levels_.size() > 1) { levels_.pop_back(); }
            isValue_ = true;
            break;
        case ':': isValue_ = true; break;
        case ',': isValue_ = levels_.back().value != nullptr && levels_.back().type == levels_.back().value; break;
        default: break;
        }
    }

    std::vector<Level> levels_;
    bool isValue_ = false; ///< a value comes next, not a member's name
    std::size_t start_ = 0;
};

} // namespace

std::vector<std::string> completeJson(TypeDescriptor const& type, std::string const& typed) {
    if (typed.empty()) { return {"{"}; }
    Follower const follower(type, typed);
    auto const begun = typed.substr(follower.start());
    std::vector<std::string> all;
    for (auto const& candidate : follower.candidates()) {
        if (candidate.compare(0, begun.size(), begun) == 0) {
            all.push_back(typed.substr(0, follower.start()) + candidate);
        }
    }
    return all;
}

} // namespace zorv
