// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/SimulatedNetwork.h"

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace zorv::modulesim {

/// A JSON file that is read, for the places in complaints.
struct JsonText {
    std::string file;
    std::string text;
};

/// Reads the text of a file as JSON; a std::runtime_error names the file.
JsonText readJsonText(std::string const& file);
Json::Value parseJson(JsonText const& source);

/// Reads the members of one JSON object and remembers which members there may be. A member that is absent leaves its
/// value as it is; one that is wrong ends in a std::runtime_error such as
/// "home.json:7: nodes[2].loss: expected a number from 0 to 1".
class ObjectReader {
public:
    ObjectReader(Json::Value const& object, std::string path, JsonText const& source);

    template <class Number> void number(char const* key, std::uint32_t lowest, std::uint32_t highest, Number& value) {
        if (auto const* const member = find(key)) {
            value = static_cast<Number>(toNumber(*member, key, lowest, highest));
        }
    }
    void time(char const* key, std::uint32_t highest, Milliseconds& value);
    void share(char const* key, double& value);
    void flag(char const* key, bool& value);
    void text(char const* key, std::size_t longest, std::string& value);

    /// Hex digits in a text, two of them for each byte of the number.
    template <class Number> void hex(char const* key, Number& value) {
        if (auto const* const member = find(key)) {
            value = static_cast<Number>(toHex(*member, key, 2 * sizeof(Number)));
        }
    }
    void homeId(char const* key, std::uint32_t& value);

    template <class Value>
    void choice(char const* key, std::initializer_list<std::pair<char const*, Value>> choices, Value& value) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        std::string expected;
        std::size_t left = choices.size();
        for (auto const& [name, meaning] : choices) {
            if (*member == name) {
                value = meaning;
                return;
            }
            expected.append(expected.empty() ? "" : left == 1 ? " or " : ", ").append("\"" + std::string(name) + '"');
            --left;
        }
        fail(*member, key, "expected " + expected);
    }

    /// Calls `read` for each entry of an array, with its path from here.
    template <class Read> void each(char const* key, Read const& read) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        if (!member->isArray()) { fail(*member, key, "expected an array"); }
        for (Json::ArrayIndex i = 0; i < member->size(); ++i) {
            read((*member)[i], key + ('[' + std::to_string(i)) + ']');
        }
    }

    /// Calls `read` for each member of an object whose members have no names of their own.
    template <class Read> void eachMember(char const* key, Read const& read) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        if (!member->isObject()) { fail(*member, key, "expected an object"); }
        for (auto const& name : member->getMemberNames()) { read(name, (*member)[name], key + ('.' + name)); }
    }

    // ---- entries of arrays
    ObjectReader object(Json::Value const& value, std::string const& path) const;
    std::uint32_t toNumber(Json::Value const& value, std::string const& path, std::uint32_t lowest,
                           std::uint32_t highest) const;
    std::uint32_t toHex(Json::Value const& value, std::string const& path, std::size_t digits) const;

    Json::Value const* find(char const* key);
    Json::Value const& require(char const* key);

    /// To be called after all members were read: any other member is probably a typing error.
    void refuseOthers() const;

    /// `path` is counted from this object; empty for the object itself.
    [[noreturn]] void fail(Json::Value const& where, std::string const& path, std::string const& complaint) const;

private:
    Json::Value const& object_;
    std::string path_;
    JsonText const& source_;
    std::set<std::string> known_;
};

} // namespace zorv::modulesim
