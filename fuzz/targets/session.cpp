// SPDX-License-Identifier: Apache-2.0
// The rules of the line, at either end of it, whatever the other end says.

#include "fuzz/Script.h"
#include "fuzz/Target.h"
#include "fuzz/recordedLines.h"

#include "zwave/libserialapi/SessionLayer.h"

#include <cstdint>
#include <set>

namespace zorv::fuzz {

namespace {

using namespace serialapi;

class End {
public:
    explicit End(Side side) : side_(side), layer_(side) { layer_.start(); }

    void hear(Bytes const& bytes) {
        layer_.receive(bytes, now_);
        look();
    }

    void say(Frame const& frame, unsigned int how) {
        auto const number = side_ == Side::host ? layer_.request(frame, how % 2 != 0, now_)
                                                : layer_.send(frame, static_cast<Urgency>(how % 3), now_);
        if (number != 0) { expect(open_.insert(number).second, "an exchange has a number of its own"); }
        look();
    }

    /// Time passes; the layer is called whenever it has asked for it.
    void pass(Milliseconds time) {
        auto const end = now_ + time;
        for (auto next = layer_.deadline(); next && *next <= end; next = layer_.deadline()) {
            now_ = std::max(now_, *next);
            layer_.tick(now_);
            look();
            expect(layer_.deadline() != next, "what was due is done");
        }
        now_ = end;
    }

    void reset() {
        layer_.reset();
        look();
        expect(open_.empty(), "every exchange has ended");
        expect(!layer_.deadline(), "nothing is awaited");
        layer_.start();
    }

    void moduleTimes(Milliseconds ackTime, Milliseconds byteTime) { layer_.moduleTimes(ackTime, byteTime); }

    /// An end that hears nothing any more comes to rest by itself.
    void rest() {
        pass(Milliseconds(600'000'000));
        expect(open_.empty(), "every exchange ends by itself");
        expect(layer_.isQuiet(), "and the layer is quiet");
    }

private:
    void look() {
        layer_.takeOutput();
        for (auto const& event : layer_.takeEvents()) {
            auto const ends = event.kind == SessionEvent::Kind::delivered ||
                              event.kind == SessionEvent::Kind::response || event.kind == SessionEvent::Kind::failed;
            if (ends) { expect(open_.erase(event.exchange) == 1, "an exchange ends once"); }
        }
    }

    Side side_;
    SessionLayer layer_;
    TimePoint now_{};
    std::set<std::uint32_t> open_;
};

void run(std::string const& input) {
    Script script(input);
    auto const side = script.flag() ? Side::host : Side::module;
    End end(side);
    while (!script.isOver()) {
        switch (script.byte() % 8) {
        case 0: end.hear(script.bytes()); break;
        case 1: end.hear(script.frame().encode()); break;
        case 2: end.hear({control::ack}); break;
        case 3: end.hear({control::nak}); break;
        case 4: end.hear({control::can}); break;
        case 5: end.pass(script.time()); break;
        case 6: {
            auto const how = script.byte();
            end.say(script.frame(), how);
            break;
        }
        default:
            if (side == Side::module && script.flag()) {
                auto const ackTime = Milliseconds(1) + script.time();
                end.moduleTimes(ackTime, Milliseconds(1) + script.time());
            } else {
                end.reset();
            }
            break;
        }
    }
    end.rest();
    end.reset();
}

/// Each recording as either of its ends has lived through it.
Target::Texts seeds() {
    Target::Texts texts;
    for (auto const& recording : recordedLines()) {
        for (auto const isHost : {true, false}) {
            ScriptWriter script;
            script.byte(isHost ? 1 : 0);
            for (auto const& line : recording) {
                std::string why;
                auto const frame = Frame::decode(line.bytes, why);
                if (line.isHost != isHost) {
                    script.byte(0).bytes(line.bytes);
                } else if (frame) {
                    script.byte(6).byte(1).frame(*frame);
                }
                script.byte(5).number(20);
            }
            texts.push_back(script.text());
        }
    }
    return texts;
}

Registration const registration({"session", &run, &seeds, &functionWords});

} // namespace

} // namespace zorv::fuzz
