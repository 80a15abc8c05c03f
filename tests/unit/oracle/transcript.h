// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/SerializerError.h"

#include <json/value.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace zorv {

/// Reads a text in every way that a reader offers, and writes down all results: values, and the texts of errors. Two
/// readers that agree give the same transcript.
///
/// `tree` is the text's value; it says which members there are to be asked for. They are asked for in an order, and as
/// kinds, that the seed determines.
template <class Reader> class Transcript {
public:
    Transcript(Reader& reader, Json::Value const& tree, unsigned int seed) : reader_(reader), random_(seed) {
        visit(tree, [] {});
    }

    std::string text() const { return out_.str(); }

private:
    /// Reads the selected value, which `select` selects again.
    template <class Select> void visit(Json::Value const& node, Select const& select) {
        out_ << reader_.isNull() << reader_.isArray() << ' ';
        attempt([&] { out_ << reader_.size(); });
        attempt([&] { out_ << reader_.text(); });
        attempt([&] { reader_.fail("complaint"); });
        if (random_() % 4 == 0 && consumed([&] { readAsSome(); })) { select(); }
        if (random_() % 16 == 0) {
            out_ << reader_.topNode().toStyledString();
            select();
        }
        if (node.isObject()) { visitMembers(node); }
        if (node.isArray()) { visitElements(node); }
        reader_.drop();
    }

    void visitMembers(Json::Value const& node) {
        auto keys = node.getMemberNames();
        std::shuffle(keys.begin(), keys.end(), random_);
        if (random_() % 2 == 0) { std::sort(keys.begin(), keys.end()); }
        keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(random_() % (keys.size() + 1)), "absent");
        for (auto const& key : keys) {
            if (random_() % 8 == 0) { continue; }
            auto const select = [&] { attempt([&] { reader_ >> key.c_str(); }); };
            select();
            visit(node[key], select);
        }
    }

    void visitElements(Json::Value const& node) {
        for (Json::ArrayIndex i = 0; i <= node.size(); ++i) {
            auto const other = static_cast<Json::ArrayIndex>(random_() % (node.size() + 1));
            auto const index = random_() % 8 == 0 ? other : i;
            auto const select = [&] { reader_.element(index); };
            select();
            visit(node.get(index, Json::Value()), select);
            if (random_() % 4 == 0 && node.get(index, Json::Value()).isObject()) { visitBase(node[index]); }
        }
    }

    void visitBase(Json::Value const& entry) {
        if (!entry["__name__"].isString()) { return; }
        auto const className = entry["__name__"].asString();
        auto const select = [&] { attempt([&] { reader_ >> className.c_str(); }); };
        if (!consumed([&] { reader_ >> className.c_str(); })) { return; }
        visit(entry, select);
    }

    template <class T> void read() {
        T value{};
        reader_ >> value;
        std::ostringstream text;
        text.precision(17);
        text << value;
        out_ << text.str() << ';';
    }

    void readAsSome() {
        switch (random_() % 7) {
        case 0: read<bool>(); break;
        case 1: read<int>(); break;
        case 2: read<unsigned int>(); break;
        case 3: read<unsigned char>(); break;
        case 4: read<unsigned short>(); break;
        case 5: read<double>(); break;
        default: read<std::string>(); break;
        }
    }

    /// Whether an operation succeeded; if not, its error is written down.
    template <class Operation> bool consumed(Operation const& operation) {
        try {
            operation();
            return true;
        } catch (SerializerError const& error) { out_ << error.what() << ';'; }
        return false;
    }

    template <class Operation> void attempt(Operation const& operation) { static_cast<void>(consumed(operation)); }

    Reader& reader_;
    std::mt19937 random_;
    std::ostringstream out_;
};

/// What a reader makes of a text: the complaint where it is malformed, else its transcript.
struct Reading {
    bool isMalformed = false;
    std::string text;
};

template <class Make> Reading readingOf(Make const& make, Json::Value const& tree, unsigned int seed) {
    try {
        auto&& reader = make();
        using Reader = std::remove_reference_t<decltype(reader)>;
        return {false, Transcript<Reader>(reader, tree, seed).text()};
    } catch (SerializerError const& error) { return {true, error.what()}; }
}

} // namespace zorv
