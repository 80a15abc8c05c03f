// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/tables/FlagTexts.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/throwInvalidEnum.h"

namespace zorv {

namespace {

/// Takes the items of "a|b|c" from the front. An empty text has no item.
class Items {
public:
    explicit Items(std::string_view text) : rest_(text), isDone_(text.empty()) {}

    bool isDone() const { return isDone_; }

    /// Whether the next item was `item`, which is then taken.
    bool take(std::string_view item) {
        auto const end = rest_.find('|');
        if (isDone_ || rest_.substr(0, end) != item) { return false; }
        isDone_ = end == std::string_view::npos;
        if (!isDone_) { rest_.remove_prefix(end + 1); }
        return true;
    }

private:
    std::string_view rest_;
    bool isDone_;
};

} // namespace

unsigned int FlagTexts::knownBits() const {
    auto bits = field_.mask;
    for (auto const& flag : flags_) { bits |= static_cast<unsigned int>(flag.value); }
    return bits;
}

bool FlagTexts::append(std::string& out, int value) const {
    auto const bits = static_cast<unsigned int>(value);
    std::string_view separator;
    auto const appendItem = [&](std::string_view text) {
        out.append(separator).append(text);
        separator = "|";
    };
    if ((bits & ~field_.mask) == 0) { appendItem(emptyText_); }
    for (auto const& flag : flags_) {
        if ((bits & static_cast<unsigned int>(flag.value)) != 0) { appendItem(flag.text); }
    }
    if ((bits & ~knownBits()) != 0) { return false; }
    if (field_.mask == 0) { return true; }
    out.append(separator);
    return field_.texts.append(out, static_cast<int>(bits & field_.mask));
}

void FlagTexts::refuse(int value) const {
    auto const bits = static_cast<unsigned int>(value);
    if ((bits & ~knownBits()) != 0) { throwInvalidEnum(names_.onWriting, value); }
    field_.texts.refuse(static_cast<int>(bits & field_.mask));
}

int FlagTexts::read(std::string_view text) const {
    Items items(text);
    unsigned int bits = 0;
    items.take(emptyText_);
    for (auto const& flag : flags_) {
        if (items.take(flag.text)) { bits |= static_cast<unsigned int>(flag.value); }
    }
    for (auto const& row : field_.texts.rows()) {
        if (items.take(row.text)) { bits = (bits & ~field_.mask) | static_cast<unsigned int>(row.value); }
    }
    if (!items.isDone()) { throwInvalidEnum(names_.onReading, std::string(text)); }
    return static_cast<int>(bits);
}

TypeDescriptor FlagTexts::describe() const {
    TypeDescriptor type;
    type.kind = TypeDescriptor::Kind::flagSet;
    type.name = names_.onWriting;
    type.texts.push_back({0, std::string(emptyText_)});
    for (auto const& flag : flags_) { type.texts.push_back({flag.value, std::string(flag.text)}); }
    if (field_.mask != 0) { type.elements.push_back(field_.texts.describe()); }
    return type;
}

} // namespace zorv
