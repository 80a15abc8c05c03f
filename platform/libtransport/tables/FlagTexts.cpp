// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/tables/FlagTexts.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/throwInvalidEnum.h"

#include <utility>

namespace zorv {

namespace {

/// Takes the items of "a|b|c" from the front. An empty text has no item.
class Items {
public:
    explicit Items(std::string_view text) : rest_(text), isDone_(text.empty()) {}

    bool isDone() const { return isDone_; }

    /// Whether the next item was `item`, which is then taken. Most are not, and differ in their first character.
    bool take(std::string_view item) {
        auto const size = item.size();
        if (isDone_ || rest_.size() < size || (size > 0 && rest_[0] != item[0]) || rest_.substr(0, size) != item) {
            return false;
        }
        isDone_ = rest_.size() == size;
        if (isDone_) { return true; }
        if (rest_[size] != '|') { return false; }
        rest_.remove_prefix(size + 1);
        return true;
    }

private:
    std::string_view rest_;
    bool isDone_;
};

} // namespace

/// Hands out the texts of the empty set and of the flags, each with the separator that comes before it.
template <class Use> void FlagTexts::forEachText(unsigned int bits, Use use) const {
    std::string_view separator = ""; // not null, which may not be copied from
    if ((bits & ~field_.mask) == 0) { use(std::exchange(separator, "|"), emptyText_); }
    for (auto const& flag : flags_) {
        if ((bits & static_cast<unsigned int>(flag.value)) != 0) { use(std::exchange(separator, "|"), flag.text); }
    }
}

/// The text of the empty set or of one flag, which most sets are.
std::string_view FlagTexts::flagOrEmpty(unsigned int bits) const {
    if (bits == 0) { return emptyText_; }
    for (auto const& flag : flags_) {
        if (bits == static_cast<unsigned int>(flag.value)) { return flag.text; }
    }
    return {};
}

bool FlagTexts::append(std::string& out, int value) const {
    auto const bits = static_cast<unsigned int>(value);
    forEachText(bits,
                [&out](std::string_view separator, std::string_view text) { out.append(separator).append(text); });
    if ((bits & ~knownBits_) != 0) { return false; }
    if (field_.mask == 0) { return true; }
    out += '|'; // the empty set has a text, too
    return field_.texts.append(out, static_cast<int>(bits & field_.mask));
}

void FlagTexts::write(Serializer& s, int value) const {
    auto const bits = static_cast<unsigned int>(value);
    if (field_.mask != 0 || (bits & ~knownBits_) != 0) {
        std::string text;
        if (!append(text, value)) { refuse(value); }
        s.writePlain(text);
        return;
    }
    if (auto const text = flagOrEmpty(bits); !text.empty()) {
        s.writePlain(text);
        return;
    }
    s.openPlain();
    forEachText(bits,
                [&s](std::string_view separator, std::string_view text) { s.writeRaw(separator).writeRaw(text); });
    s.writeRaw("\"");
}

void FlagTexts::refuse(int value) const {
    auto const bits = static_cast<unsigned int>(value);
    if ((bits & ~knownBits_) != 0) { throwInvalidEnum(names_.onWriting, value); }
    field_.texts.refuse(static_cast<int>(bits & field_.mask));
}

bool FlagTexts::find(std::string_view text, int& value) const {
    Items items(text);
    unsigned int bits = 0;
    items.take(emptyText_);
    for (auto const& flag : flags_) {
        if (items.take(flag.text)) { bits |= static_cast<unsigned int>(flag.value); }
    }
    for (auto const& row : field_.texts.rows()) {
        if (items.take(row.text)) { bits = (bits & ~field_.mask) | static_cast<unsigned int>(row.value); }
    }
    value = static_cast<int>(bits);
    return items.isDone();
}

int FlagTexts::read(std::string_view text) const {
    int value = 0;
    if (!find(text, value)) { throwInvalidEnum(names_.onReading, std::string(text)); }
    return value;
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
