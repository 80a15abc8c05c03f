// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <json/value.h>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace zorv {

/// Reads the same texts as the Serializer, in a simple way: JsonCpp makes a tree, and a selection is a node of it.
///
/// The tests compare the Serializer with it. Its operations have the names of the Serializer's.
class TreeReader {
public:
    using Manipulator = TreeReader& (*)(TreeReader&);

    explicit TreeReader(std::string const& text);
    TreeReader(TreeReader const&) = delete;
    TreeReader& operator=(TreeReader const&) = delete;
    ~TreeReader() = default;

    TreeReader& operator>>(char const* key);
    TreeReader& operator>>(bool& value);
    TreeReader& operator>>(int& value);
    TreeReader& operator>>(unsigned int& value);
    TreeReader& operator>>(unsigned char& value);
    TreeReader& operator>>(unsigned short& value);
    TreeReader& operator>>(double& value);
    TreeReader& operator>>(std::string& value);

    Json::Value const& topNode();
    void drop() { pop(); }
    bool skipAbsent();
    std::string text() const;
    [[noreturn]] void fail(std::string const& complaint) const;
    bool isNull() const noexcept;
    bool isArray() const noexcept;
    std::size_t size() const;
    TreeReader& element(std::size_t index);

private:
    template <class Integer> TreeReader& readInteger(Integer& value, char const* expected);

    Json::Value* selected() const noexcept { return stack_.empty() ? nullptr : stack_.back(); }
    Json::Value* pop() noexcept;
    bool isBases(std::size_t place) const;
    std::string path() const;
    [[noreturn]] void failExpected(char const* expected) const;

    Json::Value root_;
    std::deque<Json::Value*> stack_; // from the root to the selection; a null pointer is an absent value
};

} // namespace zorv
