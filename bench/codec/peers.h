// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/codec/objects.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Another JSON library: how it gets objects out of a text. Each call gives objects of its own, and what the library
/// advises to keep from one text to the next (parsers, buffers) is kept.
struct Decoder {
    /// A text is followed by so many bytes that may be read, which one of the libraries needs.
    static constexpr std::size_t padding = 64;

    std::string name;
    std::function<Ping(std::string const&)> ping;
    std::function<NodeTable(std::string const&)> nodes;
    std::function<NvmBackup(std::string const&)> nvm;
};

/// Another JSON library: how it gets the text of objects, in a new buffer each time. `use` is shown the text.
struct Encoder {
    using Use = std::function<void(std::string_view text)>;

    std::string name;
    std::function<void(Ping const&, Use const&)> ping;
    std::function<void(NodeTable const&, Use const&)> nodes;
    std::function<void(NvmBackup const&, Use const&)> nvm;
};

/// A decoder whose one function template does the work for all three.
template <class Decode> Decoder makeDecoder(std::string const& name, Decode decode) {
    auto const as = [&decode](auto object) {
        using Object = decltype(object);
        return [decode](std::string const& text) {
            Object target;
            decode(text, target);
            return target;
        };
    };
    return {name, as(Ping()), as(NodeTable()), as(NvmBackup())};
}

std::vector<Decoder> rapidJsonDecoders();
std::vector<Encoder> rapidJsonEncoders();
Decoder jsonCppDecoder();
Decoder simdjsonDecoder(); ///< by the instructions that every processor of the architecture has

/// By those of AVX2 as well; must not be called on a processor without them.
__attribute__((visibility("default"))) Decoder simdjsonAvx2Decoder();

} // namespace bench
