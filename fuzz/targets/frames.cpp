// SPDX-License-Identifier: Apache-2.0
// What the serial line carries, as each of its ends takes frames out of it, and what the frames mean.

#include "fuzz/Script.h"
#include "fuzz/Target.h"
#include "fuzz/recordedLines.h"

#include "zwave/libserialapi/FrameReader.h"
#include "zwave/libserialapi/functions/FrameDissector.h"

#include <cstddef>

namespace zorv::fuzz {

namespace {

using namespace serialapi;

/// Reads bytes, and keeps account of what became of each.
class Account {
public:
    explicit Account(FrameTiming timing) : reader_(timing) {}

    void push(Byte byte, TimePoint now) {
        ++pushed_;
        latest_.push_back(byte);
        auto const item = reader_.push(byte, now);
        if (!item || item->kind == FrameReader::Kind::badChecksum) { return; }
        if (item->kind != FrameReader::Kind::data) {
            ++taken_;
            return;
        }
        auto const bytes = item->frame.encode();
        expect(bytes.size() <= reader_.timing().largest, "a frame is no larger than this end can take");
        taken_ += bytes.size();
        expect(latest_.size() >= bytes.size(), "a frame was there");
        expect(std::equal(bytes.rbegin(), bytes.rend(), latest_.rbegin()), "as it was pushed");
        take(item->frame);
    }

    void end(TimePoint now) {
        reader_.tick(now + Milliseconds(10'000));
        expect(!reader_.isInsideFrame(), "a frame does not last for ever");
        expect(pushed_ == taken_ + reader_.skippedBytes(), "every byte was taken or skipped");
    }

private:
    void take(Frame const& frame) {
        std::string why;
        auto const again = Frame::decode(frame.encode(), why);
        expect(again == frame, "a frame that is encoded is decoded: " + why);
        for (auto const sender : {Side::host, Side::module}) {
            auto const parts = dissector_.dissect(sender, frame);
            expect(!parts.fits || parts.encoded == frame, "what fits its table is written by it: " + parts.function);
            expect(!parts.function.empty(), "every function has a name or a number");
        }
    }

    FrameReader reader_;
    FrameDissector dissector_;
    Bytes latest_;
    std::size_t pushed_ = 0;
    std::size_t taken_ = 0;
};

void run(std::string const& input) {
    for (auto const timing : {FrameTiming::host(), FrameTiming::module()}) {
        Script script(input);
        Account account(timing);
        TimePoint now{};
        while (!script.isOver()) {
            switch (script.byte() % 4) {
            case 0: now += Milliseconds(script.byte()); break;
            case 1:
                for (auto const byte : script.frame().encode()) { account.push(byte, now); }
                break;
            default:
                for (auto const byte : script.bytes()) { account.push(byte, now); }
                break;
            }
        }
        account.end(now);
    }
}

Target::Texts seeds() {
    Target::Texts texts;
    for (auto const& recording : recordedLines()) {
        ScriptWriter script;
        for (auto const& line : recording) { script.byte(2).bytes(line.bytes); }
        texts.push_back(script.text());
    }
    return texts;
}

Registration const registration({"frames", &run, &seeds, &functionWords});

} // namespace

} // namespace zorv::fuzz
