// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/FrameReader.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zorv {

/// A module that acknowledges every frame and answers as it was told to, for tests of what a controller does.
///
/// It is no simulation: it has no network and no state, so that a test can have it do what no sane module does.
class ScriptedModule {
public:
    using Byte = serialapi::Byte;
    using Bytes = serialapi::Bytes;
    using Frame = serialapi::Frame;
    using Answer = std::function<std::vector<Frame>(Bytes const& parameters)>;

    static Frame response(Byte function, Bytes parameters) {
        return {serialapi::FrameType::response, function, std::move(parameters)};
    }
    static Frame request(Byte function, Bytes parameters) {
        return {serialapi::FrameType::request, function, std::move(parameters)};
    }

    /// How the function is answered from now on.
    void on(Byte function, Answer answer) { answers_[function] = std::move(answer); }
    template <class F> void on(Answer answer) { on(F::id, std::move(answer)); }
    template <class F> void answers(Bytes parameters) {
        on<F>([parameters](Bytes const&) { return std::vector<Frame>{response(F::id, parameters)}; });
    }
    template <class F> void isSilentOn() {
        on<F>([](Bytes const&) { return std::vector<Frame>{}; });
    }

    /// From now on not even an acknowledgement.
    void hang(bool hangs = true) { hangs_ = hangs; }

    /// Takes what the host has sent; gives what comes back.
    Bytes exchange(Bytes const& fromHost, serialapi::TimePoint now) {
        Bytes toHost;
        for (auto const byte : fromHost) {
            auto const item = reader_.push(byte, now);
            if (!item || item->kind != serialapi::FrameReader::Kind::data || hangs_) { continue; }
            toHost.push_back(serialapi::control::ack);
            heard_.push_back(item->frame);
            auto const answer = answers_.find(item->frame.function);
            if (answer == answers_.end()) { continue; }
            for (auto const& frame : answer->second(item->frame.parameters)) {
                auto const bytes = frame.encode();
                toHost.insert(toHost.end(), bytes.begin(), bytes.end());
            }
        }
        return toHost;
    }

    /// The frames that the host has sent since this was asked last, as "13 05 01 00 25 01": function, parameters.
    std::vector<std::string> takeHeard() {
        std::vector<std::string> texts;
        for (auto const& frame : std::exchange(heard_, {})) { texts.push_back(text(frame)); }
        return texts;
    }

    static std::string text(Frame const& frame) {
        constexpr auto digits = "0123456789abcdef";
        std::string text;
        auto const put = [&text](Byte byte) {
            if (!text.empty()) { text += ' '; }
            text += digits[byte / 16];
            text += digits[byte % 16];
        };
        put(frame.function);
        for (auto const byte : frame.parameters) { put(byte); }
        return text;
    }

private:
    serialapi::FrameReader reader_{serialapi::FrameTiming::module()};
    std::map<Byte, Answer> answers_;
    std::vector<Frame> heard_;
    bool hangs_ = false;
};

} // namespace zorv
