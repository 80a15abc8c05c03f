// SPDX-License-Identifier: Apache-2.0
// A simulated module whose host says whatever it likes.

#include "fuzz/Script.h"
#include "fuzz/Target.h"
#include "fuzz/recordedLines.h"

#include "zwave/libmodulesim/SimulatedModule.h"
#include "zwave/libserialapi/FrameReader.h"
#include "zwave/libserialapi/functions/FrameDissector.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <algorithm>
#include <set>

namespace zorv::fuzz {

namespace {

using namespace serialapi;
using modulesim::Fault;
using modulesim::Generation;
using modulesim::SimulatedModule;
using modulesim::SimulatedNetwork;

Fault anyFault(Script& script) {
    Fault fault;
    fault.kind = static_cast<Fault::Kind>(script.byte() % (static_cast<int>(Fault::Kind::stopLoader) + 1));
    fault.direction = script.flag() ? Fault::Direction::toHost : Fault::Direction::toModule;
    if (script.flag()) { fault.function = script.byte(); }
    fault.after = script.time();
    fault.skip = script.byte() % 4U;
    fault.times = 1 + script.byte() % 8U;
    if (script.flag()) { fault.lasts = script.time(); }
    fault.percent = script.byte() % 101U;
    return fault;
}

SimulatedNetwork anyNetwork(Script& script) {
    SimulatedNetwork network;
    network.generation = static_cast<Generation>(script.byte() % 3);
    network.nvmSize = 16384;
    auto const head = script.byte();
    if ((head & 1U) != 0) { network.secondaryTo = NodeId{9}; }
    network.isSis = (head & 2U) == 0;
    if ((head & 4U) != 0) { network.otherNetwork = modulesim::OtherNetwork{0xBEEF, 7, Milliseconds(200)}; }
    network.nodes.resize(4);
    for (std::size_t i = 0; i < network.nodes.size(); ++i) { network.nodes[i].id = static_cast<NodeId>(i + 2); }
    network.nodes[1].kind = modulesim::NodeKind::frequentlyListening;
    network.nodes[2].kind = modulesim::NodeKind::sleeping;
    network.nodes[2].wakeUpSeconds = 60;
    network.nodes[2].commandClasses = {0x72, 0x80, 0x84, 0x86};
    network.nodes[3].dead = true;
    network.joining.resize(2);
    network.leaving.push_back({2, Milliseconds(300)});
    for (auto count = (head >> 3U) % 4; count > 0; --count) { network.faults.push_back(anyFault(script)); }
    return network;
}

class Story {
public:
    explicit Story(std::string const& input)
        : script_(input), network_(anyNetwork(script_)), isFaulty_(!network_.faults.empty()), module_(network_) {}

    void tell() {
        module_.start();
        pass(Milliseconds(0));
        while (!script_.isOver()) { step(); }
        pass(Milliseconds(120'000));
    }

private:
    void step() {
        auto const person = static_cast<NodeId>(2 + script_.byte() % 5);
        switch (script_.byte() % 12) {
        case 0: hear(script_.bytes()); break;
        case 1: hear({control::nak}); break;
        case 2: hear({control::can}); break;
        case 3: acknowledges_ = script_.flag(); break;
        case 4: pass(script_.time()); break;
        case 5: people(person); break;
        default: {
            auto frame = script_.frame();
            frame.type = FrameType::request;
            // Whoever enters the loader is spoken to in another way.
            mayBeInLoader_ = mayBeInLoader_ || frame.function == EnterBootloader::id;
            hear(frame.encode());
            break;
        }
        }
    }

    void people(NodeId node) {
        switch (script_.byte() % 8) {
        case 0: module_.join({}, script_.time()); break;
        case 1: module_.leave(node, script_.time()); break;
        case 2: module_.pressButton(node); break;
        case 3: module_.wake(node); break;
        case 4: module_.command(node, script_.bytes()); break;
        case 5: module_.die(node); break;
        case 6: module_.restart(); break;
        default: break;
        }
        pass(Milliseconds(1));
    }

    void hear(Bytes const& bytes) {
        // The loader is entered by what looks like raw bytes as well.
        mayBeInLoader_ = mayBeInLoader_ || std::count(bytes.begin(), bytes.end(), EnterBootloader::id) != 0;
        module_.receive(bytes, now_);
        listen();
    }

    void pass(Milliseconds time) {
        auto const end = now_ + time;
        for (auto next = module_.deadline(); next && *next <= end; next = module_.deadline()) {
            now_ = std::max(now_, *next);
            module_.tick(now_);
            listen();
        }
        now_ = end;
    }

    /// What the module says is frames that a host can read, and what they hold fits their tables.
    void listen() {
        for (auto said = module_.takeOutput(); !said.empty(); said = module_.takeOutput()) {
            for (auto const byte : said) {
                auto const item = reader_.push(byte, now_);
                if (!item) { continue; }
                auto const isWhole = item->kind != FrameReader::Kind::badChecksum;
                expect(isWhole || isFaulty_ || mayBeInLoader_, "a module's checksums are right");
                if (item->kind != FrameReader::Kind::data) { continue; }
                look(item->frame);
                if (acknowledges_) { module_.receive({control::ack}, now_); }
            }
        }
        expect(reader_.skippedBytes() == 0 || isFaulty_ || mayBeInLoader_, "a module says frames only");
        auto const ids = module_.nodes();
        expect(std::set<NodeId>(ids.begin(), ids.end()).size() == ids.size(), "a node is there once");
        for (auto const id : ids) { expect(id >= 1 && id <= 232, "a node has an id of a node"); }
    }

    void look(Frame const& frame) {
        auto const parts = dissector_.dissect(Side::module, frame);
        expect(parts.hasTable || isFaulty_ || mayBeInLoader_, "a module calls functions that there are");
    }

    Script script_;
    SimulatedNetwork network_;
    bool isFaulty_;
    SimulatedModule module_;
    FrameReader reader_;
    FrameDissector dissector_;
    TimePoint now_{};
    bool acknowledges_ = true;
    bool mayBeInLoader_ = false;
};

void run(std::string const& input) { Story(input).tell(); }

/// The hosts of the recordings, with modules of all generations.
Target::Texts seeds() {
    Target::Texts texts;
    unsigned int number = 0;
    for (auto const& recording : recordedLines()) {
        ScriptWriter script;
        script.byte(number).byte(number % 8);
        ++number;
        for (auto const& line : recording) {
            std::string why;
            auto const frame = Frame::decode(line.bytes, why);
            if (!line.isHost || !frame) { continue; }
            script.byte(0).byte(6).frame(*frame).byte(0).byte(4).number(50);
        }
        texts.push_back(script.text());
    }
    for (unsigned int generation = 0; generation < 3; ++generation) {
        ScriptWriter script;
        script.byte(generation).byte(0);
        for (auto const& function : describeFunctions()) {
            script.byte(0).byte(6).frame({FrameType::request, function.id, {1, 2, 0, 1, 9, 3}});
            script.byte(0).byte(4).number(300);
        }
        texts.push_back(script.text());
    }
    return texts;
}

Registration const registration({"simulation", &run, &seeds, &functionWords});

} // namespace

} // namespace zorv::fuzz
