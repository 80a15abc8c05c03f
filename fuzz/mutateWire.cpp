// SPDX-License-Identifier: Apache-2.0
#include "fuzz/mutateWire.h"

#include "tests/support/WireTexts.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace zorv::fuzz {

namespace {

using Kind = TypeDescriptor::Kind;

/// Where a value stands in a text.
struct Place {
    std::size_t begin = 0; ///< of the member's key, or else of the value
    std::size_t value = 0;
    std::size_t end = 0;
    std::string key = {}; ///< of an element, that of its array
    bool isElement = false;
};

/// Finds the values of a text that is JSON, and some in one that is not.
class Scan {
public:
    explicit Scan(std::string const& text) : text_(text) { scanValue({}, 0, false); }

    std::vector<Place> places;
    std::vector<std::size_t> objects; ///< the places after opening braces

private:
    static constexpr int mostDepth = 64;

    bool isOver() const { return at_ >= text_.size(); }
    bool take(char wanted) {
        while (!isOver() && (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\t')) { ++at_; }
        if (isOver() || text_[at_] != wanted) { return false; }
        ++at_;
        return true;
    }

    void skipString() {
        for (++at_; !isOver() && text_[at_] != '"'; ++at_) {
            if (text_[at_] == '\\') { ++at_; }
        }
        at_ = std::min(at_ + 1, text_.size());
    }

    void scanValue(std::string const& key, std::size_t begin, bool isElement) {
        Place place{begin, at_, 0, key, isElement};
        if (isElement) { place.begin = at_; }
        if (++depth_ > mostDepth) { at_ = text_.size(); }
        if (take('{')) {
            scanObject();
        } else if (take('[')) {
            scanArray(key);
        } else if (!isOver() && text_[at_] == '"') {
            skipString();
        } else {
            at_ = std::min(text_.find_first_of(",}] \n", at_), text_.size());
        }
        --depth_;
        place.end = at_;
        if (place.end > place.value) { places.push_back(std::move(place)); }
    }

    void scanObject() {
        objects.push_back(at_);
        while (!isOver() && !take('}')) {
            auto const begin = at_;
            if (text_[at_] != '"') { return; }
            skipString();
            auto const key = at_ >= begin + 2 ? text_.substr(begin + 1, at_ - begin - 2) : std::string();
            if (!take(':')) { return; }
            scanValue(key, begin, false);
            if (!take(',')) {
                take('}');
                return;
            }
        }
    }

    void scanArray(std::string const& key) {
        while (!isOver() && !take(']')) {
            auto const begin = at_;
            scanValue(key, begin, true);
            if (at_ == begin) { return; }
            if (!take(',')) {
                take(']');
                return;
            }
        }
    }

    std::string const& text_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

/// The types of the members of that key, in whatever class or record.
class Keys {
public:
    Keys() {
        for (auto const& entry : WireTexts::classes()) { add(entry.second.type.members); }
    }

    std::vector<TypeDescriptor> const& of(std::string const& key) const {
        static std::vector<TypeDescriptor> const none;
        auto const found = types_.find(key);
        return found == types_.end() ? none : found->second;
    }
    std::vector<std::pair<std::string, TypeDescriptor>> const& all() const { return all_; }

private:
    void add(std::vector<MemberDescriptor> const& members) {
        for (auto const& member : members) {
            types_[member.key].push_back(member.type);
            all_.emplace_back(member.key, member.type);
            add(member.type.members);
            for (auto const& element : member.type.elements) { add(element.members); }
        }
    }

    std::map<std::string, std::vector<TypeDescriptor>> types_;
    std::vector<std::pair<std::string, TypeDescriptor>> all_;
};

Keys const& keys() {
    static Keys const all;
    return all;
}

constexpr std::size_t mostText = std::size_t{1} << 16U;

/// What can be done with the values of a text, whatever they mean.
class Editor {
public:
    Editor(std::string& text, std::mt19937& random) : text_(text), random_(random) {}

    std::size_t below(std::size_t limit) { return random_() % limit; }
    template <class T> T const& one(std::vector<T> const& all) { return all[below(all.size())]; }

    void replace(Place const& place, std::string const& value) {
        text_.replace(place.value, place.end - place.value, value);
    }

    /// By another value of the text.
    void copy(Place const& place, Place const& other) {
        replace(place, text_.substr(other.value, other.end - other.value));
    }

    /// After an opening brace.
    void insert(std::size_t at, std::string const& key, std::string const& value) {
        auto const isEmpty = at < text_.size() && text_[at] == '}';
        text_.insert(at, '"' + key + "\":" + value + (isEmpty ? "" : ","));
    }

    void remove(Place const& place) {
        auto end = place.end;
        auto begin = place.begin;
        if (end < text_.size() && text_[end] == ',') {
            ++end;
        } else if (begin > 0 && text_[begin - 1] == ',') {
            --begin;
        }
        text_.erase(begin, end - begin);
    }

    void repeat(Place const& place) {
        auto const copy = ',' + text_.substr(place.begin, place.end - place.begin);
        for (auto count = below(8) == 0 ? 1 + below(100) : 1; count > 0 && text_.size() < mostText; --count) {
            text_.insert(place.end, copy);
        }
    }

private:
    std::string& text_;
    std::mt19937& random_;
};

class Mutation {
public:
    Mutation(std::string& text, std::mt19937& random)
        : text_(text), edit_(text, random), texts_([&random](std::uint64_t limit) {
              return (static_cast<std::uint64_t>(random()) << 32U | random()) % limit;
          }) {}

    void once() {
        Scan const scan(text_);
        if (scan.places.size() < 3 || scan.objects.empty() || edit_.below(50) == 0) {
            text_ = texts_.object(edit_.one(WireTexts::names()));
            return;
        }
        auto const& place = edit_.one(scan.places);
        switch (edit_.below(8)) {
        case 0: {
            auto const& [key, type] = edit_.one(keys().all());
            edit_.insert(edit_.one(scan.objects), key, texts_.value(type));
            break;
        }
        case 1: edit_.remove(place); break;
        case 2: edit_.repeat(place); break;
        case 3: edit_.replace(place, texts_.value(edit_.one(keys().all()).second)); break;
        case 4: edit_.copy(place, edit_.one(scan.places)); break;
        default: replaceInKind(place); break;
        }
    }

private:
    void replaceInKind(Place const& place) {
        if (place.key == "__name__") { return edit_.replace(place, '"' + edit_.one(WireTexts::names()) + '"'); }
        auto const& types = keys().of(place.key);
        if (types.empty()) { return edit_.replace(place, texts_.value(edit_.one(keys().all()).second)); }
        auto const* type = &edit_.one(types);
        // An element of pairs is either of the two, or the pair.
        if (place.isElement && !type->elements.empty()) { type = &edit_.one(type->elements); }
        edit_.replace(place, texts_.value(*type));
    }

    std::string& text_;
    Editor edit_;
    WireTexts texts_;
};

/// Makes one to three changes, each of which is taken back where it makes the text too long.
template <class Change>
void changeSome(std::string& text, std::size_t most, std::mt19937& random, Change const& change) {
    for (auto count = 1 + random() % 3; count > 0; --count) {
        auto const before = text;
        change();
        if (text.size() > most) { text = before; }
    }
}

void addWords(std::set<std::string>& words, TypeDescriptor const& type) {
    for (auto const& row : type.texts) { words.insert('"' + row.text + '"'); }
    if (type.kind == Kind::flagSet) {
        for (auto const& row : type.texts) { words.insert('|' + row.text); }
    }
    for (auto const& member : type.members) {
        words.insert('"' + member.key + "\":");
        addWords(words, member.type);
    }
    for (auto const& element : type.elements) { addWords(words, element); }
}

} // namespace

std::string mutateWire(std::string text, std::size_t most, std::mt19937& random) {
    Mutation mutation(text, random);
    changeSome(text, most, random, [&mutation] { mutation.once(); });
    return text;
}

std::string mutateJson(std::string text, std::size_t most, std::mt19937& random, Target::Texts const& keys,
                       Target::Texts const& values) {
    Editor edit(text, random);
    changeSome(text, most, random, [&] {
        Scan const scan(text);
        if (scan.places.empty() || scan.objects.empty()) {
            text = "{}";
            return;
        }
        auto const& place = edit.one(scan.places);
        switch (edit.below(6)) {
        case 0: edit.insert(edit.one(scan.objects), edit.one(keys), edit.one(values)); break;
        case 1: edit.remove(place); break;
        case 2: edit.repeat(place); break;
        case 3: edit.copy(place, edit.one(scan.places)); break;
        default: edit.replace(place, edit.one(values)); break;
        }
    });
    return text;
}

std::string mutateWireLine(std::string lines, std::size_t most, std::mt19937& random) {
    std::vector<std::size_t> ends{0};
    for (auto at = lines.find('\n'); at != std::string::npos; at = lines.find('\n', at + 1)) { ends.push_back(at + 1); }
    auto const begin = ends[random() % ends.size()];
    auto const end = std::min(lines.find('\n', begin), lines.size());
    auto const line = lines.substr(begin, end - begin);
    auto const rest = lines.size() - line.size();
    auto changed = mutateWire(line, most > rest ? most - rest : 0, random);
    if (random() % 8 == 0) { changed = line + '\n' + changed; }
    lines.replace(begin, end - begin, changed);
    return lines;
}

Target::Texts wireWords() {
    std::set<std::string> words{"\"__name__\":", "\"__bases__\":", "null", "true", "false", "\\u0000", "1e308"};
    for (auto const& [name, wireClass] : WireTexts::classes()) {
        words.insert('"' + name + '"');
        addWords(words, wireClass.type);
    }
    return {words.begin(), words.end()};
}

} // namespace zorv::fuzz
