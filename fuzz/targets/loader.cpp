// SPDX-License-Identifier: Apache-2.0
// A module's loader that says whatever it likes while it is given an image.

#include "fuzz/Script.h"
#include "fuzz/Target.h"

#include "zwave/libserialapi/Bootloader.h"

namespace zorv::fuzz {

namespace {

using namespace serialapi;

void run(std::string const& input) {
    Script script(input);
    Bootloader loader(Bytes(script.number() % 2048, 0x5A));
    TimePoint now{};
    loader.start(now);
    auto const pass = [&](Milliseconds time) {
        auto const end = now + time;
        for (auto next = loader.deadline(); next && *next <= end; next = loader.deadline()) {
            now = std::max(now, *next);
            loader.tick(now);
            expect(loader.deadline() != next, "what was due is done");
        }
        now = end;
    };
    while (!script.isOver()) {
        auto const wasOver = loader.result().has_value();
        switch (script.byte() % 4) {
        case 0: pass(script.time()); break;
        case 1:
            if (script.byte() == 0) { loader.cancel(now); }
            break;
        case 2: {
            auto const word = script.bytes();
            for (auto count = script.byte() % 64; count >= 0; --count) { loader.receive(word, now); }
            break;
        }
        default: loader.receive(script.bytes(), now); break;
        }
        loader.takeOutput();
        expect(loader.percent() <= 100, "no more than all of it was taken");
        expect(!wasOver || loader.result().has_value(), "what is over stays so");
    }
    pass(Milliseconds(1'000'000'000));
    expect(loader.result().has_value(), "an upload ends by itself");
    expect(!complaint(*loader.result()).empty(), "its end can be told");
}

Bytes toBytes(std::string const& text) { return {text.begin(), text.end()}; }

Target::Texts seeds() {
    auto const menu = toBytes("\r\nGecko Bootloader v1.12.1\r\n1. upload gbl\r\n2. run\r\n3. ebl info\r\nBL > ");
    auto const begin = [&menu] {
        ScriptWriter script;
        script.number(700).byte(3).bytes(menu).byte(3).bytes(toBytes("\r\nbegin upload\r\n")).byte(3).bytes({'C'});
        return script;
    };
    auto good = begin();
    for (int i = 0; i < 7; ++i) { good.byte(3).bytes({0x06}); }
    good.byte(3).bytes(toBytes("\r\nSerial upload complete\r\n")).byte(3).bytes(menu);
    auto bad = begin();
    bad.byte(3).bytes({0x06}).byte(2).bytes({0x15}).byte(8);
    auto refused = begin();
    refused.byte(3).bytes({0x18}).byte(3).bytes(toBytes("\r\nSerial upload aborted\r\nfile error 0x50\r\n")).byte(3);
    refused.bytes(menu);
    return {good.text(), bad.text(), refused.text()};
}

Target::Texts words() {
    return {"BL > ",
            "begin upload",
            "Serial upload complete",
            "Serial upload aborted",
            "file error 0x",
            "block error 0x",
            "\x06",
            "\x15",
            "\x18",
            "C",
            "1. upload gbl",
            "2. run"};
}

Registration const registration({"loader", &run, &seeds, &words});

} // namespace

} // namespace zorv::fuzz
